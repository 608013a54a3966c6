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
    Pinger(const Pinger&) = delete;
    Pinger& operator=(const Pinger&) = delete;

    // 1: the target answered within timeoutMs; 0: it did not, or the request could not be made.
    // Valid dotted IPv4 text takes the IPv4 way, all else, 255.255.255.255 among it, the IPv6 way.
    int Ping(const char* address, uint32_t timeoutMs);

    int EchoV4(const char* address, uint32_t timeoutMs);
    int EchoV6(const char* address, uint32_t timeoutMs);

  private:
    using CreateFileFunction = decltype(&IcmpCreateFile);
    using CloseHandleFunction = decltype(&IcmpCloseHandle);
    using SendEchoFunction = decltype(&IcmpSendEcho);

    // Held before `library`: ICMP.DLL only forwards to it by name, and would else take a file
    // beside the host.
    SystemLibrary ipHelper{L"IPHLPAPI.DLL"};
    CreateFileFunction createFile = nullptr;
    CloseHandleFunction closeHandle = nullptr;
    SendEchoFunction sendEcho = nullptr;
    SystemLibrary library{L"ICMP.DLL"};
    int32_t ready = 0;  // 1: all functions are there and WinSock is started
};

}  // namespace vndiscover
