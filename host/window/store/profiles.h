// SNMPv3 users that are saved for the Windows user, below HKEY_CURRENT_USER. The passwords are
// encrypted: only this user can decrypt them, on this computer or wherever the account's keys are.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "device/security.h"

namespace vndiscover::host {

constexpr size_t kMaxProfileName = 60;

// 1 to 60 characters, without backslashes and control characters. Names that differ only in letter
// case are the same.
bool IsProfileName(const std::wstring& name);

std::vector<std::wstring> ProfileNames();  // sorted

struct Profile {
    Security security;
    // The passwords could be decrypted here, and are of this user and these protocols.
    bool isOpen = false;
};
// Returns nothing if there is no such profile, or if it is invalid.
std::optional<Profile> ReadProfile(const std::wstring& name);

enum class SaveResult {
    kSaved,
    kNotSealed,   // nothing was written: passwords are never saved in the clear
    kNotWritten,  // the registry refused; an existing profile of that name is unchanged
    kLeftAlone,   // the existing profile cannot be opened, so it was not replaced
};
SaveResult SaveProfile(const std::wstring& name, const Security& security);

// Returns true if it no longer exists.
bool DeleteProfile(const std::wstring& name);

// The profile that was used last; empty if there is none.
std::wstring LastProfile();
void SaveLastProfile(const std::wstring& name);

}  // namespace vndiscover::host
