// Asks for the communities, and for the SNMPv3 user with passwords: one that is kept as a profile,
// or a new one.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "window/work/engine.h"

namespace vndiscover::host {

// Returns false if the user cancelled; the credentials are then unchanged. An empty password field
// keeps the known password. All is kept for the next start, the user as a profile; without a name,
// as the default one. `reason`: why it is asked; empty: the user wants it.
bool AskCredentials(HWND owner, Credentials& credentials, const std::wstring& reason);

// Those between commas, each once; none: the module's and "public". Nothing if one is too long for
// a request.
std::optional<std::vector<std::string>> ParseCommunities(const std::string& text);

// Uses the user of a profile; empty: of the last one. Returns false if it does not exist or cannot
// be opened.
bool UseProfile(const std::wstring& name, Credentials& credentials);

// Uses what was kept: the communities, and the user of this profile; empty: of the last one.
// Returns what to tell the user of that; empty: nothing.
std::wstring UseKept(const std::wstring& profile, Credentials& credentials);

}  // namespace vndiscover::host
