// SNMPv3 users that are kept for the Windows user, below HKEY_CURRENT_USER. The passwords are
// sealed: only this user can open them, on this computer or where the account's keys have gone with
// it.
#ifndef VNDISCOVER_HOST_WINDOW_PROFILES_H
#define VNDISCOVER_HOST_WINDOW_PROFILES_H

#include <optional>
#include <string>
#include <vector>

#include "device/security.h"

namespace vndiscover::host {

constexpr size_t kMaxProfileName = 60;

// 1 to 60 characters, no backslash and no control character. Letter case does not tell names apart.
bool IsProfileName(const std::wstring& name);

std::vector<std::wstring> ProfileNames();  // sorted

struct Profile {
    Security security;
    // False: the passwords cannot be opened here, or do not belong to this user and these
    // protocols.
    bool isOpen = false;
};
// Empty: there is no such profile, or it makes no sense.
std::optional<Profile> ReadProfile(const std::wstring& name);

enum class KeepResult {
    kKept,
    kNotSealed,   // nothing was written: passwords are never kept in the clear
    kNotWritten,  // the registry refuses; a former profile of that name is as it was
    kLeftAlone,   // what is there cannot be opened, so it stays
};
KeepResult KeepProfile(const std::wstring& name, const Security& security);

// True: it is gone.
bool DeleteProfile(const std::wstring& name);

// The profile that was used last; empty: none.
std::wstring LastProfile();
void KeepLastProfile(const std::wstring& name);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_PROFILES_H
