// What no export shows: the IPv6 mode of the WS-Discovery manager, and that a socket with an option
// that failed is used, but not bound.
#include "wsd/vx_soap_mgr.h"

#include <gmock/gmock.h>

#include <cstring>

#include "helpers/import_slot.h"

extern "C" {
extern decltype(&::bind) __imp_bind;
extern decltype(&::sendto) __imp_sendto;
extern decltype(&::setsockopt) __imp_setsockopt;
}

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

const auto g_bind = __imp_bind;
const auto g_sendto = __imp_sendto;
const auto g_setsockopt = __imp_setsockopt;
Lines g_calls;
std::string g_failing;

std::string TextOf(const sockaddr* address, int length) {
    char host[64] = {};
    char port[8] = {};
    getnameinfo(address, length, host, sizeof host, port, sizeof port,
                NI_NUMERICHOST | NI_NUMERICSERV);
    return host + std::string(" port ") + port;
}

int WSAAPI Bind(SOCKET handle, const sockaddr* address, int length) {
    g_calls.push_back("bind " + TextOf(address, length));
    return g_bind(handle, address, length);
}

int WSAAPI Send(SOCKET handle, const char* data, int size, int flags, const sockaddr* to,
                int length) {
    g_calls.push_back(std::string(data, data + size) + " to " + TextOf(to, length));
    return g_sendto(handle, data, size, flags, to, length);
}

int WSAAPI SetOption(SOCKET handle, int level, int option, const char* value, int length) {
    const std::tuple<int, int, const char*> names[] = {
        {SOL_SOCKET, SO_RCVTIMEO, "receive timeout"},
        {SOL_SOCKET, SO_SNDTIMEO, "send timeout"},
        {SOL_SOCKET, SO_BROADCAST, "broadcast"},
        {SOL_SOCKET, SO_RCVBUF, "receive buffer"},
        {IPPROTO_IPV6, IPV6_MULTICAST_LOOP, "multicast loop"},
        {IPPROTO_IPV6, IPV6_MULTICAST_HOPS, "multicast hops"}};
    int number = 0;
    std::memcpy(&number, value, static_cast<size_t>(length));
    for (const auto& [knownLevel, known, name] : names) {
        if (level == knownLevel && option == known) {
            g_calls.push_back(name + (" = " + std::to_string(number)) + ", " +
                              std::to_string(length) + " bytes");
        }
    }
    return g_calls.back() == g_failing ? -1 : g_setsockopt(handle, level, option, value, length);
}

TEST(SoapMgr, SendsFromASocketOfEveryAddressBoundIfItsOptionsCouldBeSet) {
    const ImportSlot bindSlot(__imp_bind, &Bind);
    const ImportSlot sendSlot(__imp_sendto, &Send);
    const ImportSlot optionSlot(__imp_setsockopt, &SetOption);
    struct Family {
        Lines addresses, options;
        const char* group;
    };
    const std::string receive = "receive timeout = 700, 4 bytes";
    const std::string send = "send timeout = 700, 4 bytes";
    const Family families[] = {
        {{"10.77.1.1", "10.77.2.1", "127.0.0.1"},
         {receive, send, "broadcast = 1, 4 bytes", ""},
         "239.255.255.250"},
        {{"fe80::1:1", "fe80::2:1"},
         {receive, send, "multicast loop = 0, 1 bytes", "multicast hops = 8, 1 bytes", ""},
         "ff02::1"}};
    for (const Family& family : families) {
        for (const std::string& failing : family.options) {
            Lines expected;
            for (const std::string& address : family.addresses) {
                for (const std::string& option : family.options) {
                    expected.push_back(option.empty() ? "bind " + address + " port 0" : option);
                    if (option == failing) break;
                }
                expected.push_back("receive buffer = 4194304, 4 bytes");
                expected.push_back(std::string("probe to ") + family.group + " port 3702");
            }
            g_failing = failing;
            g_calls.clear();
            VxSoapMgr().Discover(nullptr, 0, 700, &family != families, "probe", 5);
            EXPECT_EQ(expected, g_calls) << failing;
        }
    }
}

}  // namespace
}  // namespace vndiscover
