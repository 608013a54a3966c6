#include "platform/host_address.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include "platform/wide_text.h"
#include "platform/win_sock.h"

namespace vndiscover::host {

std::string NumericHost(const std::string& host) {
    if (host.find(':') != std::string::npos) return host;
    const WinSock winSock;
    addrinfo hints = {};
    hints.ai_family = AF_INET;
    addrinfo* found = nullptr;
    if (getaddrinfo(ToAnsi(host).c_str(), nullptr, &hints, &found) != 0 || !found) return host;
    char text[64] = "";
    const int error = getnameinfo(found->ai_addr, static_cast<socklen_t>(found->ai_addrlen), text,
                                  sizeof text, nullptr, 0, NI_NUMERICHOST);
    freeaddrinfo(found);
    return error == 0 ? text : host;
}

bool HasAddress(const std::string& host) {
    const WinSock winSock;
    addrinfo* found = nullptr;
    if (getaddrinfo(ToAnsi(host).c_str(), nullptr, nullptr, &found) != 0) return false;
    freeaddrinfo(found);
    return true;
}

}  // namespace vndiscover::host
