// What a sweep delivers for the answers of devices: messages, lines of the result file, documents
// and log lines.
#include <array>
#include <cstdlib>
#include <thread>

#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

class SweepResults : public NetworkTest {
  protected:
    ~SweepResults() override { DeleteFileW(path.c_str()); }

    const std::wstring path = L"devices \u00e9.csv";
};

TEST_F(SweepResults, EachIsAMessageAndALineInTheOrderOfAnswers) {
    Devices([](const Request& request) {
        if (request.net == "netb") return Answers{{SnmpText("C")}};
        return Answers{{SnmpText("B \"2\", 4"), "10.77.1.12"},
                       {SnmpText("two\nlines")},
                       {SnmpText(""), "10.77.1.11"},
                       {SnmpText("B \"2\", 4"), "10.77.1.12"}};
    });
    std::ofstream(std::filesystem::path(path)) << std::string(1000, 'x');
    Lines toldLast;
    std::vector<size_t> asked;
    window.onResult = [&](const Result&) {
        toldLast.push_back(log.Lines().back());
        asked.push_back(Requests().size());
    };
    Sweep(path.c_str());
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.12=B \"2\", 4", "10.77.1.2=two\nlines",
                            "10.77.1.11=", "10.77.1.12=B \"2\", 4", "10.77.2.2=C", "end"));
    EXPECT_EQ(
        "\"10.77.1.12\",\"B \"2\", 4\"\r\n\"10.77.1.2\",\"two\r\nlines\"\r\n\"10.77.1.11\",\"\"\r\n"
        "\"10.77.1.12\",\"B \"2\", 4\"\r\n\"10.77.2.2\",\"C\"\r\n",
        ReadFile(path));
    const Lines written = {
        "m_fp = [\"10.77.1.12\",\"B \"2\", 4\"\n]\n", "m_fp = [\"10.77.1.2\",\"two\nlines\"\n]\n",
        "m_fp = [\"10.77.1.11\",\"\"\n]\n", "m_fp = [\"10.77.1.12\",\"B \"2\", 4\"\n]\n"};
    ExpectLog(SweepLines(AnsweredLines({"10.77.1.12", "10.77.1.2", "10.77.1.11", "10.77.1.12"},
                                       written[0] + written[1] + written[2] + written[3]),
                         AnsweredLines({"10.77.2.2"}, "m_fp = [\"10.77.2.2\",\"C\"\n]\n")));
    EXPECT_THAT(toldLast, ElementsAre(" ==== We have [4] devices on the network. ==== \n",
                                      written[0], written[1], written[2],
                                      " ==== We have [1] devices on the network. ==== \n",
                                      "SNMP::Discover - ended\n"));
    EXPECT_THAT(asked, ElementsAre(1, 1, 1, 1, 2, 2)) << "adapters before the message";
}

TEST_F(SweepResults, ReachAWindowOfAnotherThreadThatPumpsMessages) {
    DeviceIn("neta", {{SnmpText("A")}});
    const DWORD own = GetCurrentThreadId();
    window.onResult = [&](const Result&) { EXPECT_EQ(own, GetCurrentThreadId()); };
    std::thread sweeping([&] {
        Sweep();
        PostMessageA(window.Handle(), WM_QUIT, 0, 0);
    });
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    sweeping.join();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
}

// Every datagram counts as a device, an unreadable one without a value, and none affects a later
// one. Only empty and oversized datagrams, which Windows reports as errors, are left out: an empty
// one must not be mistaken for the time-out of the network before.
TEST_F(SweepResults, EveryDatagramIsDeliveredWithItsReadableValue) {
    const Bytes model = SnmpText("Model");
    const Bytes oversized = model + Bytes(3000, 0x20);
    const char* const leftOut = "(left out)";
    const std::pair<Bytes, std::string> rows[] = {
        {TextBytes("hello"), ""},
        {Bytes(), leftOut},
        {Bytes(2048, 0xFF), ""},
        {Prefix(oversized, 2049), leftOut},
        {Prefix(oversized, 2048), "Model"},
        {SnmpAnswer(kSysName, 2, {0x41, 0x42}), "AB"},  // the type is not checked
        {SnmpText(std::string("ab\0cd", 5)), "ab"}};
    Answers answers;
    Lines expected;
    for (const auto& [datagram, value] : rows) {
        answers.push_back({datagram});
        answers.push_back({model});
        if (value != leftOut) expected.push_back("10.77.2.2=" + value);
        expected.push_back("10.77.2.2=Model");
    }
    DeviceIn("netb", Answers(answers.size(), {SnmpText("of the sweep before")}));
    Sweep();
    window.results.clear();
    DeviceIn("netb", answers);
    Sweep();
    expected.push_back("end");
    EXPECT_THAT(window.Texts(), ElementsAreArray(expected));
}

