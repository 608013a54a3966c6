// Sweeps over SNMPv3: what goes out, which devices are delivered, when a sweep ends, what the log
// says.
#include <algorithm>

#include "exports/support/logged_test.h"
#include "exports/support/v3_devices.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

const char kSilence[] = "RecvFrom - Timeout\n";

template <class Base>
class V3Base : public Base {
  protected:
    int32_t Sweep(BYTE useIPv6 = 0) {
        return this->module.DiscoverSnmpV3(this->window.Handle(), ResultWindow::kMessage, 1,
                                           useIPv6, user.name.c_str(), user.useAuth,
                                           user.authPassword, user.usePriv, user.privPassword,
                                           user.authProtocol, user.privProtocol);
    }
    int32_t SweepFor(const std::wstring& request) {
        return this->module.DiscoverV3DevicesByOIDjson(
            this->window.Handle(), ResultWindow::kMessage, 1, 0, request.c_str(), user.name.c_str(),
            user.useAuth, user.authPassword, user.usePriv, user.privPassword, user.authProtocol,
            user.privProtocol);
    }
    // Devices of neta that answer the probe with reports, and each request with the answers.
    void DeviceWith(std::vector<Answer> reports, std::vector<Answer> answers) {
        this->Devices([=](const Request& request) {
            if (request.net != "neta") return std::vector<Answer>();
            return request.local == "255.255.255.255" ? reports : answers;
        });
    }
    // The requests that were sent to one device.
    std::vector<Bytes> Asked() {
        std::vector<Bytes> asked;
        for (const Request& request : this->agents->Requests()) {
            if (request.local != "255.255.255.255") asked.push_back(request.data);
        }
        return asked;
    }

    V3User user;
};

class V3Test : public V3Base<QuickLabTest> {};

class V3Sweep : public V3Test {};

TEST_F(V3Sweep, AsksEverybodyForAnEngineAndThenEachResponderForItsValue) {
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    EXPECT_EQ(0, Sweep());
    const std::vector<Request> requests = agents->Requests();
    ASSERT_THAT(requests, SizeIs(3));
    const char* const ways[][3] = {{"neta", "10.77.1.1", "255.255.255.255"},
                                   {"neta", "10.77.1.1", "10.77.1.2"},
                                   {"netb", "10.77.2.1", "255.255.255.255"}};
    const Bytes data[] = {V3Probe(), V3Request(kDefaultOid), V3Probe()};
    for (size_t i = 0; i < requests.size(); ++i) {
        EXPECT_EQ(ways[i][0], requests[i].net) << i;
        EXPECT_EQ(ways[i][1], requests[i].sender) << i;
        EXPECT_EQ(ways[i][2], requests[i].local) << i;
        EXPECT_EQ(161, requests[i].port) << i;
        EXPECT_EQ(data[i], requests[i].data) << i;
    }
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=Model")) << "and no final message";
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000));
}

TEST_F(V3Sweep, ReachesIPv6DevicesThroughTheirOwnAdapter) {
    Devices([](const Request& request) {
        if (request.net != "netb") return std::vector<Answer>();
        return std::vector<Answer>{{request.local == "ff02::1" ? V3Report() : V3Text("Model")}};
    });
    Sweep(1);
    const std::vector<Request> requests = agents->Requests();
    ASSERT_THAT(requests, SizeIs(3));
    EXPECT_EQ("fe80::2:1", requests[2].sender);
    EXPECT_EQ("fe80::2:2", requests[2].local);
    EXPECT_EQ(V3Request(kDefaultOid), requests[2].data);
    EXPECT_THAT(window.Texts(), ElementsAre("fe80::2:2=Model"));
}

TEST_F(V3Sweep, DeliversInTheOrderOfTheReportsDuplicatesIncluded) {
    Devices([](const Request& request) {
        if (request.net != "neta") return std::vector<Answer>();
        if (request.local == "10.77.1.13") return std::vector<Answer>();
        if (request.local != "255.255.255.255") {
            return std::vector<Answer>{{V3Text("I am " + request.local)}};
        }
        return std::vector<Answer>{{V3Report(), "10.77.1.12"},
                                   {V3Report(), "10.77.1.13"},
                                   {V3Report(), "10.77.1.11"},
                                   {V3Report(), "10.77.1.12"}};
    });
    Sweep();
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.12=I am 10.77.1.12", "10.77.1.11=I am 10.77.1.11",
                            "10.77.1.12=I am 10.77.1.12"));
    EXPECT_THAT(waits.Silent(), SizeIs(1 + 2)) << "one for the device without an answer";
}

