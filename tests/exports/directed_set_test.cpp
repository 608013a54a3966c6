// Setting single values of one device.
#include "exports/support/guarded_buffer.h"
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr char kHost[] = "10.77.1.11";

class DirectedSet : public QuickLabTest {
  protected:
    int32_t Set(GuardedBuffer& value, uint32_t* type, const std::string& oid = kSysName,
                const char* community = "secret") {
        return module.SetSnmpRequestRaw(kHost, oid.c_str(), value.Data(), value.Size(), type, 0, 0,
                                        "read", community);
    }
    static std::string OidOf(int contentBytes) {
        std::string oid = "1.3";
        while (--contentBytes > 0) oid += ".1";
        return oid;
    }
    void EchoingDevice() {
        Devices([](const Request& request) {
            Bytes answer = request.data;
            *std::find(answer.begin(), answer.end(), 0xA3) = 0xA2;
            return std::vector<Answer>{{answer}};
        });
    }
};

TEST_F(DirectedSet, SendsTypeAndBytesWithTheWriteCommunity) {
    EchoingDevice();
    GuardedBuffer value(4);
    uint32_t type = 0xFFFFFF00 | VN_TYPE_INTEGER;
    EXPECT_EQ(4, Set(value, &type));
    const std::vector<Request> requests = agents->Requests();
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(kHost, requests[0].local);
    // RFC 1157: version 0, "secret", SetRequest with request-id 1, 1.3.6.1.2.1.1.5.0, INTEGER.
    EXPECT_EQ(Hex("30 2A 02 01 00 04 06 73 65 63 72 65 74 A3 1D 02 01 01 02 01 00 02 01 00"
                  "30 12 30 10 06 08 2B 06 01 02 01 01 05 00 02 04 A5 A5 A5 A5"),
              requests[0].data);
    EXPECT_EQ(VN_TYPE_INTEGER, type);
    EXPECT_TRUE(value.IsUntouched());
}

TEST_F(DirectedSet, UsesTheDefaultCommunity) {
    EchoingDevice();
    GuardedBuffer value(0);
    uint32_t type = VN_TYPE_NULL;
    Set(value, &type, kSysName, nullptr);
    Set(value, &type, kSysName, "");
    SnmpMessage expected;
    expected.oid = kSysName;
    expected.pduType = 0xA3;
    for (const Request& request : agents->Requests()) EXPECT_EQ(Encode(expected), request.data);
    EXPECT_THAT(agents->Requests(), SizeIs(2));
}

TEST_F(DirectedSet, HandsBackTheAnswersValueAndType) {
    DeviceIn("neta", {{SnmpAnswer(kSysName, 0x42, {9, 8})}});
    GuardedBuffer value(4);
    uint32_t type = VN_TYPE_OCTET_STRING;
    EXPECT_EQ(2, Set(value, &type));
    EXPECT_EQ(0x42u, type);
    EXPECT_EQ(Bytes({9, 8, 0xA5, 0xA5}), value.Content());
    EXPECT_TRUE(value.GuardsStand());
}

TEST_F(DirectedSet, LeavesTheValueAloneWhereTheAnswerHasNone) {
    DeviceIn("neta", {{SnmpAnswer(kSysName, VN_TYPE_NULL, {})}});
    GuardedBuffer value(4);
    uint32_t type = VN_TYPE_OCTET_STRING;
    EXPECT_EQ(0, Set(value, &type));
    EXPECT_EQ(VN_TYPE_NULL, type);
    EXPECT_TRUE(value.IsUntouched());
}

TEST_F(DirectedSet, AnAnswerLongerThanTheValueIsTheRuntimesFault) {
    DeviceIn("neta", {{SnmpText("longer")}});
    GuardedBuffer value(4);
    uint32_t type = VN_TYPE_OCTET_STRING;
    EXPECT_EQ(6, Set(value, &type));
    EXPECT_EQ(Bytes(4, 0), value.Content());
    EXPECT_TRUE(value.GuardsStand());
}

struct FitCase : Row {
    int valueBytes;
    int oidBytes;
    bool isSent;
};
class DirectedSetFit : public DirectedSet, public testing::WithParamInterface<FitCase> {};

TEST_P(DirectedSetFit, DecidesBeforeAnyTraffic) {
    EchoingDevice();
    GuardedBuffer value(static_cast<size_t>(GetParam().valueBytes));
    uint32_t type = VN_TYPE_OCTET_STRING;
    Set(value, &type, OidOf(GetParam().oidBytes));
    EXPECT_THAT(agents->Requests(), SizeIs(GetParam().isSent ? 1 : 0));
    EXPECT_TRUE(value.GuardsStand());
    if (GetParam().isSent) {
        const Bytes sent = agents->Requests()[0].data;
        const auto size = static_cast<uint8_t>(GetParam().valueBytes);
        EXPECT_EQ(Bytes({4, size}) + Bytes(size, 0xA5), Bytes(sent.end() - size - 2, sent.end()));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, DirectedSetFit,
    testing::Values(FitCase{"EmptyValue", 0, 8, true}, FitCase{"ValueOf126", 126, 8, true},
                    FitCase{"ValueOf127", 127, 8, false}, FitCase{"ValueOf256", 256, 8, false},
                    FitCase{"ValueOf382", 382, 8, false}, FitCase{"OidOf124", 1, 124, true},
                    FitCase{"OidOf125", 1, 125, false}, FitCase{"Both", 126, 124, true},
                    FitCase{"OidOf380", 1, 380, false}),
    kNameOfRow);

TEST_F(DirectedSet, ANullOrNegativeArgumentSendsNothing) {
    EchoingDevice();
    uint32_t type = VN_TYPE_OCTET_STRING;
    uint8_t value[4] = {};
    const auto set = [&](const char* host, const char* oid, uint8_t* bytes, int32_t length,
                         uint32_t* valueType) {
        return module.SetSnmpRequestRaw(host, oid, bytes, length, valueType, 0, 0, nullptr,
                                        nullptr);
    };
    EXPECT_EQ(0, set(nullptr, kSysName, value, 4, &type));
    EXPECT_EQ(0, set(kHost, nullptr, value, 4, &type));
    EXPECT_EQ(0, set(kHost, kSysName, nullptr, 4, &type));
    EXPECT_EQ(0, set(kHost, kSysName, value, 4, nullptr));
    EXPECT_EQ(0, set(kHost, kSysName, value, -1, &type));
    EXPECT_EQ(0, set(kHost, kSysName, value, INT32_MIN, &type));
    EXPECT_THAT(agents->Requests(), IsEmpty());
}

}  // namespace
}  // namespace vndiscover
