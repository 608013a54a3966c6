#pragma once

#include <windows.h>

#include <string>

namespace vndiscover::host {

// "1.2.0.0", from the resource of a loaded module; null: of the program. Empty if it has none.
std::string VersionOf(HMODULE module);

// "10.0.22631", whatever version the manifest names.
std::string WindowsVersion();

}  // namespace vndiscover::host
