// Sweeps over SNMPv3: the datagrams, the devices that are delivered, the log lines.
#include "exports/support/v3_test.h"

namespace vndiscover {
namespace {

// A request for the default OID, made independently with Python's hashlib and hmac, and `openssl
// enc -nopad`, from the fields of V3RequestFields().
const V3User kPrivateUser = {L"user", 1, 1, L"sha-2(256)", L"aEs"};
Bytes PrivateRequest() {
    return Hex(
        "308187020103300f020201000203010000040107020103043f303d04098000174b0501020304"
        "0201070203011170040475736572"
        "0418acdd75d9b2a819fb83c28d372e96b04ac8cf0094eed94548"
        "04083c5a96e1d27b04f9"
        "0430bb057667ba929b420969c8ea3b2997d2fc55a069e7e1755773540a8a2c76e1055a9eabd860d5b7a5b024"
        "83e84a0fd362");
}

class V3Sweep : public V3Test {
  protected:
    void Sweep(BYTE useIPv6 = 0) { EXPECT_EQ(0, SweepV3(window, nullptr, useIPv6)); }
    void SweepFor(const std::wstring& request) { EXPECT_EQ(0, SweepV3(window, request.c_str())); }
};

TEST_F(V3Sweep, DiscoversEnginesAndAsksEachResponder) {
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    Sweep();
    EXPECT_THAT(Ways(), ElementsAre("neta: 10.77.1.1 > 255.255.255.255:161",
                                    "neta: 10.77.1.1 > 10.77.1.2:161",
                                    "netb: 10.77.2.1 > 255.255.255.255:161"));
    EXPECT_THAT(Sent(), ElementsAre(V3Discovery(), V3Request(kDefaultOid), V3Discovery()));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=Model")) << "and no final message";
    EXPECT_THAT(SilentWaits(), ElementsAre(2000, 2000));
}

TEST_F(V3Sweep, UsesTheHostsUserName) {
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    user = kPrivateUser;
    Sweep();
    SweepFor(L"{}");
    EXPECT_THAT(Asked(), ElementsAre(PrivateRequest(), PrivateRequest()));
    // A name that does not fit is not truncated: it could be another user's.
    user.name = std::wstring(64, L'\u00e9');  // two bytes each
    Sweep();
    SweepFor(L"{}");
    EXPECT_THAT(Asked(), SizeIs(2));
}

TEST_F(V3Sweep, AsksIPv6DevicesFromTheirOwnAdapter) {
    Devices([](const Request& request) {
        if (request.net != "netb") return Answers();
        return Answers{{request.local == "ff02::1" ? V3Report() : V3Text("Model")}};
    });
    Sweep(1);
    EXPECT_THAT(Ways(),
                ElementsAre("neta: fe80::1:1 > ff02::1:161", "netb: fe80::2:1 > ff02::1:161",
                            "netb: fe80::2:1 > fe80::2:2:161"));
    EXPECT_THAT(Asked(), ElementsAre(V3Request(kDefaultOid)));
    EXPECT_THAT(window.Texts(), ElementsAre("fe80::2:2=Model"));
}

TEST_F(V3Sweep, DeliversTextAnswersInTheOrderOfReports) {
    const std::vector<V3AnswerCase> rows = V3AnswerCases();
    Answers reports;
    Lines expected;
    for (size_t i = 0; i < rows.size(); ++i) {
        const std::string address = "10.77.1.1" + std::to_string(5 - i % 5);
        reports.push_back({V3Report(), address});
        if (!rows[i].text.empty()) expected.push_back(address + '=' + rows[i].text);
    }
    // These name no engine, so that another engine discovery follows, and do not answer it.
    for (const Bytes& report : {V3NamelessReport(), TextBytes("no report")}) {
        reports.push_back({report, "10.77.1.2"});
    }
    Devices([&, asked = size_t{0}](const Request& request) mutable {
        if (request.net != "neta") return Answers();
        if (request.data == V3Discovery()) return reports;
        return asked < rows.size() ? Answers{{rows[asked++].datagram}} : Answers();
    });
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAreArray(expected));
    EXPECT_THAT(Asked(), Contains(V3DiscoveryFor(kDefaultOid)).Times(2));
    EXPECT_THAT(SilentWaits(), SizeIs(2 + 2)) << "one for each device without an answer";
}

// A request to a device that was found announces the message size of the device's report.
Bytes FollowUp(const std::string& oid) {
    V3Datagram request = V3RequestFields(oid);
    request.msgMaxSize = V3ReportFields().msgMaxSize;
    return request.Build();
}

TEST_F(V3Sweep, JsonFillsInEachValueThatTheDeviceHas) {
    Devices([](const Request& request) {
        if (request.net != "neta") return Answers();
        if (request.data == V3Discovery()) return Answers{{V3Report()}};
        if (request.data == V3Request(kSysDescr)) return Answers{{V3Text("Model")}};
        if (request.data != FollowUp(kSysName)) return Answers();
        return Answers{{V3Text("prn \"1\"", kSysName)}};
    });
    SweepFor(
        LR"({"DiscoverOID": ".1.3.6.1.2.1.1.1.0", "GET": {".1.3.6.1.2.1.1.5.0": "",
                               ".1.3.6.1.2.1.1.6.0": "kept"}, ")"
        L"\u00e9\": 7}");
    EXPECT_THAT(window.Documents(),
                ElementsAre(R"(10.77.1.2={"DiscoverOID":".1.3.6.1.2.1.1.1.0","GET":{)"
                            R"(".1.3.6.1.2.1.1.5.0":"prn \"1\"",".1.3.6.1.2.1.1.6.0":"kept"},)"
                            "\"\xc3\xa9\":7}"));
    EXPECT_THAT(Asked(),
                ElementsAre(V3Request(kSysDescr), FollowUp(kSysName), FollowUp(kSysLocation)))
        << "the engine values are those of the report";
    EXPECT_THAT(SilentWaits(), SizeIs(1 + 2)) << "one wait for the value that is missing";
}

