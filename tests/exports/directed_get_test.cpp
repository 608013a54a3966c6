// Single values of one device: get and get-next.
#include "exports/support/guarded_buffer.h"
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr char kHost[] = "10.77.1.11";

class DirectedGet : public QuickLabTest {
  protected:
    int32_t Raw(GuardedBuffer& value, uint32_t* type, const char* oid = kSysDescr) {
        return module.GetSnmpRequestRaw(kHost, oid, value.Data(), value.Size(), type, 0, 0, nullptr,
                                        nullptr);
    }
    int32_t Text(char* value, int32_t size, uint32_t expectedType) {
        return module.GetSnmpRequest(kHost, kSysDescr, value, size, expectedType, 0, 0, nullptr,
                                     nullptr);
    }
    // The text that GetSnmpRequest writes, or "(nothing)".
    std::string TextOf(uint32_t expectedType) {
        char value[VN_REQUEST_VALUE_SIZE] = "(nothing)";
        Text(value, sizeof value, expectedType);
        return value;
    }
};

TEST_F(DirectedGet, SendsOneRequestToTheDeviceAlone) {
    DeviceIn("neta", {{SnmpText("prn1")}});
    GuardedBuffer value(256);
    module.GetSnmpRequestRaw(kHost, kSysName, value.Data(), value.Size(), nullptr, 5000, 9,
                             "public", "private");
    const std::vector<Request> requests = agents->Requests();
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(kHost, requests[0].local);
    EXPECT_EQ(161, requests[0].port);
    // RFC 1157: version 0, "public", GetRequest with request-id 1, 1.3.6.1.2.1.1.5.0, NULL.
    EXPECT_EQ(Hex("30 26 02 01 00 04 06 70 75 62 6C 69 63 A0 19 02 01 01 02 01 00 02 01 00"
                  "30 0E 30 0C 06 08 2B 06 01 02 01 01 05 00 05 00"),
              requests[0].data);
}

struct CommunityCase : Row {
    const char* community;
    std::string sent;
};
class DirectedCommunity : public DirectedGet, public testing::WithParamInterface<CommunityCase> {};

TEST_P(DirectedCommunity, StandsInTheRequest) {
    DeviceIn("neta", {{SnmpText("prn1")}});
    VnResponseRecord record = {};
    module.GetSnmpRequestRaw(kHost, kSysName, nullptr, 0, nullptr, 0, 0, GetParam().community, "w");
    module.GetNextSnmpRequestRaw(kHost, kSysName, &record, 0, 0, GetParam().community, "w");
    char text[VN_INFORMATION_SIZE];
    module.GetSnmpInformation(kHost, text, GetParam().community, "w");
    const std::vector<Request> requests = agents->Requests();
    ASSERT_THAT(requests, SizeIs(3));
    EXPECT_EQ(SnmpGet(kSysName, GetParam().sent), requests[0].data);
    SnmpMessage next;
    next.oid = kSysName;
    next.community = GetParam().sent;
    next.pduType = 0xA1;
    EXPECT_EQ(Encode(next), requests[1].data);
    EXPECT_EQ(SnmpGet(kDefaultOid, GetParam().sent), requests[2].data);
}

INSTANTIATE_TEST_SUITE_P(Texts, DirectedCommunity,
                         testing::Values(CommunityCase{"Null", nullptr, "sesame"},
                                         CommunityCase{"Empty", "", "sesame"},
                                         CommunityCase{"Given", "public", "public"}),
                         kNameOfRow);

struct ValueCase : Row {
    uint8_t type;
    Bytes value;
};
class DirectedValue : public DirectedGet, public testing::WithParamInterface<ValueCase> {};

TEST_P(DirectedValue, ArrivesRawWithItsTypeAndAZeroByte) {
    const Bytes& sent = GetParam().value;
    DeviceIn("neta", {{SnmpAnswer(kSysDescr, GetParam().type, sent)}});
    GuardedBuffer value(256);
    uint32_t type = 99;
    EXPECT_EQ(static_cast<int32_t>(sent.size()), Raw(value, &type));
    EXPECT_EQ(GetParam().type, type);
    EXPECT_TRUE(value.GuardsStand());
    const Bytes expected = sent.empty() ? sent : sent + Bytes{0};
    EXPECT_EQ(expected + Bytes(256 - expected.size(), GuardedBuffer::kFill), value.Content());
}

INSTANTIATE_TEST_SUITE_P(
    Types, DirectedValue,
    testing::Values(ValueCase{"Integer", VN_TYPE_INTEGER, {0x7F, 0xFF}},
                    ValueCase{"OctetString", VN_TYPE_OCTET_STRING, TextBytes("LaserPro")},
                    ValueCase{"ZeroBytes", VN_TYPE_OCTET_STRING, {0, 1, 0}},
                    ValueCase{"EmptyOctetString", VN_TYPE_OCTET_STRING, {}},
                    ValueCase{"Null", VN_TYPE_NULL, {}},
                    ValueCase{"ObjectIdentifier", VN_TYPE_OBJECT_IDENTIFIER, {0x2B, 6, 1, 4}},
                    ValueCase{"IpAddress", VN_TYPE_IP_ADDRESS, {10, 77, 1, 2}},
                    ValueCase{"TimeTicks", VN_TYPE_TIME_TICKS, {0x00, 0xFF, 0xFF, 0xFF, 0xFF}},
                    ValueCase{"LongestOfOneByteLength", VN_TYPE_OCTET_STRING, Bytes(127, 'x')}),
    kNameOfRow);

