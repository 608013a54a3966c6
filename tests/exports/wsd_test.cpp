// WS-Discovery sweeps: what goes out, when a phase ends, what is delivered, and what the log says.
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kProbe[] = "<probe/>";
constexpr int kSecond = 1000;

// Every test gets buffers of the size that the header promises.
template <class Base>
class WsdBase : public Base {
  protected:
    int32_t Sweep(UINT timeout, const Bytes& probe = TextBytes(kProbe)) {
        return this->module.DiscoverSoap(replies.Handle(), ResultWindow::kMessage, timeout,
                                         reinterpret_cast<const char*>(probe.data()),
                                         static_cast<int32_t>(probe.size()));
    }
    void TwoRepliesEach() {
        this->Devices([](const Request& request) {
            return std::vector<Answer>{{TextBytes("first of " + request.net)},
                                       {TextBytes("second")}};
        });
    }

    ResultWindow replies{VN_SOAP_REPLY_SIZE};
};

class WsdTest : public WsdBase<QuickLabTest> {};

class WsdProbe : public WsdTest {};

TEST_F(WsdProbe, LeavesByteForByteFromEveryAdapterAndFromTheLoopback) {
    Bytes probe;
    for (int i = 0; i < 2048; ++i) probe.push_back(static_cast<uint8_t>(i));
    SilentDevices();
    EXPECT_EQ(0, Sweep(kSecond, probe));
    std::vector<std::string> sent;
    for (const Request& request : agents->Requests()) {
        sent.push_back(request.net + ": " + request.sender + " > " + request.local + ':' +
                       std::to_string(request.port));
        EXPECT_EQ(probe, request.data);
    }
    EXPECT_THAT(sent, ElementsAre("neta: 10.77.1.1 > 239.255.255.250:3702",
                                  "netb: 10.77.2.1 > 239.255.255.250:3702",
                                  "host: 127.0.0.1 > 239.255.255.250:3702"));
    EXPECT_THAT(replies.Texts(), ElementsAre("end"));
}

TEST_F(WsdProbe, IsNotSentWithALengthThatDoesNotFit) {
    const std::string probe(4096, 'x');
    SilentDevices();
    for (const int32_t length : {0, -1, INT32_MIN, 2049, 4096, INT32_MAX}) {
        replies.results.clear();
        EXPECT_EQ(0, module.DiscoverSoap(replies.Handle(), ResultWindow::kMessage, kSecond,
                                         probe.c_str(), length));
        EXPECT_THAT(replies.Texts(), ElementsAre("end")) << length;
    }
    EXPECT_THAT(agents->Requests(), IsEmpty());
    module.DiscoverSoap(replies.Handle(), ResultWindow::kMessage, 0, nullptr, 5);
    ASSERT_THAT(agents->Requests(), SizeIs(3));
    EXPECT_EQ(Bytes(5, 0), agents->Requests()[0].data) << "none at all is so many zero bytes";
}

class WsdTimeout : public WsdTest {};

TEST_F(WsdTimeout, IsCountedInWholeSeconds) {
    SilentDevices();
    std::vector<int> expected;
    const std::pair<UINT, int> rows[] = {{2500, 2000}, {1000, 1000},     {999, 0},
                                         {0, 0},       {0x80000000u, 0}, {0xFFFFFFFFu, 0}};
    for (const auto& [timeout, waitMs] : rows) {
        Sweep(timeout);
        expected.insert(expected.end(), 3, waitMs);
    }
    EXPECT_EQ(expected, waits.Silent());
}

// The devices answer while the first send is made to last, so the poll finds the answers queued.
int WSAAPI SendAndPause(SOCKET handle, const char* data, int length, int flags, const sockaddr* to,
                        int toLength) {
    const int sent = sendto(handle, data, length, flags, to, toLength);
    Sleep(700);
    return sent;
}

TEST_F(WsdTimeout, BelowASecondTakesWhatIsQueued) {
    const ImportPatch patch(module.Handle(), "sendto", SendAndPause);
    DeviceIn("neta", {{TextBytes("first")}, {TextBytes("second")}});
    Sweep(999);
    EXPECT_THAT(replies.Texts(), ElementsAre("10.77.1.2=first", "10.77.1.2=second", "end"));
}

class WsdReplies : public WsdTest {};

