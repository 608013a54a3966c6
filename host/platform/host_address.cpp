#include "platform/host_address.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include "platform/wide_text.h"
#include "platform/win_sock.h"

namespace vndiscover::host {

namespace {

// Its first address as text; empty if it has none.
std::string AddressOf(const std::string& host, int family) {
    const WinSock winSock;
    addrinfo hints = {};
    hints.ai_family = family;
    addrinfo* found = nullptr;
    if (getaddrinfo(ToAnsi(host).c_str(), nullptr, &hints, &found) != 0 || !found) return "";
    char text[64] = "";
    getnameinfo(found->ai_addr, static_cast<socklen_t>(found->ai_addrlen), text, sizeof text,
                nullptr, 0, NI_NUMERICHOST);
    freeaddrinfo(found);
    return text;
}

}  // namespace

std::string NumericHost(const std::string& host) {
    if (host.find(':') != std::string::npos) return host;
    const std::string address = AddressOf(host, AF_INET);
    return address.empty() ? host : address;
}

bool HasAddress(const std::string& host) { return !AddressOf(host, AF_UNSPEC).empty(); }

}  // namespace vndiscover::host
