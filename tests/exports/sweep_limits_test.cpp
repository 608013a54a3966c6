// When a sweep ends: silence, a minute, a full table, a stop request, faults of the network.
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;

class SweepLimits : public LabTest {};

TEST_F(SweepLimits, TwoSecondsOfSilenceEndAnAdaptersPhase) {
    Waits waits(module, Waits::kReal);
    Devices([](const Request& request) {
        if (request.net != "neta") return std::vector<Answer>();
        return std::vector<Answer>{{SnmpText("soon")}, {SnmpText("late"), {}, 1600}};
    });
    const int64_t started = NowMs();
    Sweep();
    EXPECT_THAT(NowMs() - started, AllOf(Ge(1600 + 2000 + 2000), Le(1600 + 2000 + 2000 + 1500)));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=soon", "10.77.1.2=late", "end"));
}

// Answers every 50 ms, which would go on for 20 s; the minute passes because the test moves the
// clock.
TEST_F(SweepLimits, AMinuteEndsAPhaseThatIsNeverSilent) {
    Waits waits(module);
    FastClock clock(module);
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
    const int64_t started = NowMs();
    Sweep();
    RecordProperty("milliseconds", static_cast<int>(NowMs() - started));
    ASSERT_EQ(8192u + 1, window.results.size());
    for (int i = 0; i < 8192; ++i) {
        char expected[16];
        std::snprintf(expected, sizeof expected, "Model %05d", i);
        ASSERT_EQ(expected, window.results[static_cast<size_t>(i)].value);
    }
    EXPECT_TRUE(window.results.back().isEnd);
    EXPECT_THAT(waits.Silent(), ElementsAre(2000)) << "of the other adapter";
    EXPECT_EQ(2u, agents->Requests().size());
}

class SweepFaults : public QuickLabTest {};

// How Windows tells that a datagram sent earlier met a closed port.
TEST_F(SweepFaults, AResetLosesNoAnswer) {
    const Receives receives(module, [](int call) { return call == 1 ? WSAECONNRESET : 0; });
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
}

TEST_F(SweepFaults, ASocketThatAlwaysFailsDoesNotKeepACoreBusy) {
    FastClock clock(module);
    const Receives receives(module, [&](int call) {
        if (call % 100 == 0) clock.Advance(60000);
        return WSAENETDOWN;
    });
    SilentDevices();
    const int64_t started = NowMs();
    Sweep();
    EXPECT_EQ(200, receives.Calls()) << "retried until the minute is over";
    EXPECT_THAT(NowMs() - started, Ge(200 * 5)) << "without a pause";
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

TEST_F(SweepFaults, SocketsThatAreNotStartedEndThePhase) {
    const Receives receives(module, [](int) { return WSANOTINITIALISED; });
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep();
    EXPECT_LE(receives.Calls(), 2);
    EXPECT_EQ(2u, agents->Requests().size());
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

TEST_F(SweepFaults, AnAdapterThatCannotSendIsSkipped) {
    const Sends sends(module, [](int call) { return call == 1 ? WSAENETUNREACH : 0; });
    Devices([](const Request& request) {
        return std::vector<Answer>{{SnmpText("Model " + request.net)}};
    });
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.2.2=Model netb", "end"));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000)) << "no phase for the first";
}

class SweepStop : public QuickLabTest {
  protected:
    void TwoDevicesEach() {
        Devices([](const Request&) {
            return std::vector<Answer>{{SnmpText("first")}, {SnmpText("second")}};
        });
    }
    size_t RequestsSent() { return agents->Requests().size(); }
};

TEST_F(SweepStop, FromTheWindowEndsDeliveryBeforeTheNextDevice) {
    TwoDevicesEach();
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSnmp();
    };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=first", "end"));
    EXPECT_EQ(2u, RequestsSent()) << "the other adapter is still asked";
}

TEST_F(SweepStop, FromAnotherThreadDuringAMessageActsAlike) {
    TwoDevicesEach();
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) std::thread([&] { module.StopDiscoverSnmp(); }).join();
    };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=first", "end"));
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
    EXPECT_EQ(2u, RequestsSent());
}

TEST_F(SweepStop, FromAnotherThreadEndsASilentWaitWithItsEnd) {
    SilentDevices();
    std::thread stopping([&] {
        Sleep(100);
        module.StopDiscoverSnmp();
    });
    Sweep();
    stopping.join();
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000));
    EXPECT_EQ(2u, RequestsSent());
}

TEST_F(SweepStop, OutsideASweepIsForgotten) {
    TwoDevicesEach();
    window.onResult = [&](const Result& result) {
        if (result.isEnd) module.StopDiscoverSnmp();
    };
    module.StopDiscoverSnmp();
    Sweep();
    Sweep();
    EXPECT_EQ(2u * (4 + 1), window.results.size());
}

}  // namespace
}  // namespace vndiscover
