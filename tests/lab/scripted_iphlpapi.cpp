// An IP helper library for tests, put into the system directory in the place of the system's own:
// it tells on standard error what it is asked for, and answers as the environment says.
#define IPHLPAPI_DLL_LINKAGE  // the functions are here, not imported
#include "support/win.h"

#include <iphlpapi.h>

#include <icmpapi.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

unsigned long Scripted(const char* name, unsigned long otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

HANDLE Open(const char* function) {
    std::fprintf(stderr, "%s\n", function);
    return Scripted("SCRIPTED_HANDLE", 7) ? reinterpret_cast<HANDLE>(7) : INVALID_HANDLE_VALUE;
}

int Number(const void* handle) { return static_cast<int>(reinterpret_cast<intptr_t>(handle)); }

std::string HexOf(const void* bytes, size_t size) {
    std::string text;
    char hex[3];
    for (size_t i = 0; i < size; ++i) {
        std::snprintf(hex, sizeof hex, "%02x", static_cast<const uint8_t*>(bytes)[i]);
        text += hex;
    }
    return text;
}

std::string Of(const IP_OPTION_INFORMATION* options) {
    return options ? HexOf(options, 4) + (options->OptionsData ? " and data" : "") : "none";
}

}  // namespace

extern "C" {

HANDLE WINAPI IcmpCreateFile() { return Open("IcmpCreateFile"); }
HANDLE WINAPI Icmp6CreateFile() { return Open("Icmp6CreateFile"); }

BOOL WINAPI IcmpCloseHandle(HANDLE handle) {
    std::fprintf(stderr, "IcmpCloseHandle %d\n", Number(handle));
    return TRUE;
}

DWORD WINAPI IcmpSendEcho(HANDLE handle, IPAddr target, void* data, WORD size,
                          IP_OPTION_INFORMATION* options, void* reply, DWORD replySize,
                          DWORD timeout) {
    std::fprintf(stderr, "IcmpSendEcho %d to %s data %s options %s reply %lu timeout %lu\n",
                 Number(handle), HexOf(&target, 4).c_str(), HexOf(data, size).c_str(),
                 Of(options).c_str(), replySize, timeout);
    std::memset(reply, 0, replySize);
    static_cast<ICMP_ECHO_REPLY*>(reply)->Status = Scripted("SCRIPTED_STATUS", IP_SUCCESS);
    return Scripted("SCRIPTED_REPLIES", 1);
}

DWORD WINAPI Icmp6SendEcho2(HANDLE handle, HANDLE event, FARPROC callback, void* context,
                            sockaddr_in6* from, sockaddr_in6* to, void* data, WORD size,
                            IP_OPTION_INFORMATION* options, void* reply, DWORD replySize,
                            DWORD timeout) {
    std::fprintf(stderr,
                 "Icmp6SendEcho2 %d%s from %s to %s data %s options %s reply %lu timeout %lu\n",
                 Number(handle), event || callback || context ? " asynchronous" : "",
                 HexOf(from, sizeof *from).c_str(), HexOf(to, sizeof *to).c_str(),
                 HexOf(data, size).c_str(), Of(options).c_str(), replySize, timeout);
    std::memset(reply, 0xFF, replySize);  // a status that is no success
    return Scripted("SCRIPTED_REPLIES", 1);
}

}  // extern "C"