// A length byte of 255 over as many bytes: nothing longer can be told to the module.
TEST_F(DirectedGet, TheLongestValueFillsABufferOf256Bytes) {
    Bytes datagram =
        Hex("30 82 00 FF 02 01 00 04 01 70 A2 82 00 F0 02 01 01 02 01 00 02 01 00 30 82 00 E0"
            "30 82 00 E0 06 02 2B 06 04 FF");
    datagram = datagram + Bytes(255, 'y') + Bytes(40, 'z');
    DeviceIn("neta", {{datagram}});
    GuardedBuffer value(256);
    uint32_t type = 0;
    EXPECT_EQ(255, Raw(value, &type));
    EXPECT_TRUE(value.GuardsStand());
    EXPECT_EQ(Bytes(255, 'y'), Prefix(value.Content(), 255));
}

struct IntegerCase : Row {
    Bytes value;
    std::string text;
};
class DirectedInteger : public DirectedGet, public testing::WithParamInterface<IntegerCase> {};

TEST_P(DirectedInteger, IsWrittenWithoutSignExtension) {
    DeviceIn("neta", {{SnmpAnswer(kSysDescr, VN_TYPE_INTEGER, GetParam().value)}});
    GuardedBuffer text(12);
    EXPECT_EQ(static_cast<int32_t>(GetParam().value.size()),
              Text(text.Text(), text.Size(), VN_TYPE_INTEGER));
    EXPECT_EQ(GetParam().text, text.Text());
    EXPECT_TRUE(text.GuardsStand());
}

INSTANTIATE_TEST_SUITE_P(
    Values, DirectedInteger,
    testing::Values(IntegerCase{"Zero", {0}, "0"}, IntegerCase{"MinusOneInOneByte", {0xFF}, "255"},
                    IntegerCase{"MinusTwoInTwoBytes", {0xFF, 0xFE}, "65534"},
                    IntegerCase{"Largest", {0x7F, 0xFF, 0xFF, 0xFF}, "2147483647"},
                    IntegerCase{"MinusOneInFourBytes", {0xFF, 0xFF, 0xFF, 0xFF}, "-1"},
                    IntegerCase{"Smallest", {0x80, 0, 0, 0}, "-2147483648"},
                    IntegerCase{"FiveBytes", {1, 0, 0, 0, 2}, "2"}),
    kNameOfRow);

struct TypeCase : Row {
    uint8_t answered;
    uint32_t expected;
    int32_t result;
    std::string text;
};
class DirectedType : public DirectedGet, public testing::WithParamInterface<TypeCase> {};

TEST_P(DirectedType, DecidesWhatIsWritten) {
    DeviceIn("neta", {{SnmpAnswer(kSysDescr, GetParam().answered, TextBytes("AB"))}});
    char text[VN_REQUEST_VALUE_SIZE] = "(nothing)";
    EXPECT_EQ(GetParam().result, Text(text, sizeof text, GetParam().expected));
    EXPECT_EQ(GetParam().text, text);
}

INSTANTIATE_TEST_SUITE_P(Rows, DirectedType,
                         testing::Values(TypeCase{"TextAsText", 4, 4, 2, "AB"},
                                         TypeCase{"NumberAsNumber", 2, 2, 2, "16706"},
                                         TypeCase{"TextAsNumber", 4, 2, 0, "(nothing)"},
                                         TypeCase{"NumberAsText", 2, 4, 0, "(nothing)"},
                                         TypeCase{"CounterAsNumber", 0x41, 2, 0, "(nothing)"},
                                         TypeCase{"CounterAsCounter", 0x41, 0x41, 2, "(nothing)"}),
                         kNameOfRow);

TEST_F(DirectedGet, TextEndsAtItsFirstZeroByteAndTheLengthDoesNot) {
    DeviceIn("neta", {{SnmpText(std::string("ab\0cd", 5))}});
    char text[VN_REQUEST_VALUE_SIZE] = {};
    EXPECT_EQ(5, Text(text, sizeof text, VN_TYPE_OCTET_STRING));
    EXPECT_STREQ("ab", text);
}

TEST_F(DirectedGet, InformationIsTheTextOfTheDefaultOid) {
    DeviceIn("neta", {{SnmpText("Model 1")}});
    char text[VN_INFORMATION_SIZE] = {};
    EXPECT_EQ(7, module.GetSnmpInformation(kHost, text, nullptr, nullptr));
    EXPECT_STREQ("Model 1", text);
}

