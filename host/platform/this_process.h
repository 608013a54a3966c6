// What the system says about this process. Text is UTF-8 unless it is wide.
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

// The full path of a file in the system's folder; empty if the system does not give it. By name
// alone, a file beside the program or in the current folder could be used instead.
std::wstring SystemFile(const wchar_t* name);

// "1.2.0.0", from the resource of a loaded module; null: of the program. Empty if it has none.
std::string VersionOf(HMODULE module);

// "10.0.22631", whatever version the manifest names.
std::string WindowsVersion();

}  // namespace vndiscover::host
