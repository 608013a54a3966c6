#include "platform/version.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace vndiscover::host {

std::string VersionOf(HMODULE module) {
    const HRSRC resource =
        FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));
    const HGLOBAL block = resource ? LoadResource(module, resource) : nullptr;
    const auto* bytes = static_cast<const uint8_t*>(block ? LockResource(block) : nullptr);
    const size_t size = bytes ? SizeofResource(module, resource) : 0;
    // The fixed part follows a header of variable length, so search for its signature.
    VS_FIXEDFILEINFO info = {};
    for (size_t at = 0; at + sizeof info <= size; at += 4) {
        std::memcpy(&info, bytes + at, sizeof info);
        if (info.dwSignature != VS_FFI_SIGNATURE) continue;
        char text[64];
        std::snprintf(text, sizeof text, "%u.%u.%u.%u", HIWORD(info.dwFileVersionMS),
                      LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
                      LOWORD(info.dwFileVersionLS));
        return text;
    }
    return "";
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
