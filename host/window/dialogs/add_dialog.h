// Asks for devices that no sweep reaches.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace vndiscover::host {

// Names or addresses as typed, UTF-8; empty if the user cancelled.
std::vector<std::string> AskHosts(HWND owner);

}  // namespace vndiscover::host
