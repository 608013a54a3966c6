// Directed requests over SNMPv3: what goes out, what the host's memory holds, what the log says.
#include "exports/support/guarded_buffer.h"
#include "exports/support/logged_test.h"
#include "exports/support/v3_devices.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

constexpr char kHost[] = "10.77.1.11";
constexpr uint32_t kNoType = 0xA5A5A5A5;

template <class Base>
class V3DirectedBase : public Base {
  protected:
    // The device of kHost; the answers are to everything but the probe.
    void DeviceWith(std::vector<Answer> reports, std::vector<Answer> answers) {
        this->Devices(
            [=](const Request& request) { return request.data == V3Probe() ? reports : answers; });
    }
    void DeviceWithValue(const Bytes& answer) { DeviceWith({{V3Report()}}, {{answer}}); }
    int32_t Get(char* value, int32_t size, const char* host = kHost, const char* oid = kSysName) {
        return this->module.GetSnmpRequestV3(host, oid, value, size, &type, 1, 99,
                                             user.name.c_str(), user.useAuth, user.authPassword,
                                             user.usePriv, user.privPassword, user.authProtocol,
                                             user.privProtocol);
    }
    int32_t Get() { return Get(text.Text(), text.Size()); }
    int32_t GetNext(VnResponseRecord* record, const char* host = kHost,
                    const char* oid = kSysName) {
        return this->module.GetNextSnmpRequestV3(
            host, oid, record, 1, 99, user.name.c_str(), user.useAuth, user.authPassword,
            user.usePriv, user.privPassword, user.authProtocol, user.privProtocol);
    }
    // "sender > local:port" of everything that was sent.
    std::vector<std::string> Ways() {
        std::vector<std::string> ways;
        for (const Request& request : this->agents->Requests()) {
            ways.push_back(request.sender + " > " + request.local + ':' +
                           std::to_string(request.port));
        }
        return ways;
    }
    std::vector<Bytes> Sent() {
        std::vector<Bytes> sent;
        for (const Request& request : this->agents->Requests()) sent.push_back(request.data);
        return sent;
    }

    V3User user;
    GuardedBuffer text{260};
    uint32_t type = kNoType;
    const int32_t reportLength = static_cast<int32_t>(V3Report().size());
};

// Waits last as long as ever: nearly all of these exchanges are answered, on a busy machine late.
class V3DirectedTest : public V3DirectedBase<LabTest> {
  protected:
    Waits waits{module, Waits::kReal};
};

class V3Get : public V3DirectedTest {};

TEST_F(V3Get, GivesTheValueAndTheLengthOfTheReport) {
    DeviceWithValue(V3Text("prn1", kSysName));
    EXPECT_EQ(reportLength, Get());
    EXPECT_STREQ("prn1", text.Text());
    EXPECT_TRUE(text.GuardsStand());
    EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    EXPECT_THAT(Sent(), ElementsAre(V3Probe(), V3Request(kSysName)));
    EXPECT_THAT(Ways(), ElementsAre("10.77.1.1 > 10.77.1.11:161", "10.77.1.1 > 10.77.1.11:161"));
    EXPECT_THAT(waits.Silent(), IsEmpty());
}

TEST_F(V3Get, GivesAnIntegerAsText) {
    DeviceWithValue(V3AnswerFields(Hex("02 01 fb"), kSysName).Build());
    EXPECT_EQ(reportLength, Get());
    EXPECT_STREQ("-5", text.Text());
    EXPECT_EQ(VN_TYPE_INTEGER, type);
}

TEST_F(V3Get, CutsATextThatDoesNotFit) {
    DeviceWithValue(V3Text("prn1", kSysName));
    for (const size_t size : {size_t{5}, size_t{4}, size_t{1}}) {
        GuardedBuffer small(size);
        EXPECT_EQ(reportLength, Get(small.Text(), small.Size()));
        EXPECT_EQ(std::string("prn1").substr(0, size - 1), small.Text());
        EXPECT_TRUE(small.GuardsStand()) << size;
    }
    EXPECT_EQ(reportLength, Get(text.Text(), 0));
    EXPECT_EQ(reportLength, Get(text.Text(), -1));
    EXPECT_EQ(reportLength, Get(nullptr, 260));
    EXPECT_TRUE(text.IsUntouched());
}

TEST_F(V3Get, NeedsNoTypeOfTheHost) {
    DeviceWithValue(V3Text("prn1", kSysName));
    EXPECT_EQ(reportLength,
              module.GetSnmpRequestV3(kHost, kSysName, text.Text(), text.Size(), nullptr, 0, 0,
                                      L"user", 0, nullptr, 0, nullptr, nullptr, nullptr));
    EXPECT_STREQ("prn1", text.Text());
}

struct NoTextCase : Row {
    Bytes answer;
    uint32_t type;
};
class V3GetNoText : public V3DirectedTest, public testing::WithParamInterface<NoTextCase> {};