TEST_F(V3Sweep, AsksAReporterWithoutAnEngineWithAnotherProbe) {
    V3Datagram otherModel = V3ReportFields();
    otherModel.securityModel = 2;
    DeviceWith({{V3NamelessReport()}, {otherModel.Build()}, {TextBytes("no report")}},
               {{V3NamelessReport()}});
    Sweep();
    EXPECT_EQ(std::vector<Bytes>(3, V3ProbeFor(kDefaultOid)), Asked());
    EXPECT_THAT(window.Texts(), IsEmpty());
}

TEST_F(V3Sweep, SendsNothingForAUserNameThatDoesNotFit) {
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    user.name = std::wstring(128, L'u');
    EXPECT_EQ(0, Sweep());
    user.name = std::wstring(64, L'\u00e9');  // two bytes each
    EXPECT_EQ(0, Sweep());
    EXPECT_THAT(agents->Requests(), IsEmpty());
    user.name = std::wstring(127, L'u');
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=Model"));
}

struct LevelCase : Row {
    V3User user;
    uint8_t flags;
    size_t macLength;
    std::string salt;  // hexadecimal; it begins anew with every message
};
class V3Level : public V3Test, public testing::WithParamInterface<LevelCase> {};

TEST_P(V3Level, ShowsInTheRequest) {
    user = GetParam().user;
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    Sweep();
    ASSERT_THAT(Asked(), SizeIs(1));
    V3Datagram expected;
    expected.msgMaxSize = 65536;
    expected.flagsTlv = Tlv(0x04, {GetParam().flags});
    expected.macTlv = Tlv(0x04, Bytes(GetParam().macLength, 0));
    expected.salt = Hex(GetParam().salt);
    expected.scopedTlv = {};
    const Bytes asked = Asked()[0];
    const Bytes content = expected.Content();
    // Behind the outer tag and its length; the code itself is no constant.
    const size_t macEnd = content.size() - (2 + expected.salt.size());
    ASSERT_GT(asked.size(), content.size());
    const size_t start = asked[1] < 0x80 ? 2 : 2 + (asked[1] & 0x7F);
    const auto same = [&](size_t from, size_t to) {
        return std::equal(content.begin() + static_cast<std::ptrdiff_t>(from),
                          content.begin() + static_cast<std::ptrdiff_t>(to),
                          asked.begin() + static_cast<std::ptrdiff_t>(start + from));
    };
    EXPECT_TRUE(same(0, macEnd - GetParam().macLength)) << testing::PrintToString(asked);
    EXPECT_TRUE(same(macEnd, content.size())) << testing::PrintToString(asked);
}

V3User PlainUser(BYTE usePriv) { return {L"user", 0, usePriv}; }
V3User AuthUser(const wchar_t* protocol) { return {L"user", 1, 0, protocol}; }
V3User PrivUser(const wchar_t* auth, const wchar_t* priv) { return {L"user", 1, 1, auth, priv}; }

INSTANTIATE_TEST_SUITE_P(
    Labels, V3Level,
    testing::Values(LevelCase{"NoSecurity", PlainUser(0), 0x04, 0, ""},
                    LevelCase{"PrivacyWithoutAuthentication", PlainUser(1), 0x04, 0, ""},
                    LevelCase{"Md5", AuthUser(L"md5"), 0x05, 12, ""},
                    LevelCase{"Sha1", AuthUser(L"sha1"), 0x05, 12, ""},
                    LevelCase{"Sha224", AuthUser(L"Sha-2(224)"), 0x05, 16, ""},
                    LevelCase{"Sha256", AuthUser(L"sha-2(256)"), 0x05, 24, ""},
                    LevelCase{"Sha384", AuthUser(L"SHA-2(384)"), 0x05, 32, ""},
                    LevelCase{"Sha512", AuthUser(L"shA-2(512)"), 0x05, 48, ""},
                    LevelCase{"UnknownAuthentication", AuthUser(L"SHA"), 0x05, 0, ""},
                    LevelCase{"NullAuthentication", AuthUser(nullptr), 0x05, 0, ""},
                    LevelCase{"Des", PrivUser(L"MD5", L"des"), 0x07, 12, "00000007 002a4c1a"},
                    LevelCase{"Aes", PrivUser(L"SHA-2(512)", L"aEs"), 0x07, 48,
                              "3c5a96e1 d27b04f9"}),
    kNameOfRow);

