// When the three kinds of sweep end, and what they have delivered by then.
#include <thread>

#include "exports/support/v3_test.h"

namespace vndiscover {
namespace {

enum class Protocol { kV1, kV3, kWsd };

struct Kind {
    const char* name;
    Protocol protocol;
    int waitMs, totalMs, adapters;
};

// Devices are in neta by default, and their n-th answer is device n. WS-Discovery delivers results
// at once, the other sweeps at the end of a phase.
class SweepEndings : public V3Test, public WithParamInterface<Kind> {
  protected:
    SweepEndings() : V3Test(false) {}

    bool IsWsd() const { return GetParam().protocol == Protocol::kWsd; }

    // This many devices, one every gapMs.
    void Crowd(size_t count, uint32_t gapMs, bool isEverywhere = false) {
        Devices([=, next = 0](const Request& request) mutable {
            if (request.net != "neta" && !isEverywhere) return Answers();
            const bool isV3 = GetParam().protocol == Protocol::kV3;
            if (isV3 && request.data != V3Discovery())
                return Answers{{V3Text(std::to_string(next++))}};
            Answers answers = Repeated(count, {V3Report()}, gapMs);
            for (size_t i = 0; i < count && !isV3; ++i) {
                const std::string text = std::to_string(i);
                answers[i].data = IsWsd() ? TextBytes(text) : SnmpText(text);
            }
            return answers;
        });
    }
    void Run(ResultWindow& to) {
        if (GetParam().protocol == Protocol::kV1)
            module.DiscoverSnmp(to.Handle(), to.kMessage, 0, 0, nullptr, nullptr);
        if (GetParam().protocol == Protocol::kV3) SweepV3(to);
        if (IsWsd()) module.DiscoverSoap(to.Handle(), to.kMessage, 4999, "<probe/>", 8);
    }
    void Run() { Run(window); }
    void Stop() { IsWsd() ? module.StopDiscoverSoap() : module.StopDiscoverSnmp(); }
    // The first devices, each once and in order, and the final message if there is one.
    Lines First(int count) const {
        Lines texts;
        for (int i = 0; i < count; ++i) texts.push_back("10.77.1.2=" + std::to_string(i));
        return WithEnd(texts);
    }
    static Lines WithEnd(Lines texts) {
        return GetParam().protocol == Protocol::kV3 ? texts : texts + Lines{"end"};
    }
    // Of the adapters whose phases end with a time-out.
    std::vector<int> SilentPhases(int count) const {
        return std::vector<int>(static_cast<size_t>(count), GetParam().waitMs);
    }
};

TEST_P(SweepEndings, EndsAfterTwoSecondsOfSilence) {
    Crowd(3, GetParam().waitMs - 1);
    Run();
    EXPECT_EQ(First(3), window.Texts());
    EXPECT_EQ(SilentPhases(GetParam().adapters), SilentWaits());
}

TEST_P(SweepEndings, EndsAtItsTimeLimitWithoutSilence) {
    Crowd(1000, 700);
    Run();
    // The answer that arrives at the time limit is the last one.
    const int limit = GetParam().totalMs;
    EXPECT_EQ(First(limit / 700 + 2), window.Texts());
    EXPECT_EQ(SilentPhases(GetParam().adapters - 1), SilentWaits()) << "of the others";
}

TEST_P(SweepEndings, EndsWithAFullTable) {
    Crowd(8300, 0);
    Run();
    ASSERT_THAT(window.results, SizeIs(First(8192).size()));
    EXPECT_EQ(First(8192), window.Texts());
    EXPECT_EQ(SilentPhases(GetParam().adapters - 1), SilentWaits()) << "of the others";
}

// The next phase ends with its first datagram, and WS-Discovery has delivered that.
TEST_P(SweepEndings, StopsFromWithinAResultMessage) {
    Crowd(3, 0, true);
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) Stop();
    };
    Run();
    EXPECT_EQ(IsWsd() ? WithEnd({"10.77.1.2=0", "10.77.2.2=0", "127.0.0.1=0"}) : First(1),
              window.Texts());
    EXPECT_EQ(SilentPhases(IsWsd() ? 0 : 1), SilentWaits());
    // Outside a sweep it has no effect.
    Stop();
    Crowd(3, 0);
    window.results.clear();
    window.onResult = nullptr;
    Run();
    EXPECT_EQ(First(3), window.Texts());
}

// WS-Discovery has delivered by then, and the requests of the other adapters are still sent.
TEST_P(SweepEndings, StopsWhileCollecting) {
    Crowd(1000, 700);
    network.onDatagram = [&](int datagrams) {
        if (datagrams == 9) Stop();
    };
    Run();
    EXPECT_EQ(First(IsWsd() ? 9 : 0), window.Texts());
    EXPECT_THAT(Senders(), Contains("10.77.2.1"));
    EXPECT_EQ(SilentPhases(GetParam().adapters - 1), SilentWaits());
}

TEST_P(SweepEndings, EndsIfWinSockIsNotStarted) {
    Crowd(3, 0, true);
    network.receiveError = [&](int call) {
        // An earlier failed receive loses no answer.
        return call == 1 ? WSAECONNRESET : network.Datagrams() >= 2 ? WSANOTINITIALISED : 0;
    };
    Run();
    EXPECT_EQ(First(GetParam().protocol == Protocol::kV3 ? 1 : 2), window.Texts());
    EXPECT_THAT(network.NowMs(), Le(100u)) << "at once";
}

// For example after an ICMP "port unreachable". A sweep must not keep a core busy with failing
// receives.
TEST_P(SweepEndings, EndsAtItsTimeLimitIfEveryReceiveFails) {
    for (const int error : {WSAECONNRESET, WSAENETRESET, WSAENETDOWN}) {
        Crowd(3, 0);
        network.receiveError = [error](int) { return error; };
        const uint64_t started = network.NowMs();
        const int before = network.Receives();
        Run();
        const int adapters = GetParam().adapters;
        EXPECT_GE(static_cast<int>(network.NowMs() - started), adapters * GetParam().totalMs);
        EXPECT_LE(network.Receives() - before, adapters * (GetParam().totalMs / 10 + 1));
    }
}

// The host must not end the thread, but is not left without sweeps for good.
TEST_P(SweepEndings, EndsWithItsThread) {
    Crowd(3, 0);
    const auto onAnotherThread = [&](const std::function<void()>& onResult) {
        std::thread([&] {
            ResultWindow own;
            own.onResult = [&](const Result&) { onResult(); };
            Run(own);
        }).join();
    };
    onAnotherThread([&] {
        onAnotherThread([] { ADD_FAILURE() << "two sweeps at once"; });
        ExitThread(0);
    });
    Crowd(3, 0);
    Run();
    EXPECT_EQ(First(3), window.Texts());
}

INSTANTIATE_TEST_SUITE_P(Of, SweepEndings,
                         Values(Kind{"V1", Protocol::kV1, 2000, 60000, 2},
                                Kind{"V3", Protocol::kV3, 2000, 60000, 2},
                                Kind{"Wsd", Protocol::kWsd, 4000, 30000, 3}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace vndiscover
