#include "platform/this_process.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdio>

#include "platform/owned.h"
#include "platform/wide_text.h"

namespace vndiscover::host {

std::vector<std::string> CommandLineArguments() {
    int count = 0;
    const Owned<ClosedBy<wchar_t**, LocalFree>> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; wide && i < count; ++i) arguments.push_back(ToUtf8(wide.Get()[i]));
    return arguments;
}

std::wstring Environment(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);  // with the terminating zero
    if (size == 0) return {};
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), size));
    return value;
}

std::string OwnPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return ToUtf8(path);
}

std::string UtcNow() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02uZ", now.wYear, now.wMonth,
                  now.wDay, now.wHour, now.wMinute, now.wSecond);
    return text;
}

}  // namespace vndiscover::host