TEST_P(V3GetNoText, LeavesTheBufferAloneAndTellsTheType) {
    DeviceWithValue(GetParam().answer);
    EXPECT_EQ(0, Get());
    EXPECT_TRUE(text.IsUntouched());
    EXPECT_EQ(GetParam().type, type);
}

Bytes Valued(const std::string& tlv) { return V3AnswerFields(Hex(tlv), kSysName).Build(); }

INSTANTIATE_TEST_SUITE_P(
    Answers, V3GetNoText,
    testing::Values(NoTextCase{"EmptyText", V3Text("", kSysName), VN_TYPE_OCTET_STRING},
                    NoTextCase{"Null", Valued("05 00"), VN_TYPE_NULL},
                    NoTextCase{"Counter", Valued("41 01 07"), VN_TYPE_COUNTER32},
                    NoTextCase{"IntegerOfSixBytes", Valued("02 06 00 00 00 00 00 01"),
                               VN_TYPE_INTEGER},
                    NoTextCase{"NoBer", TextBytes("hello"), kNoType},
                    NoTextCase{"CommunityAnswer", SnmpText("prn1", kSysName), kNoType}),
    kNameOfRow);

class V3GetNext : public V3DirectedTest {
  protected:
    V3GetNext() { std::memset(&record, 0xA5, sizeof record); }

    VnResponseRecord record;
};

TEST_F(V3GetNext, FillsTheRecordWithTheVariableThatFollows) {
    const std::string value("a\0b", 3);
    DeviceWithValue(V3Text(value, ".1.3.6.1.2.1.1.6.0"));
    EXPECT_EQ(reportLength, GetNext(&record));
    EXPECT_THAT(Sent(), ElementsAre(V3Probe(), V3Request(kSysName, 0xA1)));
    EXPECT_STREQ(kHost, record.address);
    ASSERT_LE(record.oidLength, VN_OID_SIZE) << "no variable";
    EXPECT_EQ(VN_TYPE_OCTET_STRING, record.valueType);
    EXPECT_EQ(3u, record.valueLength);
    EXPECT_EQ(TextBytes(value) + Bytes{0}, Bytes(record.value, record.value + 4));
    EXPECT_EQ(OidContent(".1.3.6.1.2.1.1.6.0"), Bytes(record.oid, record.oid + record.oidLength));
    for (const uint8_t byte : record.reserved) EXPECT_EQ(0xA5, byte);
}

TEST_F(V3GetNext, TakesEveryType) {
    for (const uint8_t tag : {0x02, 0x05, 0x06, 0x40, 0x41, 0x42, 0x43, 0x44, 0x46, 0x82}) {
        const Bytes value = tag == 0x05 || tag == 0x82 ? Bytes() : Bytes{1, 2, 3, 4};
        DeviceWithValue(V3AnswerFields(Tlv(tag, value)).Build());
        EXPECT_EQ(reportLength, GetNext(&record));
        ASSERT_EQ(tag, record.valueType);
        EXPECT_EQ(value, Bytes(record.value, record.value + record.valueLength));
    }
}

TEST_F(V3GetNext, FillsInTheAddressAloneWithoutAnAnswer) {
    DeviceWith({{V3Report()}}, {});
    EXPECT_EQ(reportLength, GetNext(&record));
    EXPECT_STREQ(kHost, record.address);
    EXPECT_EQ(0xA5A5, record.valueType);
    EXPECT_EQ(0xA5A5, record.oidLength);
    EXPECT_THAT(waits.Silent(), ElementsAre(2000));
}

TEST_F(V3GetNext, IsZeroWithoutARecord) {
    DeviceWithValue(V3Text("prn1", kSysName));
    EXPECT_EQ(0, GetNext(nullptr));
}

class V3DirectedFailures : public V3DirectedTest {
  protected:
    V3DirectedFailures() { record.oidLength = 77; }
    void ExpectNothing() {
        EXPECT_TRUE(text.IsUntouched());
        EXPECT_EQ(kNoType, type);
        EXPECT_EQ(77, record.oidLength);
    }

    VnResponseRecord record = {};
};

TEST_F(V3DirectedFailures, ADeviceWithoutAReportGivesNothing) {
    SilentDevices();
    EXPECT_EQ(0, Get());
    EXPECT_EQ(0, GetNext(&record));
    ExpectNothing();
    EXPECT_THAT(Sent(), ElementsAre(V3Probe(), V3Probe())) << "each sent once";
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000)) << "the first silent wait ends it";
}

TEST_F(V3DirectedFailures, AReportWithoutAnEngineLeadsToAnotherProbe) {
    DeviceWith({{V3NamelessReport()}}, {{V3NamelessReport()}});
    EXPECT_EQ(0, Get());
    EXPECT_THAT(Sent(), ElementsAre(V3Probe(), V3ProbeFor(kSysName)));
    EXPECT_TRUE(text.IsUntouched());
}