TEST_F(SweepResults, FileIsOpenForOneSweepAndNeedsNoWindow) {
    DeviceIn("neta", {{SnmpText("A")}});
    module.DiscoverDevices(nullptr, 0, 0, 0, path.c_str(), nullptr, nullptr);
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n", ReadFile(path));
    EXPECT_NE(0, DeleteFileW(path.c_str())) << "still open";
    // A path that is too long must not be truncated to that of another file.
    const std::wstring folder = std::filesystem::temp_directory_path().wstring();
    const std::wstring tooLong = folder + std::wstring(260 - folder.size(), L'x');
    for (const wchar_t* none :
         {(const wchar_t*)nullptr, L"", L"Z:\\no such folder\\devices.csv", tooLong.c_str()}) {
        Sweep(none);
        EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
        window.results.clear();
    }
    EXPECT_EQ("(no file)", ReadFile(path));
    EXPECT_EQ("(no file)", ReadFile(tooLong));
    EXPECT_EQ("(no file)", ReadFile(tooLong.substr(0, 259)));
}

TEST_F(SweepResults, FileHasNoLineForADeviceWithoutAnAddress) {
    const ImportPatch patch(
        module.Handle(), "getnameinfo",
        [](const sockaddr*, socklen_t, PCHAR, DWORD, PCHAR, DWORD, INT) { return EAI_FAIL; });
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(path.c_str());
    EXPECT_THAT(window.Texts(), ElementsAre("=A", "end"));
    EXPECT_EQ("", ReadFile(path));
}

int g_allocations;

TEST_F(SweepResults, PlainDeliveryAllocatesNothing) {
    DeviceIn("neta", Repeated(3, {SnmpText("A")}));
    std::array<int, 4> before = {};
    window.onResult = [&](const Result&) { before[window.results.size() - 1] = g_allocations; };
    const ImportPatch patch(module.Handle(), "malloc", [](size_t size) {
        ++g_allocations;
        return std::malloc(size);
    });
    Sweep();
    EXPECT_GT(before[0], 0);
    EXPECT_THAT(before, Each(before[0]));
}

const wchar_t kNameQuestion[] = LR"({"GET": {".1.3.6.1.2.1.1.5.0": ""}})";
std::string NameAnswer(const std::string& name) {
    return R"({"GET":{".1.3.6.1.2.1.1.5.0":")" + name + "\"}}";
}

class SweepJson : public NetworkTest {};

TEST_F(SweepJson, FillsInEachValueThatTheDeviceHas) {
    Devices([](const Request& request) {
        const std::pair<std::string, std::string> values[] = {
            {kDefaultOid, "Model"}, {kSysDescr, "A \"fast\" printer"}, {kSysName, "prn1"}};
        for (const auto& [oid, value] : values) {
            if (request.net == "neta" && request.data == SnmpGet(oid))
                return Answers{{SnmpText(value, oid)}};
        }
        return Answers();
    });
    SweepFor(
        LR"({"DiscoverOID":".1.3.6.1.4.1.5963.43.5.1.1.1.1","GET":{".1.3.6.1.2.1.1.1.0":"",)"
        LR"(".1.3.6.1.2.1.1.6.0":"unknown",".1.3.6.1.2.1.1.5.0":""},"id":7})");
    EXPECT_THAT(
        window.Documents(),
        ElementsAre(R"(10.77.1.2={"DiscoverOID":".1.3.6.1.4.1.5963.43.5.1.1.1.1","GET":{)"
                    R"(".1.3.6.1.2.1.1.1.0":"A \"fast\" printer",".1.3.6.1.2.1.1.6.0":"unknown",)"
                    R"(".1.3.6.1.2.1.1.5.0":"prn1"},"id":7})",
                    "end"));
    // Each OID is requested once, only from the device, and from its own adapter.
    const std::string question = "neta: 10.77.1.1 > 10.77.1.2:161";
    EXPECT_THAT(Ways(), ElementsAre("neta: 10.77.1.1 > 255.255.255.255:161", question, question,
                                    question, "netb: 10.77.2.1 > 255.255.255.255:161"));
    // The unanswered one takes five waits, the two adapters' phases one each.
    EXPECT_THAT(SilentWaits(), SizeIs(5 + 2));
    for (const char* lines :
         {"wszDisOID [.1.3.6.1.4.1.5963.43.5.1.1.1.1]\nszDisOid [.1.3.6.1.4.1.5963.43.5.1.1.1.1]\n",
          "GET command\nKey [.1.3.6.1.2.1.1.1.0]\n  value []\n  szKey [.1.3.6.1.2.1.1.1.0]\nOID ",
          "  szValue [A \"fast\" printer]\nKey [.1.3.6.1.2.1.1.6.0]\n  value [unknown]\n  szKey [",
          "RecvFrom - Timeout\nKey [.1.3.6.1.2.1.1.5.0]\n"}) {
        EXPECT_THAT(log.Text(), HasSubstr(lines));
    }
}