TEST_F(DirectedGet, TheFirstDatagramIsTheAnswerWhateverItIs) {
    SnmpMessage other;
    other.pduType = 0xA7;
    other.requestId = {42};
    other.errorStatus = 5;
    other.valueType = 4;
    other.value = TextBytes("from elsewhere");
    other.community = "other";
    DeviceIn("neta", {{Encode(other), "10.77.1.15"}, {SnmpText("Model")}});
    GuardedBuffer value(256);
    EXPECT_EQ(14, Raw(value, nullptr));
    EXPECT_STREQ("from elsewhere", value.Text());
}

TEST_F(DirectedGet, ADatagramThatCannotBeReadIsAnEmptyAnswer) {
    DeviceIn("neta", {{TextBytes("hello")}});
    GuardedBuffer value(256);
    uint32_t type = 99;
    EXPECT_EQ(0, Raw(value, &type));
    EXPECT_EQ(0u, type);
    EXPECT_TRUE(value.IsUntouched());
    EXPECT_THAT(waits.Silent(), SizeIs(0)) << "nobody waits for another";
}

TEST_F(DirectedGet, AnIPv6DeviceIsReached) {
    DeviceIn("neta", {{SnmpText("six")}});
    GuardedBuffer value(256);
    EXPECT_EQ(3, module.GetSnmpRequestRaw("fe80::1:11", kSysName, value.Data(), value.Size(),
                                          nullptr, 0, 0, nullptr, nullptr));
    EXPECT_STREQ("six", value.Text());
    EXPECT_EQ("fe80::1:11", agents->Requests().at(0).local);
}

class DirectedGetNext : public QuickLabTest {
  protected:
    int32_t Next(VnResponseRecord* record) {
        return module.GetNextSnmpRequestRaw(kHost, kSysDescr, record, 0, 0, nullptr, nullptr);
    }
    static Bytes BytesOf(const VnResponseRecord& record) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(&record);
        return Bytes(bytes, bytes + sizeof record);
    }
};

TEST_F(DirectedGetNext, FillsTheRecordWithTheNextVariable) {
    DeviceIn("neta", {{SnmpAnswer(".1.3.6.1.2.1.1.2.0", 6, {0x2B, 6, 1, 4})}});
    VnResponseRecord record;
    std::memset(&record, 0xA5, sizeof record);
    EXPECT_EQ(4, Next(&record));
    EXPECT_EQ(6, record.valueType);
    EXPECT_EQ(4, record.valueLength);
    EXPECT_STREQ(kHost, record.address);
    EXPECT_EQ(Bytes({0x2B, 6, 1, 4, 0}), Bytes(record.value, record.value + 5));
    EXPECT_EQ(8, record.oidLength);
    EXPECT_EQ(OidContent(".1.3.6.1.2.1.1.2.0"), Bytes(record.oid, record.oid + 8));
    EXPECT_EQ(Bytes(sizeof record.reserved, 0xA5),
              Bytes(record.reserved, record.reserved + sizeof record.reserved));
}

TEST_F(DirectedGetNext, LeavesTheRecordAloneWithoutAnAnswer) {
    SilentDevices();
    VnResponseRecord record;
    std::memset(&record, 0xA5, sizeof record);
    EXPECT_EQ(0, Next(&record));
    EXPECT_EQ(Bytes(sizeof record, 0xA5), BytesOf(record));
}

TEST_F(DirectedGetNext, DeliversAnErrorAnswerLikeAnyOther) {
    SnmpMessage error;
    error.oid = kSysDescr;
    error.pduType = 0xA2;
    error.errorStatus = 2;
    DeviceIn("neta", {{Encode(error)}});
    VnResponseRecord record = {};
    EXPECT_EQ(0, Next(&record));
    EXPECT_EQ(5, record.valueType);
    EXPECT_EQ(OidContent(kSysDescr), Bytes(record.oid, record.oid + record.oidLength));
}

TEST_F(DirectedGetNext, TakesNoRecordToo) {
    DeviceIn("neta", {{SnmpText("Model")}});
    EXPECT_EQ(5, Next(nullptr));
}

// Names and values whose lengths say more than the record holds.
TEST_F(DirectedGetNext, BoundsWhatADatagramClaims) {
    DeviceIn("neta", {{Hex("30 82 00 FF 02 01 00 04 01 70 A2 82 00 F0 02 01 01 02 01 00 02 01 00"
                           "30 82 00 E0 30 82 00 E0 06 C8") +
                       Bytes(200, 0x2B) + Hex("04 FF") + Bytes(255, 'y')}});
    struct {
        VnResponseRecord record;
        Bytes guard = Bytes(64, 0xA5);
    } held;
    std::memset(&held.record, 0xA5, sizeof held.record);
    EXPECT_EQ(255, Next(&held.record));
    EXPECT_EQ(128, held.record.oidLength);
    EXPECT_EQ(Bytes(128, 0x2B), Bytes(held.record.oid, held.record.oid + 128));
    EXPECT_EQ(255, held.record.valueLength);
    EXPECT_EQ(Bytes(sizeof held.record.reserved, 0xA5),
              Bytes(held.record.reserved, held.record.reserved + sizeof held.record.reserved));
}

}  // namespace
}  // namespace vndiscover
