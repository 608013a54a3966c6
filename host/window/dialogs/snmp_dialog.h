// Asks for the community, and for the SNMPv3 user with passwords: one that is saved as a profile,
// or a new one.
#pragma once

#include <windows.h>

#include "window/work/engine.h"

namespace vndiscover::host {

// Returns false if the user cancelled; the credentials are then unchanged. An empty password field
// keeps the known password. Without a profile name, nothing is saved.
bool AskCredentials(HWND owner, Credentials& credentials);

// Uses the user of a profile. Returns false if it does not exist or cannot be opened.
bool UseProfile(const std::wstring& name, Credentials& credentials);

}  // namespace vndiscover::host
