// What the system tells this process. Text is UTF-8 unless it is wide.
#pragma once

#include <string>
#include <vector>

namespace vndiscover::host {

// The command line without the program's name.
std::vector<std::string> CommandLineArguments();

// The value of an environment variable; empty if it is not set.
std::wstring Environment(const wchar_t* name);

// Of the program's file.
std::string OwnPath();

// The time as "2026-11-25T04:32:23Z".
std::string UtcNow();

}  // namespace vndiscover::host
