// Reachability: how an echo calls the system's functions, which are loaded at run time, and
// interprets their results.
#include "exports/support/network_test.h"

#include <icmpapi.h>

namespace vndiscover {
namespace {

// What a name or a system without IPv6 lists.
int WSAAPI IPv4Alone(const char* host, const char* service, const addrinfo* hints,
                     addrinfo** list) {
    addrinfo ipv4 = hints ? *hints : addrinfo();
    ipv4.ai_family = AF_INET;
    return getaddrinfo(host, service, &ipv4, list);
}

const HANDLE kHandle = reinterpret_cast<HANDLE>(7);

struct System {
    HANDLE handle = kHandle;
    DWORD replies = 1;
    ULONG status = IP_SUCCESS;
};
System g_system;
Lines g_calls;

std::string HexOf(const void* bytes, size_t size) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    return ToHex(Bytes(first, first + size));
}

DWORD WINAPI Send(HANDLE, IPAddr target, void* data, WORD size, IP_OPTION_INFORMATION* options,
                  void* reply, DWORD replySize, DWORD timeout) {
    g_calls.push_back("to " + HexOf(&target, 4) + " data " + HexOf(data, size) + " reply " +
                      std::to_string(replySize) + " timeout " + std::to_string(timeout) +
                      (options ? " options" : ""));
    std::memset(reply, 0, replySize);
    static_cast<ICMP_ECHO_REPLY*>(reply)->Status = g_system.status;
    return g_system.replies;
}

DWORD WINAPI Send6(HANDLE, HANDLE event, FARPROC callback, void* context, sockaddr_in6* from,
                   sockaddr_in6* to, void*, WORD size, IP_OPTION_INFORMATION* options, void* reply,
                   DWORD replySize, DWORD timeout) {
    g_calls.push_back("from " + HexOf(from, sizeof *from) + " to " + HexOf(to, sizeof *to) +
                      " options " + HexOf(options, 4) + " data " + std::to_string(size) +
                      " reply " + std::to_string(replySize) + " timeout " +
                      std::to_string(timeout) +
                      (event || callback || context || options->OptionsData ? " and more" : ""));
    std::memset(reply, 0xFF, replySize);  // a status other than success
    return g_system.replies;
}

class Echo : public NetworkTest {
  protected:
    Echo() {
        lookup.Set("IcmpCreateFile", [] { return g_calls.push_back("create"), g_system.handle; });
        lookup.Set("Icmp6CreateFile",
                   [] { return g_calls.push_back("create 6"), g_system.handle; });
        lookup.Set("IcmpCloseHandle", [](HANDLE handle) {
            g_calls.push_back(handle == g_system.handle ? "close" : "close another");
            return TRUE;
        });
        lookup.Set("IcmpSendEcho", Send);
        lookup.Set("Icmp6SendEcho2", Send6);
    }
    void ExpectPing(const char* host, int answered, const Lines& calls,
                    const System& system = System()) {
        g_system = system;
        g_calls.clear();
        EXPECT_EQ(answered, module.VxPing(host, 1234)) << (host ? host : "(null)");
        EXPECT_EQ(calls, g_calls) << (host ? host : "(null)");
    }
    Lines V6(const std::string& target) {
        const std::string anybody = "1700" + std::string(52, '0');
        return {"create 6",
                "from " + anybody + " to 1700000000000000" + target +
                    "00000000 options ff000000 data 0 reply 1072 timeout 1234",
                "close"};
    }

    LookupPatch lookup{module};
    const Lines v4 = {"create", "to 0a4d0102 data 4461746120427566 reply 48 timeout 1234", "close"};
    const Lines v6 = V6("fe800000000000000000000000010002");
};

TEST_F(Echo, OnlyIPv4RepliesMustBeSuccessful) {
    ExpectPing("10.77.1.2", 1, v4);
    ExpectPing("10.77.1.2", 0, v4, {kHandle, 0});
    ExpectPing("10.77.1.2", 0, v4, {kHandle, 1, 11003});  // from a router
    ExpectPing("10.77.1.2", 0, {"create"}, {INVALID_HANDLE_VALUE});
    ExpectPing("fe80::1:2", 1, v6);
    ExpectPing("fe80::1:2", 0, v6, {kHandle, 0});
    ExpectPing("fe80::1:2", 0, {"create 6"}, {INVALID_HANDLE_VALUE});
    const std::string counted = "IcmpSendEcho dwRetVal = ";
    EXPECT_EQ((Lines{counted + "1\n", counted + "0\n", counted + "1\n"}), log.Lines());
}

TEST_F(Echo, NamesAndTheBroadcastAddressUseIPv6) {
    ExpectPing("ip6-localhost", 1, V6("00000000000000000000000000000001"));
    // Neither "", which Windows resolves to this computer, nor "fe80::", one of its addresses.
    for (const char* none : {"no such host", "10.77.1.2.3.4", "::zz", (const char*)nullptr}) {
        ExpectPing(none, 0, {});
    }
    const ImportPatch resolver(module.Handle(), "getaddrinfo", IPv4Alone);
    for (const char* host : {"localhost", "255.255.255.255", "nobody"}) ExpectPing(host, 0, {});
}

TEST_F(Echo, NeedsEveryFunction) {
    for (const char* function : {"IcmpCreateFile", "IcmpCloseHandle", "IcmpSendEcho",
                                 "Icmp6CreateFile", "Icmp6SendEcho2"}) {
        void* const there = std::exchange(lookup.found[function], nullptr);
        ExpectPing("fe80::1:2", 0, {});
        lookup.found[function] = there;
    }
}

using IPv6Stack = NetworkTest;

TEST_F(IPv6Stack, IsDetected) {
    EXPECT_EQ(1, module.IsIPv6Supported());
    EXPECT_THAT(log.Lines(), ElementsAre("SCKRAW::SCKRAW()\n", "SCKRAW::~SCKRAW() [-1]\n"));
    const ImportPatch withoutIPv6(module.Handle(), "getaddrinfo", IPv4Alone);
    EXPECT_EQ(0, module.IsIPv6Supported());
    const ImportPatch withoutList(
        module.Handle(), "getaddrinfo",
        [](PCSTR, PCSTR, const addrinfo*, addrinfo**) { return WSANO_RECOVERY; });
    EXPECT_EQ(0, module.IsIPv6Supported());
    EXPECT_TRUE(log.Has("ERROR: getaddrinfo failed with error 11003\r\n"));
}

}  // namespace
}  // namespace vndiscover