TEST_F(V3Sweep, JsonOf2048BytesOrInvalidDeliversNothing) {
    const std::wstring text = L"{\"a\": 1}";
    DeviceWith({{V3Report()}}, {{V3Text("Model")}});
    SweepFor(text + std::wstring(2048 - text.size(), L' '));
    SweepFor(L"{\"a\": \"" + std::wstring(1020, L'\u00e9') + L"\"}");  // two bytes each
    EXPECT_THAT(Sent(), IsEmpty());
    SweepFor(L"{\"GET\": {");
    EXPECT_THAT(Asked(), ElementsAre(V3Request(kDefaultOid)));
    EXPECT_THAT(window.Texts(), IsEmpty());
    SweepFor(text + std::wstring(2047 - text.size(), L' '));
    EXPECT_THAT(window.Documents(), ElementsAre("10.77.1.2={\"a\":1}"));
}

TEST_F(V3Sweep, LogsAJsonSweepAndTheNextWithFailedSends) {
    const std::string begin = "SNMP::DiscoverV3\nSCKRAW::SCKRAW()\n" + encode;
    const std::string phase = "HandleEventsV3 start\n", end = "SNMP::Discoverv3 - ended\n";
    const std::string takesReport = phase + "tszRecvAddr = [10.77.1.2]\n" + decode +
                                    OidLines(kDefaultOid) +
                                    "SNMP::GetInformationV3 - [10.77.1.2]\n" + encode;
    const auto found = [](const std::string& count) {
        return "RecvFrom - Timeout\n ==== We have [" + count + "] devices on the network. ==== \n";
    };
    DeviceWith({{V3Report()}}, {{V3Text("A")}});
    SweepFor(L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}");
    ExpectLog(begin +
              "wszDisOID []\nszDisOid []\n"
              "Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n" +
              AdapterLines(0) + takesReport + decode + "strValue [A]" + found("1") +
              "GET command\nKey [.1.3.6.1.2.1.1.5.0]\n  value []\n  szKey [.1.3.6.1.2.1.1.5.0]\n" +
              OidLines(kSysName) + "SNMP::GetInformationV3 - [10.77.1.2]\n" + encode + decode +
              "szKey [.1.3.6.1.2.1.1.5.0] strValue [A]"
              "We have [1] devices responsed the information.\nHandleEvents end\n" +
              AdapterLines(1) + phase + found("0") + end);
    DeviceWith({{V3Report()}}, {});
    network.sendError = [](int call) { return call >= 2 ? WSAENETUNREACH : 0; };
    Sweep();
    const std::string failed = "sendto() failed - 10051\nsendto() failed, err: 10051\n";
    ExpectLog(begin + AdapterLines(0) + takesReport + failed + "strValue []" + found("0") +
              AdapterLines(1) + failed + end);
}

}  // namespace
}  // namespace vndiscover