class V3AnswerTest : public V3Test {};

struct AnswerCase : Row {
    Bytes answer;
    std::string value;  // empty: no device
};
class V3Answer : public V3AnswerTest, public testing::WithParamInterface<AnswerCase> {};

TEST_P(V3Answer, IsADeviceWhereItHoldsText) {
    DeviceWith({{V3Report()}}, {{GetParam().answer}});
    Sweep();
    if (GetParam().value.empty()) {
        EXPECT_THAT(window.Texts(), IsEmpty());
    } else {
        EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=" + GetParam().value));
    }
    EXPECT_THAT(waits.Silent(), SizeIs(2)) << "whatever comes is the answer";
}

Bytes OfModel(uint32_t securityModel) {
    V3Datagram answer = V3AnswerFields(Tlv(0x04, TextBytes("Model")));
    answer.securityModel = securityModel;
    return answer.Build();
}

Bytes Valued(const std::string& tlv) { return V3AnswerFields(Hex(tlv)).Build(); }

INSTANTIATE_TEST_SUITE_P(
    Values, V3Answer,
    testing::Values(AnswerCase{"Text", V3Text("Model"), "Model"},
                    AnswerCase{"TextUpToItsZeroByte", V3Text(std::string("ab\0cd", 5)), "ab"},
                    AnswerCase{"LongestText", V3Text(std::string(126, 'x')), std::string(126, 'x')},
                    AnswerCase{"AnotherOid", V3Text("Model", kSysName), "Model"},
                    AnswerCase{"Integer", Valued("02 04 7f ff ff ff"), "2147483647"},
                    AnswerCase{"NegativeInteger", Valued("02 01 ff"), "-1"},
                    AnswerCase{"IntegerOfSixBytes", Valued("02 06 00 00 00 00 00 01"), ""},
                    AnswerCase{"EmptyText", V3Text(""), ""},
                    AnswerCase{"Null", Valued("05 00"), ""},
                    AnswerCase{"Counter", Valued("41 01 07"), ""},
                    AnswerCase{"NoSuchObject", Valued("80 00"), ""},
                    AnswerCase{"AnotherReport", V3Report(), ""},
                    AnswerCase{"AnotherSecurityModel", OfModel(1), ""},
                    AnswerCase{"NoBer", TextBytes("hello"), ""},
                    AnswerCase{"CommunityAnswer", SnmpText("Model"), ""}),
    kNameOfRow);

// One sweep meets them all: as many reports as there are prefixes.
TEST_F(V3AnswerTest, CutAnywhereIsNoDevice) {
    const Bytes whole = V3Text("Model");
    size_t length = 0;
    Devices([&](const Request& request) {
        if (request.net != "neta") return std::vector<Answer>();
        if (request.local == "255.255.255.255") {
            return std::vector<Answer>{{V3Report(), "", 0, static_cast<int>(whole.size())}};
        }
        return std::vector<Answer>{{Prefix(whole, ++length)}};
    });
    Sweep();
    EXPECT_EQ(whole.size(), length) << "every length was an answer";
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=Model")) << "the last one is whole";
}

TEST_F(V3AnswerTest, ToAReportThatIsCutComesFromADeviceAskedByWhatItTold) {
    const Bytes whole = V3Report();
    std::vector<Answer> reports;
    for (size_t length = 1; length <= whole.size(); ++length) {
        reports.push_back({Prefix(whole, length)});
    }
    Devices([&](const Request& request) {
        if (request.net != "neta") return std::vector<Answer>();
        if (request.local == "255.255.255.255") return reports;
        return std::vector<Answer>{
            {request.data == V3Request(kDefaultOid) ? V3Text("Model") : TextBytes("what?")}};
    });
    Sweep();
    ASSERT_THAT(Asked(), SizeIs(whole.size()));
    EXPECT_EQ(V3ProbeFor(kDefaultOid), Asked().front()) << "no engine yet";
    EXPECT_EQ(V3Request(kDefaultOid), Asked().back());
    EXPECT_FALSE(window.results.empty());
}

