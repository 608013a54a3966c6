// What a sweep delivers for what devices answer: messages, lines of the result file, documents and
// lines of the log.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "exports/support/log_lines.h"

namespace vndiscover {
namespace {

class SweepResults : public NetworkTest {
  protected:
    ~SweepResults() override { DeleteFileW(path.c_str()); }

    // "(no file)" where there is none.
    static std::string Read(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        if (!file) return "(no file)";
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::wstring path = L"devices \u00e9.csv";
};

TEST_F(SweepResults, AreAMessageAndThenALineEachAdapterByAdapterInTheOrderOfTheAnswers) {
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
        Read(path));
    const Lines written = {
        "m_fp = [\"10.77.1.12\",\"B \"2\", 4\"\n]\n", "m_fp = [\"10.77.1.2\",\"two\nlines\"\n]\n",
        "m_fp = [\"10.77.1.11\",\"\"\n]\n", "m_fp = [\"10.77.1.12\",\"B \"2\", 4\"\n]\n"};
    ExpectLog(
        SweepLines(AnsweredLines({"10.77.1.12", "10.77.1.2", "10.77.1.11", "10.77.1.12"}, written),
                   AnsweredLines({"10.77.2.2"}, {"m_fp = [\"10.77.2.2\",\"C\"\n]\n"})));
    EXPECT_THAT(toldLast, ElementsAre(" ==== We have [4] devices on the network. ==== \n",
                                      written[0], written[1], written[2],
                                      " ==== We have [1] devices on the network. ==== \n",
                                      "SNMP::Discover - ended\n"));
    EXPECT_THAT(asked, ElementsAre(1, 1, 1, 1, 2, 2)) << "adapters before the message";
}

TEST_F(SweepResults, OfIPv6HaveNoZone) {
    DeviceIn("netb", {{SnmpText("B"), "fe80::2:12"}, {SnmpText("A")}});
    Sweep(nullptr, 1);
    EXPECT_THAT(window.Texts(), ElementsAre("fe80::2:12=B", "fe80::2:2=A", "end"));
    EXPECT_TRUE(log.Has("tszRecvAddr = [fe80::2:12]\n"));
}

TEST_F(SweepResults, ReachAWindowOfAnotherThreadThatPumpsMessages) {
    DeviceIn("neta", {{SnmpText("A")}});
    DWORD resultThread = 0;
    window.onResult = [&](const Result&) { resultThread = GetCurrentThreadId(); };
    std::thread sweeping([&] {
        Sweep();
        PostMessageA(window.Handle(), WM_QUIT, 0, 0);
    });
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    sweeping.join();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
    EXPECT_EQ(GetCurrentThreadId(), resultThread);
}

// Whatever arrives is a device, one that cannot be read without a value, and harms none that comes
// after it. Only empty and oversized datagrams, which Windows reports as errors, are left out: the
// network before was silent, which an empty one must not be taken for.
TEST_F(SweepResults, AreWhateverArrivesWithTheValueThatCanBeRead) {
    const Bytes model = SnmpText("Model");
    const Bytes oversized = model + Bytes(3000, 0x20);
    const char* const leftOut = "(left out)";
    const std::pair<Bytes, std::string> rows[] = {
        {TextBytes("hello"), ""},
        {{0x30}, ""},
        {Bytes(), leftOut},
        {Bytes(2048, 0xFF), ""},
        {Prefix(oversized, 2049), leftOut},
        {Prefix(oversized, 2048), "Model"},
        {SnmpGet(kDefaultOid), ""},
        {Encode({kDefaultOid, 4, TextBytes("set"), 0xA3}), "set"},  // nobody asks what it is
        {SnmpAnswer(kSysName, 2, {0x41, 0x42}), "AB"},
        {SnmpText(std::string("ab\0cd", 5)), "ab"},
        {Prefix(model, model.size() - 2), "Mod"}};
    Answers answers;
    Lines expected;
    for (const auto& [datagram, value] : rows) {
        answers.push_back({datagram});
        answers.push_back({model});
        if (value != leftOut) expected.push_back("10.77.2.2=" + value);
        expected.push_back("10.77.2.2=Model");
    }
    DeviceIn("netb", answers);
    Sweep();
    expected.push_back("end");
    EXPECT_THAT(window.Texts(), ElementsAreArray(expected));
}

TEST_F(SweepResults, GoToAFileThatIsOpenForOneSweepAndNeedsNoWindow) {
    DeviceIn("neta", {{SnmpText("A")}});
    module.DiscoverDevices(nullptr, 0, 0, 0, path.c_str(), nullptr, nullptr);
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n", Read(path));
    EXPECT_NE(0, DeleteFileW(path.c_str())) << "still open";
    // A path that is too long is not cut to that of some other file.
    wchar_t folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    const std::wstring tooLong = folder + std::wstring(260 - length, L'x');
    for (const wchar_t* none :
         {(const wchar_t*)nullptr, L"", L"Z:\\no such folder\\devices.csv", tooLong.c_str()}) {
        Sweep(none);
        EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
        window.results.clear();
    }
    EXPECT_EQ("(no file)", Read(path));
    EXPECT_EQ("(no file)", Read(tooLong));
    EXPECT_EQ("(no file)", Read(tooLong.substr(0, 259)));
}

TEST_F(SweepResults, OfADeviceWithoutAnAddressAreNotWritten) {
    struct Names {
        static int WSAAPI Fail(const sockaddr*, socklen_t, PCHAR, DWORD, PCHAR, DWORD, INT) {
            return EAI_FAIL;
        }
    };
    const ImportPatch patch(module.Handle(), "getnameinfo", Names::Fail);
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(path.c_str());
    EXPECT_THAT(window.Texts(), ElementsAre("=A", "end"));
    EXPECT_EQ("", Read(path));
}

const wchar_t kNameQuestion[] = L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}";
std::string NameAnswer(const std::string& name) {
    return "{\n\t\"GET\":\t{\n\t\t\".1.3.6.1.2.1.1.5.0\":\t\"" + name + "\"\n\t}\n}";
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
        L"{\"DiscoverOID\": \".1.3.6.1.4.1.5963.43.5.1.1.1.1\", \"GET\": {\".1.3.6.1.2.1.1.1.0\":"
        L" \"\", \".1.3.6.1.2.1.1.6.0\": \"unknown\", \".1.3.6.1.2.1.1.5.0\": \"\"}, \"id\": 7}");
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.2={\n"
                            "\t\"DiscoverOID\":\t\".1.3.6.1.4.1.5963.43.5.1.1.1.1\",\n"
                            "\t\"GET\":\t{\n"
                            "\t\t\".1.3.6.1.2.1.1.1.0\":\t\"A \\\"fast\\\" printer\",\n"
                            "\t\t\".1.3.6.1.2.1.1.6.0\":\t\"unknown\",\n"
                            "\t\t\".1.3.6.1.2.1.1.5.0\":\t\"prn1\"\n"
                            "\t},\n"
                            "\t\"id\":\t7\n"
                            "}",
                            "end"));
    // Each OID is asked for once, of the device alone and from the adapter that it is attached to.
    const std::string question = "neta: 10.77.1.1 > 10.77.1.2:161";
    EXPECT_THAT(Ways(), ElementsAre("neta: 10.77.1.1 > 255.255.255.255:161", question, question,
                                    question, "netb: 10.77.2.1 > 255.255.255.255:161"));
    // The silent one cost five waits, the two adapters' phases one each.
    EXPECT_THAT(SilentWaits(), SizeIs(5 + 2));

    const auto asks = [](const std::string& oid, const std::string& value, uint8_t arc) {
        const std::string content = "2b 06 01 02 01 01 0" + std::to_string(arc) + " 00 ";
        return Lines{"Key [" + oid + "]\n", "  value [" + value + "]\n", "  szKey [" + oid + "]\n",
                     "SNMP::GetInformation - [10.77.1.2]\n"} +
               RequestLines(9, content, SnmpGet(oid));
    };
    ExpectLog(SweepLines(
        AnsweredLines({"10.77.1.2"}, Lines{"GET command\n"} + asks(kSysDescr, "", 1) +
                                         Lines{"  szValue [A \"fast\" printer]\n"} +
                                         asks(kSysLocation, "unknown", 6) +
                                         Times(5, {"RecvFrom - Timeout\n"}) +
                                         asks(kSysName, "", 5) + Lines{"  szValue [prn1]\n"}),
        AnsweredLines({}),
        {"wszDisOID [.1.3.6.1.4.1.5963.43.5.1.1.1.1]\n",
         "szDisOid [.1.3.6.1.4.1.5963.43.5.1.1.1.1]\n"}));
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
    EXPECT_THAT(window.Texts(), ElementsAre(document("10.77.1.11"), document("10.77.1.12"),
                                            document("10.77.2.2"), "end"));
    EXPECT_TRUE(log.Has(" ==== We have [4] devices on the network. ==== \n"));
    EXPECT_TRUE(log.Has("We have [2] devices responsed the information.\n"));
}

