#include "window/store/settings.h"

#include <dpapi.h>

#include <algorithm>
#include <cstddef>
#include <cwchar>
#include <iterator>
#include <numeric>
#include <utility>

#include "platform/owned.h"

namespace vndiscover::host {
namespace {

constexpr int32_t kMaxWidth = 4000;

// Each profile has a key with one value, which is written as a whole or not at all. It contains the
// user's name and the labels of the protocols, each with its terminating zero, and then the
// encrypted passwords. The default profile has a key of its own.
constexpr wchar_t kProfilesKey[] = L"Software\\Varnell Osk\\VnBrowser\\Profiles";
constexpr wchar_t kDefaultKey[] = L"Software\\Varnell Osk\\VnBrowser\\Default profile";
constexpr wchar_t kBrowserKey[] = L"Software\\Varnell Osk\\VnBrowser";
constexpr wchar_t kUserValue[] = L"User";
constexpr wchar_t kViewValue[] = L"View";                // settings
constexpr wchar_t kCommunitiesValue[] = L"Communities";  // encrypted as a whole
constexpr wchar_t kLastValue[] = L"Profile";
constexpr DWORD kMaxValueBytes = 16384;

using Bytes = std::vector<BYTE>;

// For what the system has decrypted.
void WipeAndFree(BYTE* clear) {
    SecureZeroMemory(clear, LocalSize(clear));
    LocalFree(clear);
}

// With its terminating zero.
size_t SizeOf(const wchar_t* text) { return (std::wcslen(text) + 1) * sizeof(wchar_t); }

// Reads the text at `at` and moves `at` past it. Returns null if the text is not terminated.
// `bytes` are aligned, and so is every text.
const wchar_t* ReadText(const BYTE* bytes, size_t size, size_t& at) {
    const auto* const text = reinterpret_cast<const wchar_t*>(bytes + at);
    const size_t most = (size - at) / sizeof(wchar_t);
    if (wcsnlen(text, most) == most) return nullptr;
    at += SizeOf(text);
    return text;
}

DATA_BLOB BlobOf(const void* bytes, size_t size) {
    return {static_cast<DWORD>(size), static_cast<BYTE*>(const_cast<void*>(bytes))};
}

// What is not encrypted. The passwords are bound to it: if it is changed, they cannot be opened.
Bytes ClearPart(const Security& security) {
    Bytes bytes;
    for (const std::wstring* text : {&security.user, &security.authLabel, &security.privLabel}) {
        const auto* const first = reinterpret_cast<const BYTE*>(text->c_str());
        bytes.insert(bytes.end(), first, first + SizeOf(text->c_str()));
    }
    return bytes;
}

// Returns nothing on failure.
Bytes Seal(std::initializer_list<const wchar_t*> texts, const Bytes& clearPart) {
    size_t size = 0;
    for (const wchar_t* text : texts) size += SizeOf(text);
    std::wstring all;
    all.reserve(size / sizeof(wchar_t));  // a string that grows leaves copies
    for (const wchar_t* text : texts) all.append(text, SizeOf(text) / sizeof(wchar_t));
    const Secret clear(std::move(all));
    DATA_BLOB in = BlobOf(clear.Get(), size);
    DATA_BLOB bound = BlobOf(clearPart.data(), clearPart.size());
    DATA_BLOB out = {};
    if (!CryptProtectData(&in, L"VnBrowser", &bound, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          &out))
        return {};
    const OwnedLocal sealed(out.pbData);
    return {out.pbData, out.pbData + out.cbData};
}

// Returns false if not all texts could be opened.
bool Open(const BYTE* sealed, size_t size, const Bytes& clearPart,
          std::initializer_list<Secret*> texts) {
    DATA_BLOB in = BlobOf(sealed, size);
    DATA_BLOB bound = BlobOf(clearPart.data(), clearPart.size());
    DATA_BLOB out = {};
    if (size == 0 || !CryptUnprotectData(&in, nullptr, &bound, nullptr, nullptr,
                                         CRYPTPROTECT_UI_FORBIDDEN, &out))
        return false;
    const Owned<ClosedBy<BYTE*, WipeAndFree>> clear(out.pbData);
    size_t at = 0;
    for (Secret* secret : texts) {
        const wchar_t* const text = ReadText(out.pbData, out.cbData, at);
        if (!text) return false;
        *secret = Secret(std::wstring(text));
    }
    return true;
}

bool HasKey(const std::wstring& name) { return name.empty() || IsProfileName(name); }

std::wstring KeyOf(const std::wstring& name) {
    return name.empty() ? kDefaultKey : std::wstring(kProfilesKey) + L"\\" + name;
}

std::optional<Bytes> ReadValue(const std::wstring& key, const wchar_t* name) {
    Bytes bytes(kMaxValueBytes);
    DWORD size = kMaxValueBytes;
    if (RegGetValueW(HKEY_CURRENT_USER, key.c_str(), name, RRF_RT_REG_BINARY, nullptr, bytes.data(),
                     &size) != ERROR_SUCCESS)
        return std::nullopt;
    bytes.resize(size);
    return bytes;
}

SaveResult WriteValue(const std::wstring& key, const wchar_t* name, const Bytes& bytes) {
    const bool isWritten =
        bytes.size() <= kMaxValueBytes &&
        RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, REG_BINARY, bytes.data(),
                        static_cast<DWORD>(bytes.size())) == ERROR_SUCCESS;
    return isWritten ? SaveResult::kSaved : SaveResult::kNotWritten;
}

bool IsGone(LSTATUS deleted) { return deleted == ERROR_SUCCESS || deleted == ERROR_FILE_NOT_FOUND; }

bool HasValue(const std::wstring& name) {
    return RegGetValueW(HKEY_CURRENT_USER, KeyOf(name).c_str(), kUserValue, RRF_RT_ANY, nullptr,
                        nullptr, nullptr) == ERROR_SUCCESS;
}

bool IsValid(const Settings& settings) {
    std::array<int32_t, kColumnCount> sorted = settings.order;
    std::sort(sorted.begin(), sorted.end());
    for (size_t index = 0; index < kColumnCount; ++index) {
        const int32_t width = settings.widths[index];
        if (sorted[index] != static_cast<int32_t>(index) || width < 0 || width > kMaxWidth)
            return false;
    }
    return settings.preset < kPresetCount && settings.hidden < kAllColumns &&
           settings.splitPercent >= 20 && settings.splitPercent <= 80 &&
           settings.refreshMinutes <= 60 && settings.lowPercent >= 0 && settings.lowPercent <= 100;
}

}  // namespace

