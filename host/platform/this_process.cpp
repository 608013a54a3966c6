#include "platform/this_process.h"

#include <shellapi.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

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

std::wstring SystemFile(const wchar_t* name) {
    wchar_t folder[MAX_PATH] = L"";
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return L"";
    return std::wstring(folder, length) + L"\\" + name;
}

std::string VersionOf(HMODULE module) {
    const HRSRC resource =
        FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));
    const HGLOBAL block = resource ? LoadResource(module, resource) : nullptr;
    const auto* bytes = static_cast<const uint8_t*>(block ? LockResource(block) : nullptr);
    const size_t size = bytes ? SizeofResource(module, resource) : 0;
    constexpr size_t kHeader = 40;  // of a VS_VERSIONINFO, before its fixed part
    VS_FIXEDFILEINFO info = {};
    if (size < kHeader + sizeof info) return "";
    std::memcpy(&info, bytes + kHeader, sizeof info);
    char text[64];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", HIWORD(info.dwFileVersionMS),
                  LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
                  LOWORD(info.dwFileVersionLS));
    return info.dwSignature == VS_FFI_SIGNATURE ? text : "";
}

std::string WindowsVersion() {
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    const auto get = reinterpret_cast<GetVersion>(reinterpret_cast<uintptr_t>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!get || get(&info) != 0) return "";
    return std::to_string(info.dwMajorVersion) + "." + std::to_string(info.dwMinorVersion) + "." +
           std::to_string(info.dwBuildNumber);
}

}  // namespace vndiscover::host
