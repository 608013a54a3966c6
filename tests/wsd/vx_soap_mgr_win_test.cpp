// What no export reaches: the IPv6 mode of the WS-Discovery manager, and what its sockets do behind
// an option that fails.
#include "wsd/vx_soap_mgr.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "helpers/unit_log.h"

// The slots through which this program calls the system.
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
std::string g_failing;  // the start of the calls that fail

bool Fails(const std::string& call) {
    g_calls.push_back(call);
    if (g_failing.empty() || call.rfind(g_failing, 0) != 0) return false;
    WSASetLastError(WSAENOPROTOOPT);
    return true;
}

std::string TextOf(const sockaddr* address, int length) {
    char host[64] = {};
    char port[8] = {};
    getnameinfo(address, length, host, sizeof host, port, sizeof port,
                NI_NUMERICHOST | NI_NUMERICSERV);
    return host + std::string(" port ") + port;
}

int WSAAPI Bind(SOCKET handle, const sockaddr* address, int length) {
    return Fails("bind " + TextOf(address, length)) ? -1 : g_bind(handle, address, length);
}

int WSAAPI Send(SOCKET handle, const char* data, int size, int flags, const sockaddr* to,
                int length) {
    if (Fails("send " + std::string(data, data + size) + " to " + TextOf(to, length))) return -1;
    return g_sendto(handle, data, size, flags, to, length);
}

int WSAAPI SetOption(SOCKET handle, int level, int option, const char* value, int length) {
    int number = 0;
    std::memcpy(&number, value, static_cast<size_t>(length));
    const std::string name = "option " + std::to_string(level) + '/' + std::to_string(option);
    const std::string all = name + " = " + std::to_string(number) + ", " + std::to_string(length);
    return Fails(all) ? -1 : g_setsockopt(handle, level, option, value, length);
}

template <class Function>
void Redirect(Function& slot, Function target) {
    DWORD protection;
    VirtualProtect(&slot, sizeof slot, PAGE_READWRITE, &protection);
    slot = target;
    VirtualProtect(&slot, sizeof slot, protection, &protection);
}

class SoapMgr : public testing::Test {
  protected:
    SoapMgr() { RedirectAll(Bind, Send, SetOption); }
    ~SoapMgr() override { RedirectAll(g_bind, g_sendto, g_setsockopt); }
    static void RedirectAll(decltype(&::bind) toBind, decltype(&::sendto) toSend,
                            decltype(&::setsockopt) toSetOption) {
        Redirect(__imp_bind, toBind);
        Redirect(__imp_sendto, toSend);
        Redirect(__imp_setsockopt, toSetOption);
    }
    // What a sweep asks of the system while calls that start with `failing` fail.
    const Lines& CallsOf(bool useIPv6, const std::string& failing = "") {
        g_calls.clear();
        g_failing = failing;
        log.Clear();
        VxSoapMgr().Discover(nullptr, 0, 700, useIPv6, "probe", 5);
        return g_calls;
    }

    UnitLog log;
};

Lines Expected(bool useIPv6, const Lines& addresses) {
    const Lines own = useIPv6 ? Lines{"option 41/11 = 0, 1", "option 41/10 = 8, 1"}
                              : Lines{"option 65535/32 = 1, 4"};
    Lines calls;
    for (const std::string& address : addresses) {
        calls.insert(calls.end(), {"option 65535/4102 = 700, 4", "option 65535/4101 = 700, 4"});
        calls.insert(calls.end(), own.begin(), own.end());
        calls.insert(calls.end(), {"bind " + address + " port 0", "option 65535/4098 = 4194304, 4",
                                   std::string("send probe to ") +
                                       (useIPv6 ? "ff02::1" : "239.255.255.250") + " port 3702"});
    }
    return calls;
}

TEST_F(SoapMgr, SendsFromASocketOfEveryAddress) {
    EXPECT_EQ(Expected(false, {"10.77.1.1", "10.77.2.1", "127.0.0.1"}), CallsOf(false));
    EXPECT_EQ(Expected(true, {"fe80::1:1", "fe80::2:1"}), CallsOf(true));
    EXPECT_TRUE(log.Has("-------------- ...nCount [2]\n"));
}

TEST_F(SoapMgr, UsesASocketWithoutTheOptionsThatFail) {
    const std::tuple<bool, const char*, const char*> rows[] = {
        {false, "option 65535/4102", "Failed to set Socket receive timeout\n"},
        {false, "option 65535/4101", "Failed to set Socket send timeout\n"},
        {false, "option 65535/32 ", "Failed to set SO_BROADCAST\n"},
        {true, "option 41/11", "Failed to set IPV6_MULTICAST_LOOP\n"},
        {true, "option 41/10", "Failed to set IPV6_MULTICAST_LOOP\n"}};
    for (const auto& [useIPv6, option, line] : rows) {
        const Lines& calls = CallsOf(useIPv6, option);
        EXPECT_TRUE(log.Has(line)) << option;
        const auto failed = std::find_if(calls.begin(), calls.end(), [&, o = option](auto& call) {
            return call.rfind(o, 0) == 0;
        });
        ASSERT_LE(3, calls.end() - failed) << option;
        EXPECT_EQ("option 65535/4098 = 4194304, 4", failed[1]) << "unbound";
        EXPECT_EQ("send probe", failed[2].substr(0, 10));
    }
}

}  // namespace
}  // namespace vndiscover
