// Directed requests over SNMPv3: the datagrams, the host's buffers, the log lines.
#include "exports/support/v3_test.h"

namespace vndiscover {
namespace {

constexpr char kHost[] = "10.77.1.11";
constexpr uint32_t kNoType = 0xA5A5A5A5;

class V3Directed : public V3Test {
  protected:
    V3Directed() { std::memset(&record, 0xA5, sizeof record); }

    void AnswerWith(const Bytes& answer) { DeviceWith({{V3Report()}}, {{answer}}); }
    int32_t Get(GuardedBuffer& value, const char* host = kHost, const char* oid = kSysName) {
        return Get(value.Text(), value.Size(), &type, host, oid);
    }
    int32_t Get(char* value, int32_t size, uint32_t* outType, const char* host = kHost,
                const char* oid = kSysName) {
        return user.Ask([&](auto... security) {
            return module.GetSnmpRequestV3(host, oid, value, size, outType, 1, 99, security...);
        });
    }
    int32_t GetNext(VnResponseRecord* out, const char* host = kHost) {
        return user.Ask([&](auto... security) {
            return module.GetNextSnmpRequestV3(host, kSysName, out, 1, 99, security...);
        });
    }
    void ExpectNothing() {
        EXPECT_TRUE(text.IsUntouched());
        EXPECT_EQ(kNoType, type);
        EXPECT_EQ(0xA5A5, record.oidLength);
    }

