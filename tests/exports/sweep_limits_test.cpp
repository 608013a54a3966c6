// When a sweep ends: silence, a minute, a full table, a stop request, faults of the network.
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;
using testing::SizeIs;

class SweepLimits : public LabTest {};

TEST_F(SweepLimits, TwoSecondsOfSilenceEndAnAdaptersPhase) {
    Waits waits(module, Waits::kReal);
    DeviceIn("neta", {{SnmpText("soon")}, {SnmpText("late"), {}, 1600}});
    const int64_t started = NowMs();
    Sweep();
    EXPECT_THAT(NowMs() - started, AllOf(Ge(1600 + 2000 + 2000), Le(1600 + 2000 + 2000 + 1500)));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=soon", "10.77.1.2=late", "end"));
}

// Answers every 50 ms, which would go on for 20 s; the minute passes because the test moves the
// clock, whose counter starts anew on the way.
TEST_F(SweepLimits, AMinuteEndsAPhaseThatIsNeverSilent) {
    Waits waits(module);
    FastClock clock(module);
    clock.Advance(0u - GetTickCount() - 30000);
    const Receives receives(module, nullptr, [&](int datagrams) {
        if (datagrams == 1) clock.Advance(55000);
        if (datagrams == 6) clock.Advance(5000);
    });
    DeviceIn("neta", {{SnmpText("A"), {}, 0, 400, 50000}});
    Sweep();
    EXPECT_EQ(6u + 1, window.results.size()) << "six devices and the end";
    EXPECT_THAT(waits.Silent(), ElementsAre(2000)) << "of the other adapter";
}

TEST_F(SweepLimits, AFullTableEndsAPhaseAtOnce) {
    Waits waits(module);
    DeviceIn("neta", {{SnmpText("Model 00000"), {}, 0, 8300, 0, 45 + 6}});
    Sweep();
    ASSERT_EQ(8192u + 1, window.results.size());
    EXPECT_EQ("Model 08191", window.results[8191].value);
    EXPECT_TRUE(window.results[8192].isEnd);
    EXPECT_THAT(waits.Silent(), ElementsAre(2000)) << "of the other adapter";
}

class SweepFaults : public LoggedTest {};

// The first is how Windows tells that a datagram sent earlier met a closed port.
TEST_F(SweepFaults, OfReceivingLoseNoAnswerAndEndAPhaseOnlyWithoutWinSock) {
    int sent = 0;
    const Sends sends(module, [&](int call) { return (sent = call, 0); });
    const Receives receives(module, [&](int call) {
        return call == 1 ? WSAECONNRESET : sent == 2 ? WSANOTINITIALISED : 0;
    });
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
    ExpectLog(SweepLines(
        PhaseLines({"Receive Data failed - 10054\n", "tszRecvAddr = [10.77.1.2]\n",
                    "RecvFrom - Timeout\n"},
                   1, {}, 1),
        PhaseLines({"Receive Data failed - 10093\n", "tszRecvAddr = WSAStartup failed\n"}, 0, {},
                   0)));
}

TEST_F(SweepFaults, OfSendingSkipAnAdapter) {
    const Sends sends(module, [](int call) { return call == 1 ? WSAENETUNREACH : 0; });
    DeviceIn("netb", {{SnmpText("B")}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.2.2=B", "end"));
    ExpectLog(SweepLines({"sendto() failed - 10051\n", "sendto() failed, err: 10051\n"},
                         AnsweredLines({"10.77.2.2"})));
}

class SweepStop : public LoggedTest {};

TEST_F(SweepStop, DuringAMessageEndsDeliveryBeforeTheNextDevice) {
    Devices([](const Request&) { return Answers{{SnmpText("first")}, {SnmpText("second")}}; });
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSnmp();
    };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=first", "end"));
    // The other adapter's phase ends with the first datagram.
    ExpectLog(SweepLines(PhaseLines({"tszRecvAddr = [10.77.1.2]\n", "tszRecvAddr = [10.77.1.2]\n",
                                     "RecvFrom - Timeout\n"},
                                    2, {"VxSnmpMgr::StopDiscover\n"}, 1),
                         PhaseLines({"tszRecvAddr = [10.77.2.2]\n"}, 1, {}, 0)));
    // Outside a sweep it is forgotten.
    module.StopDiscoverSnmp();
    window.results.clear();
    window.onResult = nullptr;
    Sweep();
    EXPECT_EQ(2u * 2 + 1, window.results.size());
}

// Answers would come for 20 s and more.
TEST_F(SweepStop, FromAnotherThreadEndsCollectionWithoutDelivery) {
    DeviceIn("neta", {{SnmpText("A"), {}, 0, 400, 50000}});
    std::thread stopping([&] {
        Sleep(500);
        module.StopDiscoverSnmp();
    });
    const int64_t started = NowMs();
    Sweep();
    stopping.join();
    EXPECT_LE(NowMs() - started, 5000);
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
    EXPECT_THAT(agents->Requests(), SizeIs(2)) << "the other adapter is still asked";
}

}  // namespace
}  // namespace vndiscover
