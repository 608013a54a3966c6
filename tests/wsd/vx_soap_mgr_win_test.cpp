// Not visible through the exports: the IPv6 mode of the WS-Discovery manager, and that a socket is
// used but not bound after one of its options failed.
#include "wsd/vx_soap_mgr.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

// This program's import table entries.
extern "C" decltype(&::sendto) __imp_sendto;
extern "C" decltype(&::setsockopt) __imp_setsockopt;

namespace vndiscover {
namespace {

using Option = std::array<int, 4>;  // level, name, value and its size

const auto g_sendto = __imp_sendto;
const auto g_setsockopt = __imp_setsockopt;
std::vector<Option> g_options;
std::vector<std::string> g_ways;
int g_failing;  // the name of the option that fails, or 0

int WSAAPI SetOption(SOCKET handle, int level, int name, const char* value, int length) {
    int number = 0;
    std::memcpy(&number, value, static_cast<size_t>(length));
    g_options.push_back({level, name, number, length});
    return name == g_failing ? SOCKET_ERROR : g_setsockopt(handle, level, name, value, length);
}

std::string TextOf(const sockaddr* address, int length) {
    char host[64] = "unbound";
    getnameinfo(address, length, host, sizeof host, nullptr, 0, NI_NUMERICHOST);
    return std::string(host, std::strcspn(host, "%"));
}

int WSAAPI Send(SOCKET handle, const char* data, int size, int flags, const sockaddr* to,
                int length) {
    sockaddr_storage from = {};
    int fromLength = sizeof from;
    getsockname(handle, reinterpret_cast<sockaddr*>(&from), &fromLength);
    g_ways.push_back(TextOf(reinterpret_cast<sockaddr*>(&from), fromLength) + " > " +
                     TextOf(to, length));
    return g_sendto(handle, data, size, flags, to, length);
}

template <class Function>
void Lead(Function& slot, Function target) {
    DWORD protection;
    VirtualProtect(&slot, sizeof slot, PAGE_READWRITE, &protection);
    slot = target;
}

// Lets each option of each address's socket fail in turn; the last, the receive buffer, has no
// effect.
void ExpectSockets(bool useIPv6, const std::vector<std::string>& addresses, const char* group,
                   const std::vector<Option>& options) {
    for (const Option& failing : options) {
        std::vector<Option> expected;
        std::vector<std::string> ways;
        for (const std::string& address : addresses) {
            for (const Option& option : options) {
                expected.push_back(option);
                if (option == failing) break;
            }
            if (failing != options.back()) expected.push_back(options.back());
            ways.push_back((failing == options.back() ? address : "unbound") + " > " + group);
        }
        g_failing = failing[1];
        g_options.clear();
        g_ways.clear();
        VxSoapMgr().Discover(nullptr, 0, 700, useIPv6, "probe", 5);
        EXPECT_EQ(expected, g_options) << failing[1];
        EXPECT_EQ(ways, g_ways) << failing[1];
    }
}

TEST(SoapMgr, SendsFromEveryAddressAndBindsUnlessAnOptionFails) {
    const Option receive = {SOL_SOCKET, SO_RCVTIMEO, 700, 4};
    const Option send = {SOL_SOCKET, SO_SNDTIMEO, 700, 4};
    const Option buffer = {SOL_SOCKET, SO_RCVBUF, 4194304, 4};
    Lead(__imp_setsockopt, &SetOption);
    Lead(__imp_sendto, &Send);
    ExpectSockets(false, {"10.77.1.1", "10.77.2.1", "127.0.0.1"}, "239.255.255.250",
                  {receive, send, {SOL_SOCKET, SO_BROADCAST, 1, 4}, buffer});
    const Option loop = {IPPROTO_IPV6, IPV6_MULTICAST_LOOP, 0, 1};
    const Option hops = {IPPROTO_IPV6, IPV6_MULTICAST_HOPS, 8, 1};
    ExpectSockets(true, {"fe80::1:1", "fe80::2:1"}, "ff02::1", {receive, send, loop, hops, buffer});
    Lead(__imp_setsockopt, g_setsockopt);
    Lead(__imp_sendto, g_sendto);
}

}  // namespace
}  // namespace vndiscover