class V3Json : public V3Test {};

TEST_F(V3Json, FillsInEachValueThatTheDeviceHas) {
    Devices([](const Request& request) {
        if (request.net != "neta") return std::vector<Answer>();
        if (request.data == V3Probe()) return std::vector<Answer>{{V3Report()}};
        if (request.data == V3Request(kSysDescr)) return std::vector<Answer>{{V3Text("Model")}};
        if (request.data != V3Request(kSysName)) return std::vector<Answer>();
        return std::vector<Answer>{{V3Text("prn \"1\"", kSysName)}};
    });
    EXPECT_EQ(0, SweepFor(L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.1.0\", \"GET\": {"
                          L"\".1.3.6.1.2.1.1.5.0\": \"\", \".1.3.6.1.2.1.1.6.0\": \"kept\"}, "
                          L"\"\u00e9\": 7}"));
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.2={\n\t\"DiscoverOID\":\t\".1.3.6.1.2.1.1.1.0\",\n"
                            "\t\"GET\":\t{\n\t\t\".1.3.6.1.2.1.1.5.0\":\t\"prn \\\"1\\\"\",\n"
                            "\t\t\".1.3.6.1.2.1.1.6.0\":\t\"kept\"\n\t},\n\t\"\xc3\xa9\":\t7\n}"));
    EXPECT_THAT(Asked(), ElementsAre(V3Request(kSysDescr), V3Request(kSysName),
                                     V3Request(".1.3.6.1.2.1.1.6.0")))
        << "the engine values are those of the report";
    EXPECT_THAT(waits.Silent(), SizeIs(1 + 2)) << "one wait for the value that is missing";
}

TEST_F(V3Json, IsRejectedFrom2048BytesOn) {
    const std::wstring text = L"{\"a\": 1}";
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    SweepFor(text + std::wstring(2048 - text.size(), L' '));
    SweepFor(L"{\"a\": \"" + std::wstring(1020, L'\u00e9') + L"\"}");  // two bytes each
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_THAT(window.Texts(), IsEmpty());
    SweepFor(text + std::wstring(2047 - text.size(), L' '));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2={\n\t\"a\":\t1\n}"));
}

TEST_F(V3Json, DeliversNothingForWhatIsNoJson) {
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    SweepFor(L"{\"GET\": {");
    EXPECT_THAT(window.Texts(), IsEmpty());
    EXPECT_THAT(Asked(), ElementsAre(V3Request(kDefaultOid)));
}

class V3Limits : public V3Test {};

// Reports every 50 ms, which would go on for 20 s; the minute passes because the test moves the
// clock. Reports and answers take turns.
TEST_F(V3Limits, AMinuteEndsAPhaseThatIsNeverSilent) {
    FastClock clock(module);
    const Receives receives(module, nullptr, [&](int datagrams) {
        if (datagrams == 1) clock.Advance(55000);
        if (datagrams == 5) clock.Advance(5000);
    });
    DeviceWith({{V3Report(), "", 0, 400, 50000}}, {{V3Text("A")}});
    Sweep();
    EXPECT_THAT(window.results, SizeIs(3));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000)) << "of the other adapter";
}

TEST_F(V3Limits, AStopFromTheWindowEndsDelivery) {
    DeviceWith({{V3Report()}, {V3Report()}}, {{V3Text("A")}});
    window.onResult = [&](const Result&) { module.StopDiscoverSnmp(); };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A"));
    EXPECT_THAT(agents->Requests(), SizeIs(2 + 2)) << "the other adapter is still asked";
}

TEST_F(V3Limits, AStopFromAnotherThreadEndsCollectionWithoutDelivery) {
    DeviceWith({{V3Report(), "", 0, 400, 50000}}, {{V3Text("A")}});
    std::thread stopping([&] {
        Sleep(500);
        module.StopDiscoverSnmp();
    });
    const int64_t started = NowMs();
    Sweep();
    stopping.join();
    EXPECT_LE(NowMs() - started, 8000);
    EXPECT_THAT(window.Texts(), IsEmpty());
}

