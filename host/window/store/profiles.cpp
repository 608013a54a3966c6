#include "window/store/profiles.h"

#include <windows.h>

#include <dpapi.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>

#include "platform/owned.h"

namespace vndiscover::host {
namespace {

// A key for each profile, with one value, which is written as a whole or not at all: the user's
// name and the labels of the protocols, each with its terminating zero, and the encrypted
// passwords. The default profile has a key of its own.
constexpr wchar_t kProfilesKey[] = L"Software\\Varnell Osk\\VnBrowser\\Profiles";
constexpr wchar_t kDefaultKey[] = L"Software\\Varnell Osk\\VnBrowser\\Default profile";
constexpr wchar_t kBrowserKey[] = L"Software\\Varnell Osk\\VnBrowser";
constexpr wchar_t kValue[] = L"User";
constexpr wchar_t kCommunitiesValue[] = L"Communities";  // encrypted as a whole
constexpr wchar_t kLastValue[] = L"Profile";
constexpr DWORD kMaxValueBytes = 16384;

using Bytes = std::vector<BYTE>;

// Memory of the system with passwords in the clear: wiped before it is released.
struct ClearTextTraits {
    struct Value {
        BYTE* bytes;
        DWORD size;
        bool operator!=(const Value& other) const { return bytes != other.bytes; }
    };
    static Value Empty() noexcept { return {nullptr, 0}; }
    static void Close(const Value& value) noexcept {
        SecureZeroMemory(value.bytes, value.size);
        LocalFree(value.bytes);
    }
};
using ClearText = Owned<ClearTextTraits>;

// A password on its way into a Secret.
struct ClearPassword {
    std::wstring text;
    ~ClearPassword() { SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t)); }
};

// Appends the text and its terminating zero as bytes.
void AppendText(Bytes& bytes, const wchar_t* text) {
    const auto* first = reinterpret_cast<const BYTE*>(text);
    bytes.insert(bytes.end(), first, first + (std::wcslen(text) + 1) * sizeof(wchar_t));
}

// Reads the text at `at`, which moves past it. Empty if it is not terminated.
std::optional<std::wstring> ReadText(const BYTE* bytes, size_t size, size_t& at) {
    const size_t first = at;
    wchar_t letter = 0;
    do {
        if (size - at < sizeof letter) return std::nullopt;
        std::memcpy(&letter, bytes + at, sizeof letter);
        at += sizeof letter;
    } while (letter != L'\0');
    // Allocated in full length: a string that grows leaves copies of a password.
    std::wstring text((at - first) / sizeof letter - 1, L'\0');
    std::memcpy(text.data(), bytes + first, text.size() * sizeof letter);
    return text;
}

DATA_BLOB BlobOf(const BYTE* bytes, size_t size) {
    return {static_cast<DWORD>(size), const_cast<BYTE*>(bytes)};
}

// Encrypted together with the passwords, so that changed protocols make them unusable.
Bytes ClearPart(const Security& security) {
    Bytes bytes;
    for (const std::wstring* text : {&security.user, &security.authLabel, &security.privLabel})
        AppendText(bytes, text->c_str());
    return bytes;
}

// Returns nothing on failure.
Bytes Seal(std::initializer_list<const wchar_t*> texts, const Bytes& clearPart) {
    size_t size = 0;
    for (const wchar_t* text : texts) size += (std::wcslen(text) + 1) * sizeof(wchar_t);
    const ClearText clear(
        {static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, size)), static_cast<DWORD>(size)});
    if (!clear) return {};
    BYTE* end = clear.Get().bytes;
    for (const wchar_t* text : texts) {
        const auto* first = reinterpret_cast<const BYTE*>(text);
        end = std::copy(first, first + (std::wcslen(text) + 1) * sizeof(wchar_t), end);
    }
    DATA_BLOB in = {clear.Get().size, clear.Get().bytes};
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
    const ClearText clear({out.pbData, out.cbData});
    size_t at = 0;
    for (Secret* secret : texts) {
        auto text = ReadText(out.pbData, out.cbData, at);
        if (!text) return false;
        ClearPassword clearPassword = {std::move(*text)};
        *secret = Secret(std::move(clearPassword.text));
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

bool HasValue(const std::wstring& name) {
    return RegGetValueW(HKEY_CURRENT_USER, KeyOf(name).c_str(), kValue, RRF_RT_ANY, nullptr,
                        nullptr, nullptr) == ERROR_SUCCESS;
}

}  // namespace

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
    const auto bytes = HasKey(name) ? ReadValue(KeyOf(name), kValue) : std::nullopt;
    if (!bytes) return std::nullopt;
    Profile profile;
    Security& security = profile.security;
    size_t at = 0;
    for (std::wstring* text : {&security.user, &security.authLabel, &security.privLabel}) {
        auto taken = ReadText(bytes->data(), bytes->size(), at);
        if (!taken) return std::nullopt;
        *text = std::move(*taken);
    }
    security.useAuth = !security.authLabel.empty();
    security.usePriv = !security.privLabel.empty();
    if (security.user.empty() || (security.usePriv && !security.useAuth)) return std::nullopt;
    profile.isOpen = Open(bytes->data() + at, bytes->size() - at, ClearPart(security),
                          {&security.authPassword, &security.privPassword}) &&
                     security.useAuth == !security.authPassword.IsEmpty() &&
                     security.usePriv == !security.privPassword.IsEmpty();
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
    return WriteValue(KeyOf(name), kValue, bytes);
}

bool DeleteProfile(const std::wstring& name) {
    return HasKey(name) && RegDeleteKeyW(HKEY_CURRENT_USER, KeyOf(name).c_str()) == ERROR_SUCCESS;
}

std::optional<std::wstring> KeptCommunities() {
    const auto sealed = ReadValue(kBrowserKey, kCommunitiesValue);
    Secret text;
    if (sealed && !Open(sealed->data(), sealed->size(), {}, {&text})) return std::nullopt;
    return text.Get();
}

SaveResult KeepCommunities(const std::wstring& text) {
    if (text.empty()) {
        const LSTATUS status =
            RegDeleteKeyValueW(HKEY_CURRENT_USER, kBrowserKey, kCommunitiesValue);
        const bool isGone = status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
        return isGone ? SaveResult::kSaved : SaveResult::kNotWritten;
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
