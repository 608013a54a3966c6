// Code between the module and the system that the exports do not use or show: registry reader and
// wide log, sockets (on the loopback only), hashes of files, the sockets of WS-Discovery.
#include <array>
#include <cstring>
#include <fstream>

#include "exports/support/network_test.h"
#include "net/sckraw.h"
#include "snmpv3/crypto/windows/capi_crypto.h"
#include "support/registry.h"
#include "wsd/vx_soap_mgr.h"

// This program's import table entries.
extern "C" decltype(&::sendto) __imp_sendto;
extern "C" decltype(&::setsockopt) __imp_setsockopt;

namespace vndiscover {
namespace {

class RegistryTest : public testing::Test {
  protected:
    ~RegistryTest() override { g_debugSwitches = {0, 0}; }

    static constexpr char kPath[] = "Software\\Varnell Osk\\Debug";
    RegistrySwitches key{nullptr, "Debug"};
    UnitLog log;
};

TEST_F(RegistryTest, ReadsANumberOrLogsWhyItReturnsTheDefault) {
    const HKEY hive = HKEY_LOCAL_MACHINE;
    const std::wstring widePath(std::begin(kPath), std::end(kPath));
    key.Set("Count", REG_DWORD, {0xFE, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(-2, GetRegValueLong(hive, widePath.c_str(), L"Count", 7, KEY_QUERY_VALUE));
    EXPECT_EQ(7, GetRegValueLong(hive, widePath.c_str(), L"Debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(hive, L"No\\Key", L"Debug", 7, 0));
    EXPECT_EQ(-2, GetRegValueLong(hive, kPath, "Count", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(hive, kPath, "debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(hive, kPath, "Count", 7, KEY_CREATE_LINK));
    EXPECT_EQ(0, IsRunningUnderWow64());
    EXPECT_EQ(
        "GetRegValueLong - Get value error - 2 for Debug\n"
        "GetRegValueLong - Open registry error - 2 for No\\Key\n"
        "GetRegValueLong??? - Get value error - 2 for debug\n"
        "GetRegValueLong??? - Get value error - 5 for Count\n",
        log.Text());
}

TEST_F(RegistryTest, SwitchesAreUnderTheKeyDebugByDefault) {
    key.Set("Debug", REG_DWORD, {2, 0, 0, 0});
    key.Set("Dbg2Log", REG_DWORD, {3, 0, 0, 0});
    EXPECT_EQ(3, LoadDebugSwitchesW(nullptr, 0));
    EXPECT_TRUE(g_debugSwitches.debug == 1 && g_debugSwitches.dbg2Log == 1);
    EXPECT_EQ(0, LoadDebugSwitchesW(L"None", 5));
    EXPECT_TRUE(IsDebugLogEnabled() == 5 && g_debugSwitches.dbg2Log == 1) << "set for good";
    LoadDebugSwitches(nullptr, 0);
    EXPECT_EQ(1, IsDebugLogEnabled());
}

// Unlike for narrow lines, the limit of 1,024 characters includes the time stamp. Wine drops the
// last.
TEST_F(RegistryTest, WideLinesAreCutAndNoLineChangesTheLastError) {
    DebugLogW(L"%s", std::wstring(2000, L'9').c_str());
    const std::string cut = log.Text();
    SetLastError(5);
    DebugLogA("callers read it again");
    EXPECT_EQ(5u, GetLastError());
    EXPECT_TRUE(cut == std::string(1000, '9') || cut == std::string(999, '9')) << cut.size();
}

TEST(Sckraw, SendsReceivesAndResolves) {
    constexpr int kPort = 47999;
    SCKRAW device, host;
    device.sock = device.CreateSocket(SOCK_DGRAM, IPPROTO_UDP, AF_INET, 1000, "");
    EXPECT_EQ(0, device.BindV4(device.sock.Get(), "localhost", kPort));
    EXPECT_EQ(2, host.SendTo(AF_INET, "127.0.0.1", kPort, "hi", 2, 1000));
    char buffer[8] = {};
    char from[kSenderTextSize] = {};
    EXPECT_EQ(2, device.RecvFrom(buffer, sizeof buffer, from, 20999));
    EXPECT_STREQ("hi", buffer);
    EXPECT_STREQ("127.0.0.1", from);
    EXPECT_EQ(0, device.RecvFrom(buffer, sizeof buffer, nullptr, 999)) << "no wait at all";
    EXPECT_EQ(SCKRAW_ERROR_TIMEOUT, device.lastError);
    // The resolver's error looks like a number of bytes.
    const int code = host.SendTo(AF_INET, "no.such.name.invalid", kPort, "hi", 2, 1000);
    EXPECT_GT(code, 2);
    EXPECT_EQ(code, WSAGetLastError());
    EXPECT_TRUE(host.sock) << "only a failed send closes it";
    EXPECT_EQ(INADDR_NONE, SCKRAW::ResolveV4("no.such.name.invalid"));
    EXPECT_EQ(htonl(INADDR_LOOPBACK), SCKRAW::ResolveV4("localhost"));
    for (const char* text : {"127.0.0.1", "1.2.3.4.", "....", "1", ""}) {
        EXPECT_FALSE(SCKRAW::IsDottedQuad(text)) << "every text goes to the resolver first";
    }
}

TEST(FileHash, HashesAWholeFileOrLogsWhyNot) {
    const char kName[] = "file_hash_test.bin";
    std::ofstream(kName, std::ios::binary) << std::string(5000, 'a');
    ByteBuffer digest;
    EXPECT_TRUE(CapiHashFile(kName, digest));
    EXPECT_EQ(Hex("7aaa7dec709fa4fa82f3746abfd80bdb"), ToBytes(digest));  // from md5sum
    std::remove(kName);
    UnitLog log;
    EXPECT_FALSE(CapiHashFile(kName, digest));
    EXPECT_TRUE(digest.Empty());
    EXPECT_EQ("Error [2] opening file file_hash_test.bin.\n", log.Text());
}

using Option = std::array<int, 4>;  // level, name, value and its size

const auto g_sendto = __imp_sendto;
const auto g_setsockopt = __imp_setsockopt;
std::vector<Option> g_options;
std::vector<std::string> g_ways;
int g_failing;  // the name of the option that fails, or 0

std::string TextOf(const sockaddr* address, int length) {
    char host[64] = "unbound";
    getnameinfo(address, length, host, sizeof host, nullptr, 0, NI_NUMERICHOST);
    return std::string(host, std::strcspn(host, "%"));
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

// The IPv6 mode too. After one of its options failed, a socket is used, but not bound.
TEST(SoapMgr, SendsFromEveryAddress) {
    const HMODULE program = GetModuleHandleA(nullptr);
    const ImportPatch options(
        program, "setsockopt",
        [](SOCKET handle, int level, int name, const char* value, int length) {
            int number = 0;
            std::memcpy(&number, value, static_cast<size_t>(length));
            g_options.push_back({level, name, number, length});
            return name == g_failing ? SOCKET_ERROR
                                     : g_setsockopt(handle, level, name, value, length);
        });
    const ImportPatch sends(
        program, "sendto",
        [](SOCKET handle, const char* data, int size, int flags, const sockaddr* to, int length) {
            sockaddr_storage local = {};
            auto* const from = reinterpret_cast<sockaddr*>(&local);
            int fromLength = sizeof local;
            getsockname(handle, from, &fromLength);
            g_ways.push_back(TextOf(from, fromLength) + " > " + TextOf(to, length));
            return g_sendto(handle, data, size, flags, to, length);
        });
    const Option receive = {SOL_SOCKET, SO_RCVTIMEO, 700, 4};
    const Option send = {SOL_SOCKET, SO_SNDTIMEO, 700, 4};
    const Option buffer = {SOL_SOCKET, SO_RCVBUF, 4194304, 4};
    ExpectSockets(false, {"10.77.1.1", "10.77.2.1", "127.0.0.1"}, "239.255.255.250",
                  {receive, send, {SOL_SOCKET, SO_BROADCAST, 1, 4}, buffer});
    const Option loop = {IPPROTO_IPV6, IPV6_MULTICAST_LOOP, 0, 1};
    const Option hops = {IPPROTO_IPV6, IPV6_MULTICAST_HOPS, 8, 1};
    ExpectSockets(true, {"fe80::1:1", "fe80::2:1"}, "ff02::1", {receive, send, loop, hops, buffer});
}

}  // namespace
}  // namespace vndiscover