class V3SweepLog : public V3Base<LoggedTest> {
  protected:
    const Lines encode = {"VxSNMPv3::Encode()\n"};
    const Lines decode = {"VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n"};
    const Lines nobody = {"HandleEventsV3 start\n", kSilence,
                          " ==== We have [0] devices on the network. ==== \n"};
    const Lines asksForModel = {"OID length [14]\n",
                                "OID = [2b 06 01 04 01 ae 4b 2b 05 01 01 01 01 ]\n",
                                "SNMP::GetInformationV3 - [10.77.1.2]\n", "VxSNMPv3::Encode()\n"};
    const Lines found = {kSilence, " ==== We have [1] devices on the network. ==== \n"};
    const Lines delivered = {"We have [1] devices responsed the information.\n",
                             "HandleEvents end\n"};
};

TEST_F(V3SweepLog, TellsOneSweepFromItsStartToItsEnd) {
    DeviceWith({{V3Report()}}, {{V3Text("A")}});
    Sweep();
    EXPECT_THAT(log.Lines(),
                ElementsAreArray(
                    Lines{"SNMP::DiscoverV3\n", "SCKRAW::SCKRAW()\n"} + encode + AdapterLines(0) +
                    Lines{"HandleEventsV3 start\n", "tszRecvAddr = [10.77.1.2]\n"} + decode +
                    asksForModel + decode + Lines{"strValue [A]"} + found + delivered +
                    AdapterLines(1) + nobody + Lines{"SNMP::Discoverv3 - ended\n"}));
}

TEST_F(V3SweepLog, TellsWhatEachDeviceIsAskedInJsonMode) {
    DeviceWith({{V3Report()}}, {{V3Text("A")}});
    SweepFor(L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}");
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(
            Lines{"SNMP::DiscoverV3\n", "SCKRAW::SCKRAW()\n"} + encode +
            Lines{"wszDisOID []\n", "szDisOid []\n",
                  "Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n"} +
            AdapterLines(0) + Lines{"HandleEventsV3 start\n", "tszRecvAddr = [10.77.1.2]\n"} +
            decode + asksForModel + decode + Lines{"strValue [A]"} + found +
            Lines{"GET command\n", "Key [.1.3.6.1.2.1.1.5.0]\n", "  value []\n",
                  "  szKey [.1.3.6.1.2.1.1.5.0]\n", "OID length [9]\n",
                  "OID = [2b 06 01 02 01 01 05 00 ]\n", "SNMP::GetInformationV3 - [10.77.1.2]\n"} +
            encode + decode + Lines{"szKey [.1.3.6.1.2.1.1.5.0] strValue [A]"} + delivered +
            AdapterLines(1) + nobody + Lines{"SNMP::Discoverv3 - ended\n"}));
}

TEST_F(V3SweepLog, TellsAWrongAuthenticationCodeAndUsesTheAnswer) {
    DeviceWith({{V3Report()}}, {{V3WronglySigned("A")}});
    user.useAuth = 1;
    Sweep();
    EXPECT_TRUE(log.Has("NOT MATCH _authenticationParameters\n"));
    EXPECT_FALSE(log.Has("MATCH _authenticationParameters\n"));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A"));
}

TEST_F(V3SweepLog, TellsFailedSendsAndADeviceWithoutAValue) {
    DeviceWith({{V3Report()}}, {});
    {
        const Sends sends(module, [](int call) { return call >= 2 ? WSAENETUNREACH : 0; });
        Sweep();
    }
    const Lines failed = {"sendto() failed - 10051\n", "sendto() failed, err: 10051\n"};
    EXPECT_THAT(log.Lines(),
                ElementsAreArray(
                    Lines{"SNMP::DiscoverV3\n", "SCKRAW::SCKRAW()\n"} + encode + AdapterLines(0) +
                    Lines{"HandleEventsV3 start\n", "tszRecvAddr = [10.77.1.2]\n"} + decode +
                    asksForModel + failed + Lines{"strValue []"} +
                    Lines{kSilence, " ==== We have [0] devices on the network. ==== \n"} +
                    AdapterLines(1) + failed + Lines{"SNMP::Discoverv3 - ended\n"}));
}

}  // namespace
}  // namespace vndiscover
