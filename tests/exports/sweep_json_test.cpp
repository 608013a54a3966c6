// The documents that a sweep with a JSON request delivers.
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

const wchar_t kNameQuestion[] = L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}";
std::string NameAnswer(const std::string& name) {
    return "{\n\t\"GET\":\t{\n\t\t\".1.3.6.1.2.1.1.5.0\":\t\"" + name + "\"\n\t}\n}";
}

class SweepJson : public LoggedTest {};

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
    const std::string question = "10.77.1.1 > 10.77.1.2 161 neta";
    EXPECT_THAT(Ways(), ElementsAre("10.77.1.1 > 255.255.255.255 161 neta", question, question,
                                    question, "10.77.2.1 > 255.255.255.255 161 netb"));
    // The silent one cost five waits, the two adapters' phases one each.
    EXPECT_THAT(waits.Silent(), SizeIs(5 + 2));

    const auto asks = [](const std::string& oid, const std::string& value, uint8_t arc) {
        const std::string content = "2b 06 01 02 01 01 0" + std::to_string(arc) + " 00 ";
        return Lines{"Key [" + oid + "]\n", "  value [" + value + "]\n",
                     "  szKey [" + oid + "]\n"} +
               RequestLines(9, content, SnmpGet(oid), {"SNMP::GetInformation - [10.77.1.2]\n"});
    };
    ExpectLog(SweepLines(
        AnsweredLines({"10.77.1.2"}, Lines{"GET command\n"} + asks(kSysDescr, "", 1) +
                                         Lines{"  szValue [A \"fast\" printer]\n"} +
                                         asks(".1.3.6.1.2.1.1.6.0", "unknown", 6) +
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

// The device answers each question; what is no question goes back as it came.
TEST_F(SweepJson, AnswersOddRequestsAndDeliversNothingForWhatIsNoJson) {
    const std::wstring longest = L".1.3." + std::wstring(253, L'0') + L"6";
    const std::wstring tooLong = L".1.3." + std::wstring(254, L'0') + L"6";
    const std::pair<std::wstring, std::string> rows[] = {
        {L"GET", ""},
        {L"{\"GET\": {", ""},
        {L"", ""},
        {std::wstring(2047, L'['), ""},  // nested too deep
        {L"{\"a\": 1}", "{\n\t\"a\":\t1\n}"},
        {L"{\"GET\": \"x\"}", "{\n\t\"GET\":\t\"x\"\n}"},
        {L"{\"GET\": {}}", "{\n\t\"GET\":\t{\n\t}\n}"},
        {L"7", "7"},
        {L"{\"GET\": {\".1.3.6.1\": 7}}", "{\n\t\"GET\":\t{\n\t\t\".1.3.6.1\":\t\"Model\"\n\t}\n}"},
        {L"{\"GET\": {\"" + longest + L"\": \"\", \"" + tooLong + L"\": \"kept\"}}",
         "{\n\t\"GET\":\t{\n\t\t\"" + std::string(longest.begin(), longest.end()) +
             "\":\t\"Model\",\n\t\t\"" + std::string(tooLong.begin(), tooLong.end()) +
             "\":\t\"kept\"\n\t}\n}"}};
    DeviceIn("neta", {{SnmpText("Model")}});
    for (const auto& [request, document] : rows) {
        SweepFor(request);
        Lines expected = {"end"};
        if (!document.empty()) expected.insert(expected.begin(), "10.77.1.2=" + document);
        EXPECT_EQ(expected, window.Texts());
        window.results.clear();
    }
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
