// Asks for the community, and for the SNMPv3 user with the passwords.
#ifndef VNDISCOVER_HOST_WINDOW_SNMP_DIALOG_H
#define VNDISCOVER_HOST_WINDOW_SNMP_DIALOG_H

#include <windows.h>

#include "window/engine.h"

namespace vndiscover::host {

// False: the user left it, and the credentials are as they were. Passwords are kept in memory
// alone, and a field that is left empty keeps the one that is there.
bool AskCredentials(HWND owner, Credentials& credentials);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_SNMP_DIALOG_H
