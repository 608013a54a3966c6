#include "platform/this_computer.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include "platform/owned.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

// The right to use Windows Sockets.
struct WinSockTraits {
    using Value = bool;
    static Value Empty() noexcept { return false; }
    static void Close(Value) noexcept { WSACleanup(); }
};

struct SocketTraits {
    using Value = SOCKET;
    static Value Empty() noexcept { return INVALID_SOCKET; }
    static void Close(Value value) noexcept { closesocket(value); }
};

// Its first address as text; empty if it has none.
std::string AddressOf(const std::string& host, int family) {
    WSADATA data;
    const Owned<WinSockTraits> winSock(WSAStartup(MAKEWORD(2, 2), &data) == 0);
    addrinfo hints = {};
    hints.ai_family = family;
    Owned<ClosedBy<addrinfo*, freeaddrinfo>> list;
    if (getaddrinfo(ToAnsi(host).c_str(), nullptr, &hints, list.Receive()) != 0 || !list) return "";
    char text[64] = "";
    getnameinfo(list.Get()->ai_addr, static_cast<socklen_t>(list.Get()->ai_addrlen), text,
                sizeof text, nullptr, 0, NI_NUMERICHOST);
    return text;
}

}  // namespace

std::string NumericHost(const std::string& host) {
    if (host.find(':') != std::string::npos) return host;
    const std::string address = AddressOf(host, AF_INET);
    return address.empty() ? host : address;
}

bool HasRoute(const std::string& address) {
    WSADATA data;
    const Owned<WinSockTraits> winSock(WSAStartup(MAKEWORD(2, 2), &data) == 0);
    addrinfo hints = {};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_DGRAM;
    Owned<ClosedBy<addrinfo*, freeaddrinfo>> list;
    // Not port 161, which may be what is blocked.
    if (getaddrinfo(address.c_str(), "9", &hints, list.Receive()) != 0 || !list) return false;
    const Owned<SocketTraits> probe(socket(list.Get()->ai_family, SOCK_DGRAM, 0));
    return probe &&
           connect(probe.Get(), list.Get()->ai_addr, static_cast<int>(list.Get()->ai_addrlen)) == 0;
}

bool HasAddress(const std::string& host) { return !AddressOf(host, AF_UNSPEC).empty(); }

}  // namespace vndiscover::host