    GuardedBuffer text{260};
    uint32_t type = kNoType;
    VnResponseRecord record;  // every byte 0xA5
    const int32_t reportLength = static_cast<int32_t>(V3Report().size());
};

TEST_F(V3Directed, GetReturnsTheReportsLengthAndTheText) {
    AnswerWith(V3Text("prn1", kSysName));
    for (const size_t size : {260, 5, 4, 1}) {
        GuardedBuffer value(size);
        EXPECT_EQ(reportLength, Get(value));
        EXPECT_EQ(std::string("prn1").substr(0, size - 1), value.Text());
        EXPECT_TRUE(value.FrontStands()) << size;
    }
    EXPECT_EQ(reportLength, Get(text.Text(), 0, nullptr));
    EXPECT_EQ(reportLength, Get(text.Text(), -1, nullptr));
    EXPECT_EQ(reportLength, Get(nullptr, 260, nullptr));
    EXPECT_TRUE(text.IsUntouched());
    EXPECT_THAT(Asked(), AllOf(SizeIs(7), Each(V3Request(kSysName))));
    EXPECT_THAT(Ways(), Each("neta: 10.77.1.1 > 10.77.1.11:161"));
    EXPECT_THAT(SilentWaits(), IsEmpty());
}

TEST_F(V3Directed, GetWritesTextOnlyAndTheTypeOfEveryValue) {
    for (const V3AnswerCase& row : V3AnswerCases()) {
        SCOPED_TRACE(row.name);
        text.Fresh();
        type = kNoType;
        AnswerWith(row.datagram);
        EXPECT_EQ(row.text.empty() ? 0 : reportLength, Get(text));
        EXPECT_TRUE(row.text.empty() ? text.IsUntouched() : row.text == text.Text());
        EXPECT_EQ(row.type != 0 ? row.type : kNoType, type);
    }
}

// HMACs and cipher texts are checked with a real agent and a dissector elsewhere.
TEST_F(V3Directed, UnknownProtocolsProtectNothing) {
    AnswerWith(V3Text("prn1", kSysName));
    V3Datagram request = V3RequestFields(kSysName);
    user = {L"user", 0, 1};
    Get(text);
    EXPECT_EQ(request.Build(), Asked().back());
    request.flagsTlv = Tlv(0x04, {0x05});
    for (const wchar_t* label : {L"SHA", L"SHA11", L"", static_cast<const wchar_t*>(nullptr)}) {
        user = {L"user", 1, 0, label};
        Get(text);
        EXPECT_EQ(request.Build(), Asked().back());
    }
}

TEST_F(V3Directed, GetNextFillsTheRecordWithTheNextVariable) {
    const std::string value("a\0b", 3);
    AnswerWith(V3Text(value, kSysLocation));
    EXPECT_EQ(reportLength, GetNext(&record));
    EXPECT_THAT(Sent(), ElementsAre(V3Discovery(), V3Request(kSysName, 0xA1)));
    EXPECT_STREQ(kHost, record.address);
    ASSERT_LE(record.oidLength, VN_OID_SIZE) << "no variable";
    EXPECT_EQ(VN_TYPE_OCTET_STRING, record.valueType);
    EXPECT_EQ(3u, record.valueLength);
    EXPECT_EQ(TextBytes(value) + Bytes{0}, Bytes(record.value, record.value + 4));
    EXPECT_EQ(OidContent(kSysLocation), Bytes(record.oid, record.oid + record.oidLength));
    EXPECT_THAT(record.reserved, Each(0xA5));

    AnswerWith(V3AnswerFields(Hex("82 00")).Build());
    EXPECT_EQ(reportLength, GetNext(&record));
    EXPECT_EQ(0x82, record.valueType);
    EXPECT_EQ(0, record.valueLength);
    EXPECT_EQ(0, record.value[0]);
    EXPECT_EQ(0, GetNext(nullptr));
}

// The first time-out ends each half of the exchange.
TEST_F(V3Directed, MissingReportsAndAnswersGiveNothing) {
    DeviceWith({{V3Report()}}, {});
    EXPECT_EQ(0, Get(text));
    ExpectNothing();
    EXPECT_EQ(reportLength, GetNext(&record));
    EXPECT_STREQ(kHost, record.address) << "this alone is filled in";
    EXPECT_EQ(0xA5A5, record.valueType);
    SilentDevices();
    EXPECT_EQ(0, Get(text));
    EXPECT_EQ(0, GetNext(&record));
    EXPECT_THAT(Sent(), ElementsAre(V3Discovery(), V3Discovery())) << "each sent once";
    EXPECT_THAT(SilentWaits(), ElementsAre(2000, 2000));
    network.sendError = [](int) { return WSAENETUNREACH; };
    EXPECT_EQ(0, Get(text));
    EXPECT_EQ(-1, GetNext(&record)) << "this one tells";
    ExpectNothing();
}

TEST_F(V3Directed, ReportWithoutAnEngineLeadsToAnotherDiscovery) {
    for (const Bytes& report : {V3NamelessReport(), TextBytes("no report")}) {
        DeviceWith({{report}}, {{V3Text("prn1")}});
        EXPECT_EQ(static_cast<int32_t>(report.size()), Get(text));
        EXPECT_THAT(Sent(), ElementsAre(V3Discovery(), V3DiscoveryFor(kSysName)));
    }
}

TEST_F(V3Directed, InvalidArgumentsSendNothing) {
    AnswerWith(V3Text("prn1", kSysName));
    EXPECT_EQ(0, Get(text, nullptr));
    EXPECT_EQ(0, GetNext(&record, nullptr));
    user.name = std::wstring(128, L'u');
    EXPECT_EQ(0, Get(text));
    EXPECT_EQ(0, GetNext(&record));
    EXPECT_THAT(Sent(), IsEmpty());
    user.name = std::wstring(127, L'u');
    EXPECT_EQ(0, Get(text, kHost, LongOid(125).c_str()));
    EXPECT_THAT(Sent(), ElementsAre(V3Discovery()));
    ExpectNothing();
    EXPECT_EQ(reportLength, Get(text));
}

// Unlike SNMPv1 requests, these do not end the log lines of the rows.
TEST_F(V3Directed, IPv6UsesTheRememberedAddressAndThenTheSecond) {
    const Reply neighbours = [](const Request& request) {
        if (request.local.substr(0, 7) != request.sender.substr(0, 7)) return Answers();
        return Answers{{request.data == V3Discovery() ? V3Report() : V3Text("prn1", kSysName)}};
    };
    Devices(neighbours);
    EXPECT_EQ(reportLength, Get(text, "fe80::1:11"));
    EXPECT_THAT(Sent(), ElementsAre(V3Discovery(), V3Discovery(), V3Request(kSysName)));
    EXPECT_EQ(Lines(3, "neta: fe80::1:1 > fe80::1:11:161"), Ways());
    EXPECT_TRUE(log.Has("g_adapterAddr[g_nAdapter].szAddress [fe80::1:1]"));
    EXPECT_TRUE(log.Has("szBindIp [fe80::1:1]\n"));
    EXPECT_EQ(reportLength, Get(text, "fe80::2:2"));
    EXPECT_THAT(SilentWaits(), ElementsAre(2000));
    // A trial that cannot be sent counts as unanswered.
    Reload();
    Devices(neighbours);
    network.sendError = [isFirst = true](int) mutable {
        return std::exchange(isFirst, false) ? WSAENETUNREACH : 0;
    };
    EXPECT_EQ(reportLength, Get(text, "fe80::2:2"));
    EXPECT_THAT(Senders(), Each("fe80::2:1"));
}

TEST_F(V3Directed, RequestsLogEachStep) {
    const std::string asks = "SNMP::GetInformationV3 - [10.77.1.11]\n";
    const std::string begin =
        "g_nAdapter [0]\nVxSNMP::VxSNMP()\nszBindIp []\n" + asks + "SCKRAW::SCKRAW()\n" + encode;
    const std::string end = "VxSnmpMgr::~VxSnmpMgr()\nSCKRAW::~SCKRAW() [-1]\n";
    const std::string key = "=====pkey for privacy password (SHA1) w/ DES===== \n";
    AnswerWith(V3WronglySigned("prn1"));
    user = {L"user", 1, 1, VN_AUTH_SHA1, VN_PRIV_DES};
    EXPECT_EQ(reportLength, Get(text));
    ExpectLog(begin + decode + OidLines(kSysName) + asks + encode + key + decode + key +
              "NOT MATCH _authenticationParameters\nstrValue [prn1]" + end);
    SilentDevices();
    GetNext(&record);
    ExpectLog(begin + "RecvFrom - Timeout\n" + end);
    network.receiveError = [](int) { return WSANOTINITIALISED; };
    DeviceWith({{V3Report()}}, {});
    EXPECT_EQ(0, Get(text));
    ExpectLog(begin + "Receive Data failed - 10093\ntszRecvAddr = WSAStartup failed\nstrValue []" +
              end);
}

}  // namespace
}  // namespace vndiscover
