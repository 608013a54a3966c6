#include "window/store/settings.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <dpapi.h>

#include <cstring>

namespace {

bool canSeal = true;

BOOL WINAPI SealOrFail(DATA_BLOB* in, LPCWSTR description, DATA_BLOB* entropy, PVOID reserved,
                       CRYPTPROTECT_PROMPTSTRUCT* prompt, DWORD flags, DATA_BLOB* out) {
    using Seal = decltype(&SealOrFail);
    const auto address = GetProcAddress(LoadLibraryW(L"crypt32"), "CryptProtectData");
    const auto seal = reinterpret_cast<Seal>(reinterpret_cast<void*>(address));
    return canSeal && seal(in, description, entropy, reserved, prompt, flags, out);
}

}  // namespace

// Replaces the function of the import library.
extern "C" void* const __imp_CryptProtectData = reinterpret_cast<void*>(&SealOrFail);

namespace vndiscover::host {
namespace {

constexpr wchar_t kKey[] = L"Software\\Varnell Osk\\VnBrowser\\Profiles\\Office";
constexpr wchar_t kBrowser[] = L"Software\\Varnell Osk\\VnBrowser";
constexpr wchar_t kDefault[] = L"Software\\Varnell Osk\\VnBrowser\\Default profile";

Security Admin() {
    Security security;
    security.user = L"admin";
    security.authLabel = L"SHA-2(256)";
    security.privLabel = L"AES";
    security.authPassword = Secret(L"authpass1");
    security.privPassword = Secret(L"privpass1");
    return security;
}

std::string Stored(const wchar_t* key = kKey, const wchar_t* value = L"User") {
    std::string bytes(4096, '\0');
    DWORD size = 4096;
    const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, key, value, RRF_RT_REG_BINARY, nullptr,
                                        bytes.data(), &size);
    return status == ERROR_SUCCESS ? bytes.substr(0, size) : "";
}

void Store(const std::string& bytes) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"User", REG_BINARY, bytes.data(),
                    static_cast<DWORD>(bytes.size()));
}

std::string Wide(const wchar_t* text) {
    return {reinterpret_cast<const char*>(text), wcslen(text) * sizeof(wchar_t)};
}

class Profiles : public testing::Test {
  protected:
    void TearDown() override { DeleteProfile(L"Office"); }
};

TEST_F(Profiles, KeepUsersAndCommunitiesEncrypted) {
    ASSERT_EQ(SaveResult::kSaved, SaveCommunities(L"hidden, public"));
    for (const wchar_t* const name : {L"Office", L""}) {
        ASSERT_EQ(SaveResult::kSaved, SaveProfile(name, Admin()));
        const auto profile = ReadProfile(*name ? L"office" : L"");
        ASSERT_TRUE(profile && profile->isOpen);
        EXPECT_EQ(L"admin", profile->security.user);
        EXPECT_EQ(L"AES", profile->security.privLabel);
        EXPECT_STREQ(L"authpass1", profile->security.authPassword.Get());
        EXPECT_STREQ(L"privpass1", profile->security.privPassword.Get());
    }
    EXPECT_EQ(std::vector<std::wstring>{L"Office"}, ProfileNames());
    EXPECT_EQ(L"hidden, public", SavedCommunities().value_or(L""));
    const auto kept = [] {
        return Stored() + Stored(kBrowser, L"Communities") + Stored(kDefault, L"User");
    };
    for (const wchar_t* secret : {L"hidden", L"authpass1", L"privpass1"})
        EXPECT_EQ(std::string::npos, kept().find(Wide(secret)));
    EXPECT_EQ(SaveResult::kSaved, SaveCommunities(L""));
    for (const wchar_t* const name :
         {L"Office", L"Office", L"", L""}) {  // twice, also if it is gone
        EXPECT_TRUE(DeleteProfile(name));
        EXPECT_FALSE(ReadProfile(name));
    }
    EXPECT_TRUE(ProfileNames().empty());
    EXPECT_EQ(L"", SavedCommunities().value_or(L"x"));
    EXPECT_EQ("", kept());
}

TEST_F(Profiles, SaveNothingIfEncryptionFails) {
    canSeal = false;
    EXPECT_EQ(SaveResult::kNotSealed, SaveProfile(L"Office", Admin()));
    EXPECT_EQ(SaveResult::kNotSealed, SaveCommunities(L"hidden"));
    canSeal = true;
    EXPECT_EQ("", Stored(kBrowser, L"Communities"));
    EXPECT_EQ("", Stored());
}

// From another computer, damaged, or with protocols that were weakened.
TEST_F(Profiles, UnreadableOnesAreNotReplaced) {
    ASSERT_EQ(SaveResult::kSaved, SaveProfile(L"Office", Admin()));
    const std::string good = Stored();
    std::string damaged = good, weakened = good;
    damaged.back() ^= 1;
    weakened.replace(weakened.find(Wide(L"AES")), 6, Wide(L"DES"));
    for (const std::string& bytes : {damaged, weakened, good.substr(0, good.size() / 2)}) {
        Store(bytes);
        const auto profile = ReadProfile(L"Office");
        ASSERT_TRUE(profile);
        EXPECT_FALSE(profile->isOpen);
        EXPECT_EQ(L"admin", profile->security.user);
        EXPECT_TRUE(profile->security.authPassword.IsEmpty());
        EXPECT_EQ(SaveResult::kLeftAlone, SaveProfile(L"Office", Admin()));
        EXPECT_EQ(bytes, Stored());
    }
    for (size_t size = 0; size < 20; ++size) {
        Store(good.substr(0, size));
        EXPECT_FALSE(ReadProfile(L"Office")) << size;
        EXPECT_EQ(SaveResult::kLeftAlone, SaveProfile(L"Office", Admin())) << size;
    }
}

TEST_F(Profiles, InvalidNamesAreRefused) {
    for (const std::wstring& name :
         {std::wstring(L"a\\b"), std::wstring(L"a\n"), std::wstring(kMaxProfileName + 1, L'a')}) {
        EXPECT_FALSE(IsProfileName(name));
        EXPECT_EQ(SaveResult::kNotWritten, SaveProfile(name, Admin()));
        EXPECT_FALSE(ReadProfile(name));
        EXPECT_FALSE(DeleteProfile(name));
    }
}

}  // namespace
}  // namespace vndiscover::host