TEST_F(SweepJson, AsksAnIPv6DeviceFromItsOwnAdapter) {
    Devices([](const Request& request) {
        if (request.net != "netb") return Answers();
        return Answers{{SnmpText(request.sender + " asks " + request.local)}};
    });
    SweepFor(kNameQuestion, nullptr, 1);
    EXPECT_THAT(window.Texts(),
                ElementsAre("fe80::2:2=" + NameAnswer("fe80::2:1 asks fe80::2:2"), "end"));
}

// Answers are in the ANSI code page; the request, which passes through it, is read as UTF-8.
TEST_F(SweepJson, DeliversUtf8) {
    DeviceIn("neta", {{SnmpText("\x80\x81\xff\x01 \xe9")}});
    SweepFor(L"{\"GET\": {\"1.3\": \"\"}, \"caf\u00e9\": \"\\u20ac\"}");
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2={\n\t\"GET\":\t{\n\t\t\"1.3\":\t\""
                                            "\xe2\x82\xac\xc2\x81\xc3\xbf\\u0001 \xc3\xa9\"\n\t},\n"
                                            "\t\"caf\xef\xbf\xbd\":\t\"\xe2\x82\xac\"\n}",
                                            "end"));
}

TEST_F(SweepJson, AsksForNoCutOidAndDeliversNothingForWhatIsNoJson) {
    const std::wstring longest = L".1.3." + std::wstring(253, L'0') + L"6";
    const std::wstring tooLong = L".1.3." + std::wstring(254, L'0') + L"6";
    DeviceIn("neta", {{SnmpText("Model")}});
    SweepFor(L"{\"GET\": {\"" + longest + L"\": \"\", \"" + tooLong + L"\": \"kept\"}}");
    SweepFor(L"{\"GET\": {");
    SweepFor(std::wstring(2047, L'['));  // nested too deep
    EXPECT_THAT(
        window.Texts(),
        ElementsAre("10.77.1.2={\n\t\"GET\":\t{\n\t\t\"" +
                        std::string(longest.begin(), longest.end()) + "\":\t\"Model\",\n\t\t\"" +
                        std::string(tooLong.begin(), tooLong.end()) + "\":\t\"kept\"\n\t}\n}",
                    "end", "end", "end"));
}

TEST_F(SweepJson, ADocumentThatDoesNotFitIsCut) {
    const std::string answer(127, 'x');
    std::wstring request = L"{\"GET\":{";
    std::string whole = "{\n\t\"GET\":\t{\n";
    for (int i = 10; i < 50; ++i) {
        const std::wstring oid = L"\".1.3.6." + std::to_wstring(i) + L'"';
        request += oid + (i < 49 ? L":\"\"," : L":\"\"}}");
        whole += "\t\t" + std::string(oid.begin(), oid.end()) + ":\t\"" + answer + "\",\n";
    }
    DeviceIn("neta", {{SnmpText(answer)}});
    SweepFor(request);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=" + whole.substr(0, 4095), "end"));
}

}  // namespace
}  // namespace vndiscover
