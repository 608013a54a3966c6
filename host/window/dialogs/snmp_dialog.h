// Asks for the communities and for the SNMPv3 user with passwords. The user is a saved profile or a
// new one.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "window/work/engine.h"

namespace vndiscover::host {

// Returns false, with unchanged credentials, if the user cancelled. An empty password field stands
// for the known password. The credentials are saved for the next start, the SNMPv3 user as a
// profile or, without a name, as the default one. `reason`: why the program asks; empty: the user
// chose to.
bool AskCredentials(HWND owner, Credentials& credentials, const std::wstring& reason);

// The communities between commas, each once. An empty text gives the module's default one and
// "public". Returns nothing if one is too long for a request.
std::optional<std::vector<std::string>> ParseCommunities(const std::string& text);

// Uses the user of a profile; an empty name: of the last used one. Returns false if it does not
// exist or cannot be opened.
bool UseProfile(const std::wstring& name, Credentials& credentials);

// Uses the saved communities, and the user of a profile as above. Returns what to show about a
// failure; empty: nothing.
std::wstring UseSaved(const std::wstring& profile, Credentials& credentials);

}  // namespace vndiscover::host
