// WS-Discovery sweeps: what goes out, what is delivered, and what the log says.
#include "exports/support/log_lines.h"

namespace vndiscover {
namespace {

constexpr UINT kSecond = 1000;
const Bytes kProbe = TextBytes("<probe/>");

class Wsd : public NetworkTest {
  protected:
    int32_t Sweep(UINT timeout, const Bytes& probe = kProbe) {
        return module.DiscoverSoap(replies.Handle(), ResultWindow::kMessage, timeout,
                                   reinterpret_cast<const char*>(probe.data()),
                                   static_cast<int32_t>(probe.size()));
    }

    ResultWindow replies{VN_SOAP_REPLY_SIZE};  // every message has a buffer of this size
};

TEST_F(Wsd, ProbesLeaveByteForByteFromEveryAdapterAndFromTheLoopback) {
    Bytes probe;
    for (int i = 0; i < 2048; ++i) probe.push_back(static_cast<uint8_t>(i));
    EXPECT_EQ(0, Sweep(kSecond, probe));
    EXPECT_THAT(Ways(), ElementsAre("neta: 10.77.1.1 > 239.255.255.250:3702",
                                    "netb: 10.77.2.1 > 239.255.255.250:3702",
                                    "host: 127.0.0.1 > 239.255.255.250:3702"));
    EXPECT_THAT(Sent(), Each(probe));
    EXPECT_THAT(replies.Texts(), ElementsAre("end"));
}

TEST_F(Wsd, ProbesAreNotSentWithALengthThatDoesNotFit) {
    const std::string probe(4096, 'x');
    for (const int32_t length : {0, -1, INT32_MIN, 2049, 4096, INT32_MAX}) {
        replies.results.clear();
        EXPECT_EQ(0, module.DiscoverSoap(replies.Handle(), ResultWindow::kMessage, kSecond,
                                         probe.c_str(), length));
        EXPECT_THAT(replies.Texts(), ElementsAre("end")) << length;
    }
    EXPECT_THAT(Requests(), IsEmpty());
    module.DiscoverSoap(replies.Handle(), ResultWindow::kMessage, 0, nullptr, 5);
    EXPECT_THAT(Sent(), ElementsAre(Bytes(5, 0), Bytes(5, 0), Bytes(5, 0)))
        << "none at all is so many zero bytes";
}

TEST_F(Wsd, WaitsAreCountedInWholeSeconds) {
    std::vector<int> expected;
    const std::pair<UINT, int> rows[] = {{2500, 2000}, {1000, 1000},     {999, 0},
                                         {0, 0},       {0x80000000u, 0}, {0xFFFFFFFFu, 0}};
    for (const auto& [timeout, waitMs] : rows) {
        Sweep(timeout);
        expected.insert(expected.end(), 3, waitMs);
    }
    EXPECT_EQ(expected, SilentWaits());
    // Without a wait it takes what is queued.
    DeviceIn("neta", {{TextBytes("first")}, {TextBytes("second")}, {TextBytes("late"), {}, 1}});
    replies.results.clear();
    Sweep(999);
    EXPECT_THAT(replies.Texts(), ElementsAre("10.77.1.2=first", "10.77.1.2=second", "end"));
}

TEST_F(Wsd, RepliesAreDeliveredRawUpTo2048BytesAndZeroPadded) {
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

TEST_F(Wsd, RepliesComeAsTheyArriveDuplicatesIncluded) {
    Devices([](const Request& request) { return Repeated(2, {TextBytes(request.net)}); });
    std::vector<size_t> asked;
    replies.onResult = [&](const Result&) { asked.push_back(Requests().size()); };
    Sweep(kSecond);
    EXPECT_THAT(replies.Texts(),
                ElementsAre("10.77.1.2=neta", "10.77.1.2=neta", "10.77.2.2=netb", "10.77.2.2=netb",
                            "127.0.0.1=host", "127.0.0.1=host", "end"));
    EXPECT_THAT(asked, ElementsAre(1, 1, 2, 2, 3, 3, 3)) << "before the next adapter's turn";
}

TEST_F(Wsd, ASweepFromWithinAMessageDoesNothing) {
    Devices([](const Request& request) { return Repeated(2, {TextBytes(request.net)}); });
    replies.onResult = [&](const Result& result) {
        if (!result.isEnd) Sweep(kSecond, TextBytes("another"));
    };
    Sweep(kSecond);
    EXPECT_THAT(replies.results, SizeIs(6 + 1)) << "and the sweep under way goes on unharmed";
    EXPECT_THAT(Requests(), SizeIs(3));
}

class WsdLog : public Wsd {
  protected:
    const Lines start = {"VxSoapMgr::Discover\n", "SCKRAW::SCKRAW()\n"};
    const Lines silence = {"RecvFrom - Timeout\n", "tszRecvAddr = SCKRAW_ERROR_TIMEOUT\n"};
    const Lines end = {"SOAP::Discover - ended\n", "SendDiscoverResult\n"};

    static Lines Reply(const std::string& address, const std::string& text) {
        return {"tszRecvAddr = [" + address + "]\n", "pReceiveBuffer = [" + text + "]\n",
                "SendDiscoverResult\n"};
    }
    static Lines Phase(const char* count, const Lines& inside) {
        return Lines{"HandleEvents start\n"} + inside +
               Lines{std::string(" ==== We have [") + count + "] devices on the network. ==== \n",
                     "HandleEvents end\n"};
    }
};

TEST_F(WsdLog, TellsOneSweepFromItsStartToItsEndAndTheSocketsReleaseByTheNext) {
    Devices([](const Request& request) {
        if (request.net == "netb") return Answers();
        return Answers{{TextBytes("A")}, {TextBytes("B")}};
    });
    Sweep(kSecond);
    Sweep(kSecond, {});
    ExpectLog(start + AdapterLines(0) +
              Phase("2", Reply("10.77.1.2", "A") + Reply("10.77.1.2", "B") + silence) +
              AdapterLines(1) + Phase("0", silence) +
              Phase("2", Reply("127.0.0.1", "A") + Reply("127.0.0.1", "B") + silence) + end +
              start + Lines{"SCKRAW::~SCKRAW() [-1]\n"} + end);
}

TEST_F(WsdLog, TellsFailuresAndAStop) {
    network.sendError = [](int call) { return call == 1 ? WSAENETUNREACH : 0; };
    network.receiveError = [](int call) {
        return call == 1 ? WSAEMSGSIZE : call == 2 ? WSANOTINITIALISED : 0;
    };
    DeviceIn("host", {{TextBytes("A")}, {TextBytes("B")}});
    replies.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSoap();
    };
    Sweep(kSecond);
    ExpectLog(start + AdapterLines(0) +
              Lines{"sendto() failed - 10051\n", "sendto() failed, err: 10051\n"} +
              AdapterLines(1) +
              Phase("0", {"Receive Data failed - 10040\n", "Receive Data failed - 10093\n",
                          "tszRecvAddr = WSAStartup failed\n"}) +
              Phase("1", Reply("127.0.0.1", "A") + Lines{"VxSoapMgr::StopDiscover\n"}) + end);
}

TEST_F(WsdLog, TellsNoMessageWithoutAWindow) {
    DeviceIn("neta", {{TextBytes("A")}});
    module.DiscoverSoap(nullptr, 0, kSecond, "probe", 5);
    EXPECT_TRUE(log.Has("pReceiveBuffer = [A]\n"));
    EXPECT_FALSE(log.Has("SendDiscoverResult\n"));
}

}  // namespace
}  // namespace vndiscover
