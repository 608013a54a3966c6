// Reachability on the test network. What an echo hands to the system: tests/lab/ping_test.py.
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

class PingTest : public DebugSwitchOn, public testing::Test {
  protected:
    Module module;
    LogCapture log;
};

TEST_F(PingTest, AnswersForAHostThatIsThere) {
    EXPECT_EQ(1, module.VxPing("10.77.1.2", 2000));
    EXPECT_THAT(log.Lines(), ElementsAre("IcmpSendEcho dwRetVal = 1\n"));
    EXPECT_EQ(1, module.VxPing("10.77.2.2", 2000)) << "on the other adapter";
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 2000));
}

TEST_F(PingTest, WaitsAsLongAsTheHostAskedFor) {
    const int64_t started = NowMs();
    EXPECT_EQ(0, module.VxPing("10.77.1.99", 1000));
    EXPECT_THAT(NowMs() - started, AllOf(Ge(900), Le(2500)));
    EXPECT_THAT(log.Lines(), ElementsAre("IcmpSendEcho dwRetVal = 0\n"));
}

TEST_F(PingTest, RefusesWhatNamesNoHost) {
    // Not "", which Windows resolves to the machine itself, nor "fe80::", an address of its own.
    for (const char* address : {" ", "no such host", "10.77.1.2.3.4", "::zz"}) {
        EXPECT_EQ(0, module.VxPing(address, 300)) << address;
    }
    EXPECT_EQ(0, module.VxPing(nullptr, 300));
}

// What a system without an IPv6 stack lists, or one that lists nothing.
int WSAAPI NoIPv6(const char* host, const char* service, const addrinfo* hints, addrinfo** list) {
    addrinfo ipv4 = *hints;
    ipv4.ai_family = AF_INET;
    return getaddrinfo(host, service, &ipv4, list);
}
int WSAAPI NoList(const char*, const char*, const addrinfo*, addrinfo**) { return WSANO_RECOVERY; }

TEST_F(PingTest, TellsWhetherThereIsAnIPv6Stack) {
    const Lines socket = {"SCKRAW::SCKRAW()\n", "SCKRAW::~SCKRAW() [-1]\n"};
    EXPECT_EQ(1, module.IsIPv6Supported());
    EXPECT_EQ(socket, log.Lines());
    {
        const ImportPatch patch(module.Handle(), "getaddrinfo", NoIPv6);
        EXPECT_EQ(0, module.IsIPv6Supported());
    }
    log.Clear();
    const ImportPatch patch(module.Handle(), "getaddrinfo", NoList);
    EXPECT_EQ(0, module.IsIPv6Supported());
    EXPECT_THAT(
        log.Lines(),
        ElementsAre(socket[0], "ERROR: getaddrinfo failed with error 11003\r\n", socket[1]));
}

}  // namespace
}  // namespace vndiscover