TEST_F(WsdReplies, AreDeliveredRawUpTo2048BytesAndZeroPadded) {
    const auto reply = [](size_t size, char letter) {
        return Answer{TextBytes(std::string(size, letter))};
    };
    const Bytes raw = Hex("00 ff 1b 00 41");
    DeviceIn("neta", {reply(1, 'a'), reply(2047, 'b'), reply(2048, 'c'), reply(2049, 'd'),
                      reply(9000, 'e'), reply(0, 'f'), Answer{raw}});
    Sweep(kSecond);
    const std::vector<Bytes> expected = {TextBytes("a") + Bytes(2047, 0),
                                         Bytes(2047, 'b') + Bytes{0}, Bytes(2048, 'c'),
                                         raw + Bytes(2043, 0)};
    ASSERT_EQ(expected.size() + 1, replies.results.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expected[i], replies.results[i].buffer) << i;
        EXPECT_EQ("10.77.1.2", replies.results[i].address);
    }
    EXPECT_TRUE(replies.results.back().isEnd);
}

TEST_F(WsdReplies, ComeAsTheyArriveDuplicatesIncluded) {
    Devices([](const Request& request) {
        return std::vector<Answer>{{TextBytes(request.net), {}, 0, 2}};
    });
    size_t askedAtFirst = 0;
    replies.onResult = [&](const Result&) {
        if (askedAtFirst == 0) askedAtFirst = agents->Requests().size();
    };
    Sweep(kSecond);
    EXPECT_THAT(replies.Texts(),
                ElementsAre("10.77.1.2=neta", "10.77.1.2=neta", "10.77.2.2=netb", "10.77.2.2=netb",
                            "127.0.0.1=host", "127.0.0.1=host", "end"));
    EXPECT_EQ(1u, askedAtFirst) << "delivered before the next adapter's turn";
}

class WsdLimits : public WsdTest {};

// Answers every 50 ms, which would go on for 20 s; half a minute passes because the test moves the
// clock.
TEST_F(WsdLimits, HalfAMinuteEndsAPhaseThatIsNeverSilent) {
    FastClock clock(module);
    const Receives receives(module, nullptr, [&](int datagrams) {
        if (datagrams == 1) clock.Advance(28000);
        if (datagrams == 6) clock.Advance(2000);
    });
    DeviceIn("neta", {{TextBytes("A"), {}, 0, 400, 50000}});
    Sweep(kSecond);
    EXPECT_THAT(replies.results, SizeIs(6 + 1));
    EXPECT_THAT(waits.Silent(), ElementsAre(1000, 1000)) << "of the other two";
}

// The clock stands still, so that the table's end comes first on a busy machine too.
DWORD WINAPI StandingTickCount() { return 0; }

TEST_F(WsdLimits, AFloodEndsItsPhaseWith8192Replies) {
    const ImportPatch patch(module.Handle(), "GetTickCount", StandingTickCount);
    DeviceIn("neta", {{TextBytes("Reply 00000"), {}, 0, 8300, 0, 6}});
    Sweep(4 * kSecond);
    ASSERT_THAT(replies.results, SizeIs(8192 + 1));
    for (int i = 0; i < 8192; ++i) {
        char expected[16];
        std::snprintf(expected, sizeof expected, "Reply %05d", i);
        ASSERT_EQ(expected, replies.results[static_cast<size_t>(i)].value);
    }
    EXPECT_THAT(waits.Silent(), ElementsAre(4000, 4000)) << "of the other two";
}

class WsdStop : public WsdTest {};

TEST_F(WsdStop, FromTheWindowEndsThePhaseAtOnce) {
    TwoRepliesEach();
    replies.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSoap();
    };
    Sweep(kSecond);
    EXPECT_THAT(replies.Texts(), ElementsAre("10.77.1.2=first of neta", "10.77.2.2=first of netb",
                                             "127.0.0.1=first of host", "end"))
        << "the rest is still asked";
    EXPECT_THAT(waits.Silent(), IsEmpty());
}