std::optional<Settings> LoadSettings(const Settings& defaults) {
    constexpr size_t kFirst = offsetof(Settings, widths), kRest = offsetof(Settings, hidden);
    constexpr size_t kOthers = kFirst + sizeof(Settings) - kRest;
    const auto bytes = ReadValue(kBrowserKey, kViewValue);
    if (!bytes || bytes->size() < kOthers || bytes->size() > sizeof(Settings)) return std::nullopt;
    // A former version had fewer columns. New ones come last, hidden or not as by default.
    const size_t widths = (bytes->size() - kOthers) / 2, count = widths / sizeof(int32_t);
    Settings settings = defaults;
    std::iota(settings.order.begin(), settings.order.end(), 0);
    const BYTE* saved = bytes->data();
    for (const auto& [place, size] : {std::pair(size_t{0}, kFirst),
                                      {kFirst, widths},
                                      {offsetof(Settings, order), widths},
                                      {kRest, sizeof(Settings) - kRest}}) {
        std::copy_n(saved, size, reinterpret_cast<BYTE*>(&settings) + place);
        saved += size;
    }
    settings.hidden |= defaults.hidden >> count << count;
    if (bytes->size() != kOthers + 2 * count * sizeof(int32_t) || !IsValid(settings))
        return std::nullopt;
    return settings;
}

void SaveSettings(const Settings& settings) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kBrowserKey, kViewValue, REG_BINARY, &settings,
                    sizeof settings);
}