TEST_F(V3DirectedFailures, ARequestThatCannotLeaveIsToldByTheRecordsExportAlone) {
    const Sends sends(module, [](int) { return WSAENETUNREACH; });
    SilentDevices();
    EXPECT_EQ(0, Get());
    EXPECT_EQ(-1, GetNext(&record));
    ExpectNothing();
}

TEST_F(V3DirectedFailures, NothingIsSentWithoutAHostOrForAUserNameThatDoesNotFit) {
    DeviceWithValue(V3Text("prn1", kSysName));
    EXPECT_EQ(0, Get(text.Text(), text.Size(), nullptr));
    EXPECT_EQ(0, GetNext(&record, nullptr));
    user.name = std::wstring(128, L'u');
    EXPECT_EQ(0, Get());
    EXPECT_EQ(0, GetNext(&record));
    ExpectNothing();
    EXPECT_THAT(agents->Requests(), IsEmpty());
    user.name = std::wstring(127, L'u');
    EXPECT_EQ(reportLength, Get());
}

TEST_F(V3DirectedFailures, AnOidThatCannotBeEncodedIsNotAskedFor) {
    DeviceWithValue(V3Text("prn1", kSysName));
    std::string oid = ".1.3";
    for (int i = 0; i < 124; ++i) oid += ".1";
    EXPECT_EQ(0, Get(text.Text(), text.Size(), kHost, oid.c_str()));
    ExpectNothing();
    EXPECT_THAT(Sent(), ElementsAre(V3Probe()));
}

class V3DirectedWays : public V3DirectedTest {};

TEST_F(V3DirectedWays, AnIPv6HostIsTriedFromTheRememberedAddressFirst) {
    DeviceWithValue(V3Text("prn1", kSysName));
    EXPECT_EQ(reportLength, Get(text.Text(), text.Size(), "fe80::1:11"));
    EXPECT_STREQ("prn1", text.Text());
    EXPECT_THAT(Sent(), ElementsAre(V3Probe(), V3Probe(), V3Request(kSysName)));
    EXPECT_EQ(std::vector<std::string>(3, "fe80::1:1 > fe80::1:11:161"), Ways());
}

TEST_F(V3DirectedWays, AnIPv6HostWithoutAnAnswerIsReachedFromTheSecondAddress) {
    DeviceWithValue(V3Text("prn1", kSysName));
    EXPECT_EQ(reportLength, Get(text.Text(), text.Size(), "fe80::2:2"));
    EXPECT_STREQ("prn1", text.Text());
    EXPECT_THAT(waits.Silent(), ElementsAre(2000));
}

TEST_F(V3DirectedWays, ASilentDeviceCostsTwoSeconds) {
    SilentDevices();
    const int64_t started = NowMs();
    EXPECT_EQ(0, Get());
    EXPECT_THAT(NowMs() - started, AllOf(Ge(1900), Le(6000)));
}

class V3DirectedLog : public V3DirectedBase<LoggedTest> {
  protected:
    const Lines exchange = {"SNMP::GetInformationV3 - [10.77.1.11]\n"};
    const Lines begin = {"g_nAdapter [0]\n", "VxSNMP::VxSNMP()\n", "szBindIp []\n"};
    const Lines encode = {"VxSNMPv3::Encode()\n"};
    const Lines decode = {"VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n"};
    const Lines asks = {"OID length [9]\n", "OID = [2b 06 01 02 01 01 05 00 ]\n",
                        "SNMP::GetInformationV3 - [10.77.1.11]\n"};
    const Lines end = {"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"};
};

TEST_F(V3DirectedLog, TellsOneGet) {
    DeviceWithValue(V3Text("prn1", kSysName));
    Get();
    EXPECT_THAT(log.Lines(),
                ElementsAreArray(begin + exchange + Lines{"SCKRAW::SCKRAW()\n"} + encode + decode +
                                 asks + encode + decode + Lines{"strValue [prn1]"} + end));
}

TEST_F(V3DirectedLog, TellsKeysAndAWrongAuthenticationCode) {
    DeviceWithValue(V3WronglySigned("prn1"));
    user.useAuth = 1;
    user.usePriv = 1;
    user.privProtocol = VN_PRIV_DES;
    const Lines key = {"=====pkey for privacy password (SHA1) w/ DES===== \n"};
    EXPECT_EQ(reportLength, Get());
    EXPECT_STREQ("prn1", text.Text()) << "used all the same";
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(begin + exchange + Lines{"SCKRAW::SCKRAW()\n"} + encode + decode + asks +
                         encode + key + decode + key +
                         Lines{"NOT MATCH _authenticationParameters\n", "strValue [prn1]"} + end));
}

TEST_F(V3DirectedLog, TellsAGetNextThatNobodyAnswers) {
    SilentDevices();
    VnResponseRecord record;
    GetNext(&record);
    EXPECT_THAT(log.Lines(), ElementsAreArray(begin + exchange + Lines{"SCKRAW::SCKRAW()\n"} +
                                              encode + Lines{"RecvFrom - Timeout\n"} + end));
}

}  // namespace
}  // namespace vndiscover