TEST_F(SweepJson, AsksEachDeviceInTurnWithTheHostsCommunity) {
    Devices([](const Request& request) {
        if (request.data == SnmpGet(kSysName, "public")) {
            return Answers{{SnmpText("I am " + request.local, kSysName)}};
        }
        if (request.data != SnmpGet(kDefaultOid, "public")) return Answers();
        if (request.net == "netb") return Answers{{SnmpText("Model")}};
        // A device without a value is skipped.
        return Answers{{SnmpText("Model"), "10.77.1.11"},
                       {SnmpText(""), "10.77.1.13"},
                       {TextBytes("no answer"), "10.77.1.14"},
                       {SnmpText("Model"), "10.77.1.12"}};
    });
    SweepFor(kNameQuestion, L"public");
    const auto document = [](const std::string& address) {
        return address + '=' + NameAnswer("I am " + address);
    };
    EXPECT_THAT(window.Documents(), ElementsAre(document("10.77.1.11"), document("10.77.1.12"),
                                                document("10.77.2.2"), "end"));
    EXPECT_TRUE(log.Has(" ==== We have [4] devices on the network. ==== \n"));
    EXPECT_TRUE(log.Has("We have [2] devices responsed the information.\n"));
}

// The host itself, which is one of the all-nodes group, receives nothing. Addresses have no zone.
TEST_F(SweepJson, AsksIPv6DevicesFromTheirOwnAdapter) {
    Devices([](const Request& request) {
        if (request.net != "netb") return Answers();
        return Answers{{SnmpText(request.sender + " asks " + request.local),
                        request.local == "ff02::1" ? "fe80::2:12" : ""}};
    });
    SweepFor(kNameQuestion, nullptr, 255);
    EXPECT_THAT(window.Documents(),
                ElementsAre("fe80::2:12=" + NameAnswer("fe80::2:1 asks fe80::2:12"), "end"));
    EXPECT_THAT(Ways(),
                ElementsAre("neta: fe80::1:1 > ff02::1:161", "netb: fe80::2:1 > ff02::1:161",
                            "netb: fe80::2:1 > fe80::2:12:161"));
    EXPECT_THAT(Sent(), ElementsAre(SnmpGet(kDefaultOid), SnmpGet(kDefaultOid), SnmpGet(kSysName)));
    EXPECT_TRUE(log.Has("-------------- ...nCount [2]\n") &&
                log.Has("tszRecvAddr = [fe80::2:12]\n"));
    for (const std::string address : {"fe80::1:1", "fe80::2:1"}) {
        EXPECT_THAT(log.Text(),
                    HasSubstr(" pStringBuf [" + address + "]\n tszBindAddr [" + address +
                              "]\nIPADDRESS .... " + address + "HandleEvents start\n"));
    }
}

// Answers are in the ANSI code page; the request, which passes through it, is read as UTF-8.
TEST_F(SweepJson, DeliversUtf8) {
    DeviceIn("neta", {{SnmpText("\x80\x81\xff\x01 \xe9")}});
    SweepFor(L"{\"GET\": {\"1.3\": \"\"}, \"caf\u00e9\": \"\\u20ac\"}");
    EXPECT_THAT(
        window.Documents(),
        ElementsAre("10.77.1.2={\"GET\":{\"1.3\":\"\xe2\x82\xac\xc2\x81\xc3\xbf\\u0001 \xc3\xa9\"},"
                    "\"caf\xef\xbf\xbd\":\"\xe2\x82\xac\"}",
                    "end"));
}

TEST_F(SweepJson, RequestsNoTruncatedOid) {
    const std::string longest = ".1.3." + std::string(253, '0') + "6";
    const std::string tooLong = ".1.3." + std::string(254, '0') + "6";
    DeviceIn("neta", {{SnmpText("Model")}});
    SweepFor(Wide("{\"GET\": {\"" + longest + "\": \"\", \"" + tooLong + "\": \"kept\"}}"));
    SweepFor(L"{\"GET\": {");
    SweepFor(std::wstring(2047, L'['));  // nested too deeply
    EXPECT_THAT(window.Documents(), ElementsAre("10.77.1.2={\"GET\":{\"" + longest +
                                                    "\":\"Model\",\"" + tooLong + "\":\"kept\"}}",
                                                "end", "end", "end"));
    EXPECT_TRUE(log.Has("  szKey [" + tooLong.substr(0, 259) + "]\n"));
}

TEST_F(SweepJson, OversizedDocumentIsCut) {
    const std::string answer(127, 'x');
    std::string request = "{\"GET\":{", whole = "{\n\t\"GET\":\t{\n";
    for (int i = 10; i < 50; ++i) {
        const std::string oid = "\".1.3.6." + std::to_string(i) + '"';
        request += oid + (i < 49 ? ":\"\"," : ":\"\"}}");
        whole += "\t\t" + oid + ":\t\"" + answer + "\",\n";
    }
    DeviceIn("neta", {{SnmpText(answer)}});
    SweepFor(Wide(request));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=" + whole.substr(0, 4095), "end"));
}

}  // namespace
}  // namespace vndiscover
