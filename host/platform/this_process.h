// What the system tells this process. Text is UTF-8 unless it is wide.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace vndiscover::host {

// The command line without the program's name.
std::vector<std::string> CommandLineArguments();

// The value of an environment variable; empty if it is not set.
std::wstring Environment(const wchar_t* name);

std::string OwnPath();

// "1.2.0.0", from the resource of a loaded module; null: of the program. Empty if it has none.
std::string VersionOf(HMODULE module);

// "10.0.22631", whatever version the manifest names.
std::string WindowsVersion();

}  // namespace vndiscover::host