TEST_F(WsdStop, FromAnotherThreadEndsAPhaseOfManyReplies) {
    DeviceIn("neta", {{TextBytes("A"), {}, 0, 400, 50000}});  // for 20 s
    std::thread stopping([&] {
        Sleep(500);
        module.StopDiscoverSoap();
    });
    const int64_t started = NowMs();
    Sweep(kSecond);
    stopping.join();
    EXPECT_LE(NowMs() - started, 8000);
    EXPECT_TRUE(replies.results.back().isEnd);
    EXPECT_THAT(agents->Requests(), SizeIs(3));
}

TEST_F(WsdStop, OutsideASweepIsForgotten) {
    TwoRepliesEach();
    module.StopDiscoverSoap();
    Sweep(kSecond);
    EXPECT_THAT(replies.results, SizeIs(6 + 1));
}

TEST_F(WsdStop, ASweepFromWithinAMessageDoesNothing) {
    TwoRepliesEach();
    replies.onResult = [&](const Result& result) {
        if (!result.isEnd) Sweep(kSecond, TextBytes("another"));
    };
    Sweep(kSecond);
    EXPECT_THAT(replies.results, SizeIs(6 + 1)) << "and the sweep under way goes on unharmed";
    EXPECT_THAT(agents->Requests(), SizeIs(3));
}

class WsdLog : public WsdBase<LoggedTest> {
  protected:
    const Lines start = {"VxSoapMgr::Discover\n", "SCKRAW::SCKRAW()\n"};
    const Lines silence = {"RecvFrom - Timeout\n", "tszRecvAddr = SCKRAW_ERROR_TIMEOUT\n"};
    const Lines end = {"SOAP::Discover - ended\n", "SendDiscoverResult\n"};

    static Lines Reply(const std::string& address, const std::string& text) {
        return {"tszRecvAddr = [" + address + "]\n", "pReceiveBuffer = [" + text + "]\n",
                "SendDiscoverResult\n"};
    }
    static Lines Phase(int count, const Lines& inside) {
        return Lines{"HandleEvents start\n"} + inside +
               Lines{
                   " ==== We have [" + std::to_string(count) + "] devices on the network. ==== \n",
                   "HandleEvents end\n"};
    }
};

TEST_F(WsdLog, TellsOneSweepFromItsStartToItsEndAndTheSocketsReleaseByTheNext) {
    Devices([](const Request& request) {
        if (request.net == "netb") return std::vector<Answer>();
        return std::vector<Answer>{{TextBytes("A")}, {TextBytes("B")}};
    });
    Sweep(kSecond);
    Sweep(kSecond, {});
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(start + AdapterLines(0) +
                         Phase(2, Reply("10.77.1.2", "A") + Reply("10.77.1.2", "B") + silence) +
                         AdapterLines(1) + Phase(0, silence) +
                         Phase(2, Reply("127.0.0.1", "A") + Reply("127.0.0.1", "B") + silence) +
                         end + start + Lines{"SCKRAW::~SCKRAW() [-1]\n"} + end));
}

TEST_F(WsdLog, TellsFailuresAndAStop) {
    const Sends sends(module, [](int call) { return call == 1 ? WSAENETUNREACH : 0; });
    const Receives receives(module, [](int call) {
        return call == 1 ? WSAEMSGSIZE : call == 2 ? WSANOTINITIALISED : 0;
    });
    DeviceIn("host", {{TextBytes("A")}, {TextBytes("B")}});
    replies.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSoap();
    };
    Sweep(kSecond);
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(
            start + AdapterLines(0) +
            Lines{"sendto() failed - 10051\n", "sendto() failed, err: 10051\n"} + AdapterLines(1) +
            Phase(0, {"Receive Data failed - 10040\n", "Receive Data failed - 10093\n",
                      "tszRecvAddr = WSAStartup failed\n"}) +
            Phase(1, Reply("127.0.0.1", "A") + Lines{"VxSoapMgr::StopDiscover\n"}) + end));
}

TEST_F(WsdLog, TellsNoMessageWithoutAWindow) {
    DeviceIn("neta", {{TextBytes("A")}});
    module.DiscoverSoap(nullptr, 0, kSecond, kProbe, sizeof kProbe - 1);
    EXPECT_THAT(agents->Requests(), SizeIs(3));
    EXPECT_TRUE(log.Has("pReceiveBuffer = [A]\n"));
    EXPECT_FALSE(log.Has("SendDiscoverResult\n"));
}

}  // namespace
}  // namespace vndiscover
