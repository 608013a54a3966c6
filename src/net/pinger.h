// One ICMP echo request.
#pragma once

#include <cstdint>

#include "support/system_library.h"

#include <iphlpapi.h>

#include <icmpapi.h>

namespace vndiscover {

// Made for one call.
class Pinger {
  public:
    Pinger();
    ~Pinger();

    // 1: the target answered within timeoutMs; 0: it did not, or the request could not be sent.
    // Dotted IPv4 text is pinged over IPv4; anything else, even 255.255.255.255, over IPv6.
    int Ping(const char* address, uint32_t timeoutMs);

    int EchoV4(const char* address, uint32_t timeoutMs);
    int EchoV6(const char* address, uint32_t timeoutMs);

  private:
    using CreateFileFunction = decltype(&IcmpCreateFile);
    using CloseHandleFunction = decltype(&IcmpCloseHandle);
    using SendEchoFunction = decltype(&IcmpSendEcho);

    // Loaded before `library`: ICMP.DLL forwards to it by name, and would otherwise find a file
    // beside the host.
    SystemLibrary ipHelper_{L"IPHLPAPI.DLL"};
    CreateFileFunction createFile = nullptr;
    CloseHandleFunction closeHandle = nullptr;
    SendEchoFunction sendEcho = nullptr;
    SystemLibrary library{L"ICMP.DLL"};
    int32_t ready = 0;  // 1: all functions were found and WinSock is started
};

}  // namespace vndiscover
