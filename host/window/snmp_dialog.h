// Asks for the community, and for the SNMPv3 user with the passwords: one that is kept as a
// profile, or a new one.
#ifndef VNDISCOVER_HOST_WINDOW_SNMP_DIALOG_H
#define VNDISCOVER_HOST_WINDOW_SNMP_DIALOG_H

#include <windows.h>

#include "window/engine.h"

namespace vndiscover::host {

// False: the user left it, and the credentials are as they were. A password field that is left
// empty keeps the password that is there. Without the name of a profile all stays in memory alone.
bool AskCredentials(HWND owner, Credentials& credentials);

// Takes the user of a profile. False: it is not there or cannot be opened.
bool UseProfile(const std::wstring& name, Credentials& credentials);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_SNMP_DIALOG_H
