// The communities and the SNMPv3 users that are kept for the Windows user, below HKEY_CURRENT_USER.
// Communities and passwords are encrypted: only this user can decrypt them, on this computer or
// wherever the account's keys are.
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

// Sorted, without the default profile. That one has an empty name.
std::vector<std::wstring> ProfileNames();

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
    kLeftAlone,   // the existing profile of that name cannot be opened, so it was not replaced
};
SaveResult SaveProfile(const std::wstring& name, const Security& security);

// Returns true if it no longer exists.
bool DeleteProfile(const std::wstring& name);

// The communities as they were typed; an empty text if none are kept. Returns nothing if they
// cannot be decrypted.
std::optional<std::wstring> KeptCommunities();
// An empty text removes them.
SaveResult KeepCommunities(const std::wstring& text);

// The profile that was used last; empty: the default one.
std::wstring LastProfile();
void SaveLastProfile(const std::wstring& name);

}  // namespace vndiscover::host
