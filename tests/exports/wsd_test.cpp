// WS-Discovery sweeps: the Probes, the replies that are delivered, and the log lines.
#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

constexpr UINT kSecond = 1000;
const Bytes kProbe = TextBytes("<probe/>");

class Wsd : public NetworkTest {
  protected:
    int32_t Sweep(UINT timeout, const Bytes& probe = kProbe) {
        return module.DiscoverSoap(replies.Handle(), replies.kMessage, timeout,
                                   reinterpret_cast<const char*>(probe.data()),
                                   static_cast<int32_t>(probe.size()));
    }

    // Log lines.
    static std::string Reply(const std::string& address, const std::string& text) {
        return "tszRecvAddr = [" + address + "]\npReceiveBuffer = [" + text +
               "]\nSendDiscoverResult\n";
    }
    static std::string Phase(const std::string& count, const std::string& inside) {
        return "HandleEvents start\n" + inside + " ==== We have [" + count +
               "] devices on the network. ==== \nHandleEvents end\n";
    }

    const std::string start = "VxSoapMgr::Discover\nSCKRAW::SCKRAW()\n";
    const std::string silence = "RecvFrom - Timeout\ntszRecvAddr = SCKRAW_ERROR_TIMEOUT\n";
    const std::string end = "SOAP::Discover - ended\nSendDiscoverResult\n";
    ResultWindow replies{VN_SOAP_REPLY_SIZE};  // every message has a buffer of this size
};

TEST_F(Wsd, ProbeIsSentUnchangedFromEveryAdapter) {
    Bytes probe;
    for (int i = 0; i < 2048; ++i) probe.push_back(static_cast<uint8_t>(i));
    EXPECT_EQ(0, Sweep(kSecond, probe));
    EXPECT_THAT(Ways(), ElementsAre("neta: 10.77.1.1 > 239.255.255.250:3702",
                                    "netb: 10.77.2.1 > 239.255.255.250:3702",
                                    "host: 127.0.0.1 > 239.255.255.250:3702"));
    EXPECT_THAT(Sent(), Each(probe));
    SilentDevices();
    const auto sweep = [&](const char* data, int32_t length) {
        EXPECT_EQ(0, module.DiscoverSoap(replies.Handle(), replies.kMessage, 0, data, length));
    };
    const std::string tooLong(2049, 'x');
    for (const int32_t length : {0, -1, 2049, INT32_MAX}) sweep(tooLong.c_str(), length);
    EXPECT_EQ(Lines(1 + 4, "end"), replies.Texts());
    EXPECT_THAT(Requests(), IsEmpty());
    sweep(nullptr, 5);  // none at all is so many zero bytes
    EXPECT_EQ(std::vector<Bytes>(3, Bytes(5, 0)), Sent());
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
    // Without a wait it takes queued replies.
    DeviceIn("neta", {{TextBytes("first")}, {TextBytes("second")}, {TextBytes("late"), {}, 1}});
    replies.results.clear();
    Sweep(999);
    EXPECT_THAT(replies.Texts(), ElementsAre("10.77.1.2=first", "10.77.1.2=second", "end"));
}

TEST_F(Wsd, RepliesAreDeliveredRawUpTo2048Bytes) {
    const Bytes raw = Hex("00 ff 1b 00 41");
    DeviceIn("neta", {{Bytes(2047, 'b')},
                      {Bytes(2048, 'c')},
                      {Bytes(2049, 'd')},
                      {Bytes(9000, 'e')},
                      {Bytes()},
                      {raw}});
    Sweep(kSecond);
    const Bytes expected[] = {Bytes(2047, 'b') + Bytes{0}, Bytes(2048, 'c'), raw + Bytes(2043, 0)};
    ASSERT_THAT(replies.results, SizeIs(3 + 1));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(expected[i], replies.results[i].buffer) << i;
        EXPECT_EQ("10.77.1.2", replies.results[i].address);
    }
    EXPECT_TRUE(replies.results.back().isEnd);
}

TEST_F(Wsd, RepliesAreDeliveredOnArrivalWithDuplicates) {
    Devices([](const Request& request) { return Repeated(2, {TextBytes(request.net)}); });
    std::vector<size_t> asked;
    replies.onResult = [&](const Result& result) {
        asked.push_back(Requests().size());
        // Called within a message, it does nothing.
        if (!result.isEnd && Requests().size() < 9) Sweep(kSecond, TextBytes("another"));
    };
    Sweep(kSecond);
    EXPECT_THAT(replies.Texts(),
                ElementsAre("10.77.1.2=neta", "10.77.1.2=neta", "10.77.2.2=netb", "10.77.2.2=netb",
                            "127.0.0.1=host", "127.0.0.1=host", "end"));
    EXPECT_THAT(asked, ElementsAre(1, 1, 2, 2, 3, 3, 3)) << "before the next adapter's turn";
}

TEST_F(Wsd, LogBeginsWithTheSocketObjectOfTheLastSweep) {
    Devices([](const Request& request) {
        if (request.net == "netb") return Answers();
        return Answers{{TextBytes("A")}, {TextBytes("B")}};
    });
    Sweep(kSecond);
    Sweep(kSecond, {});
    module.DiscoverSoap(nullptr, 0, kSecond, "", 0);
    ExpectLog(start + AdapterLines(0) +
              Phase("2", Reply("10.77.1.2", "A") + Reply("10.77.1.2", "B") + silence) +
              AdapterLines(1) + Phase("0", silence) +
              Phase("2", Reply("127.0.0.1", "A") + Reply("127.0.0.1", "B") + silence) + end +
              start + "SCKRAW::~SCKRAW() [-1]\n" + end + start +
              "SCKRAW::~SCKRAW() [-1]\nSOAP::Discover - ended\n");  // without a window
}

TEST_F(Wsd, LogReportsFailuresAndAStop) {
    network.sendError = [](int call) { return call == 1 ? WSAENETUNREACH : 0; };
    network.receiveError = [](int call) {
        return call == 1 ? WSAEMSGSIZE : call == 2 ? WSANOTINITIALISED : 0;
    };
    DeviceIn("host", {{TextBytes("A")}, {TextBytes("B")}});
    replies.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSoap();
    };
    Sweep(kSecond);
    ExpectLog(start + AdapterLines(0) + "sendto() failed - 10051\nsendto() failed, err: 10051\n" +
              AdapterLines(1) +
              Phase("0",
                    "Receive Data failed - 10040\nReceive Data failed - 10093\n"
                    "tszRecvAddr = WSAStartup failed\n") +
              Phase("1", Reply("127.0.0.1", "A") + "VxSoapMgr::StopDiscover\n") + end);
}

}  // namespace
}  // namespace vndiscover