bool IsProfileName(const std::wstring& name) {
    const auto isBad = [](wchar_t letter) { return letter < L' ' || letter == L'\\'; };
    return !name.empty() && name.size() <= kMaxProfileName &&
           std::none_of(name.begin(), name.end(), isBad);
}

std::vector<std::wstring> ProfileNames() {
    std::vector<std::wstring> names;
    OwnedKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kProfilesKey, 0, KEY_READ, key.Receive()) != ERROR_SUCCESS)
        return names;
    wchar_t name[256];
    for (DWORD index = 0;; ++index) {
        DWORD size = static_cast<DWORD>(std::size(name));
        const LSTATUS status =
            RegEnumKeyExW(key.Get(), index, name, &size, nullptr, nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS) break;
        if (IsProfileName(name)) names.push_back(name);
    }
    std::sort(names.begin(), names.end(), [](const std::wstring& one, const std::wstring& other) {
        return lstrcmpiW(one.c_str(), other.c_str()) < 0;
    });
    return names;
}

std::optional<Profile> ReadProfile(const std::wstring& name) {
    const auto bytes = HasKey(name) ? ReadValue(KeyOf(name), kUserValue) : std::nullopt;
    if (!bytes) return std::nullopt;
    Profile profile;
    Security& security = profile.security;
    size_t at = 0;
    for (std::wstring* text : {&security.user, &security.authLabel, &security.privLabel}) {
        const wchar_t* const saved = ReadText(bytes->data(), bytes->size(), at);
        if (!saved) return std::nullopt;
        *text = saved;
    }
    if (security.user.empty() || (security.UsePriv() && !security.UseAuth())) return std::nullopt;
    profile.isOpen = Open(bytes->data() + at, bytes->size() - at, ClearPart(security),
                          {&security.authPassword, &security.privPassword}) &&
                     security.UseAuth() == !security.authPassword.IsEmpty() &&
                     security.UsePriv() == !security.privPassword.IsEmpty();
    return profile;
}

SaveResult SaveProfile(const std::wstring& name, const Security& security) {
    if (!HasKey(name)) return SaveResult::kNotWritten;
    const auto former = ReadProfile(name);
    if (!name.empty() && HasValue(name) && !(former && former->isOpen))
        return SaveResult::kLeftAlone;
    Bytes bytes = ClearPart(security);
    const Bytes sealed = Seal({security.authPassword.Get(), security.privPassword.Get()}, bytes);
    if (sealed.empty()) return SaveResult::kNotSealed;
    bytes.insert(bytes.end(), sealed.begin(), sealed.end());
    return WriteValue(KeyOf(name), kUserValue, bytes);
}

bool DeleteProfile(const std::wstring& name) {
    return HasKey(name) && IsGone(RegDeleteKeyW(HKEY_CURRENT_USER, KeyOf(name).c_str()));
}

std::optional<std::wstring> SavedCommunities() {
    const auto sealed = ReadValue(kBrowserKey, kCommunitiesValue);
    Secret text;
    if (sealed && !Open(sealed->data(), sealed->size(), {}, {&text})) return std::nullopt;
    return text.Get();
}

SaveResult SaveCommunities(const std::wstring& text) {
    if (text.empty()) {
        const auto status = RegDeleteKeyValueW(HKEY_CURRENT_USER, kBrowserKey, kCommunitiesValue);
        return IsGone(status) ? SaveResult::kSaved : SaveResult::kNotWritten;
    }
    const Bytes sealed = Seal({text.c_str()}, {});
    return sealed.empty() ? SaveResult::kNotSealed
                          : WriteValue(kBrowserKey, kCommunitiesValue, sealed);
}

std::wstring LastProfile() {
    wchar_t name[kMaxProfileName + 1] = L"";
    DWORD size = sizeof name;
    const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, kBrowserKey, kLastValue, RRF_RT_REG_SZ,
                                        nullptr, name, &size);
    return status == ERROR_SUCCESS ? name : L"";
}

void SaveLastProfile(const std::wstring& name) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kBrowserKey, kLastValue, REG_SZ, name.c_str(),
                    static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t)));
}

}  // namespace vndiscover::host
