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
// passwords.
constexpr wchar_t kProfilesKey[] = L"Software\\Varnell Osk\\VnBrowser\\Profiles";
constexpr wchar_t kBrowserKey[] = L"Software\\Varnell Osk\\VnBrowser";
constexpr wchar_t kValue[] = L"User";
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
Bytes Seal(const Security& security, const Bytes& clearPart) {
    const wchar_t* passwords[] = {security.authPassword.Get(), security.privPassword.Get()};
    size_t size = 0;
    for (const wchar_t* text : passwords) size += (std::wcslen(text) + 1) * sizeof(wchar_t);
    const ClearText clear(
        {static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, size)), static_cast<DWORD>(size)});
    if (!clear) return {};
    BYTE* end = clear.Get().bytes;
    for (const wchar_t* text : passwords) {
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

bool Open(const BYTE* sealed, size_t size, const Bytes& clearPart, Security& security) {
    DATA_BLOB in = BlobOf(sealed, size);
    DATA_BLOB bound = BlobOf(clearPart.data(), clearPart.size());
    DATA_BLOB out = {};
    if (size == 0 || !CryptUnprotectData(&in, nullptr, &bound, nullptr, nullptr,
                                         CRYPTPROTECT_UI_FORBIDDEN, &out))
        return false;
    const ClearText clear({out.pbData, out.cbData});
    size_t at = 0;
    for (Secret* password : {&security.authPassword, &security.privPassword}) {
        auto text = ReadText(out.pbData, out.cbData, at);
        if (!text) return false;
        ClearPassword clearPassword = {std::move(*text)};
        *password = Secret(std::move(clearPassword.text));
    }
    return true;
}

std::wstring KeyOf(const std::wstring& name) { return std::wstring(kProfilesKey) + L"\\" + name; }

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
    if (!IsProfileName(name)) return std::nullopt;
    Bytes bytes(kMaxValueBytes);
    DWORD size = kMaxValueBytes;
    if (RegGetValueW(HKEY_CURRENT_USER, KeyOf(name).c_str(), kValue, RRF_RT_REG_BINARY, nullptr,
                     bytes.data(), &size) != ERROR_SUCCESS)
        return std::nullopt;
    Profile profile;
    Security& security = profile.security;
    size_t at = 0;
    for (std::wstring* text : {&security.user, &security.authLabel, &security.privLabel}) {
        auto taken = ReadText(bytes.data(), size, at);
        if (!taken) return std::nullopt;
        *text = std::move(*taken);
    }
    security.useAuth = !security.authLabel.empty();
    security.usePriv = !security.privLabel.empty();
    if (security.user.empty() || (security.usePriv && !security.useAuth)) return std::nullopt;
    profile.isOpen = Open(bytes.data() + at, size - at, ClearPart(security), security) &&
                     security.useAuth == !security.authPassword.IsEmpty() &&
                     security.usePriv == !security.privPassword.IsEmpty();
    return profile;
}

SaveResult SaveProfile(const std::wstring& name, const Security& security) {
    if (!IsProfileName(name)) return SaveResult::kNotWritten;
    const auto former = ReadProfile(name);
    if (HasValue(name) && !(former && former->isOpen)) return SaveResult::kLeftAlone;
    Bytes bytes = ClearPart(security);
    const Bytes sealed = Seal(security, bytes);
    if (sealed.empty()) return SaveResult::kNotSealed;
    bytes.insert(bytes.end(), sealed.begin(), sealed.end());
    if (bytes.size() > kMaxValueBytes ||
        RegSetKeyValueW(HKEY_CURRENT_USER, KeyOf(name).c_str(), kValue, REG_BINARY, bytes.data(),
                        static_cast<DWORD>(bytes.size())) != ERROR_SUCCESS)
        return SaveResult::kNotWritten;
    return SaveResult::kSaved;
}

bool DeleteProfile(const std::wstring& name) {
    return IsProfileName(name) &&
           RegDeleteKeyW(HKEY_CURRENT_USER, KeyOf(name).c_str()) == ERROR_SUCCESS;
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
