// Setting single values of one device.
#include "exports/support/guarded_buffer.h"
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::IsEmpty;

constexpr char kHost[] = "10.77.1.11";

class DirectedSet : public QuickLabTest {
  protected:
    int32_t Set(GuardedBuffer& value, uint32_t* type, const char* oid = kSysName) {
        return module.SetSnmpRequestRaw(kHost, oid, value.Data(), value.Size(), type, 0, 0, nullptr,
                                        nullptr);
    }
};

TEST_F(DirectedSet, HandsBackTheAnswersValueAndType) {
    struct {
        uint8_t type;
        Bytes value;
        Bytes content;  // of the host's four bytes
    } const rows[] = {{0x42, {9, 8}, {9, 8, 0xA5, 0xA5}},
                      {VN_TYPE_INTEGER, {1, 2, 3, 4}, {1, 2, 3, 4}},
                      {VN_TYPE_NULL, {}, Bytes(4, 0xA5)},
                      // Longer than the value: the runtime zeroes what the caller gave.
                      {VN_TYPE_OCTET_STRING, TextBytes("longer"), Bytes(4, 0)}};
    for (const auto& row : rows) {
        DeviceIn("neta", {{SnmpAnswer(kSysName, row.type, row.value)}});
        GuardedBuffer value(4);
        uint32_t type = VN_TYPE_OCTET_STRING;
        EXPECT_EQ(static_cast<int32_t>(row.value.size()), Set(value, &type));
        EXPECT_EQ(row.type, type);
        EXPECT_EQ(row.content, value.Content());
        EXPECT_TRUE(value.GuardsStand());
    }
}

TEST_F(DirectedSet, SendsWhatFitsABindingAndNothingElse) {
    struct {
        size_t valueBytes;
        int oidBytes;
        bool isSent;
    } const rows[] = {{0, 8, true},    {126, 8, true},  {126, 124, true}, {127, 8, false},
                      {256, 8, false}, {382, 8, false}, {1, 125, false},  {1, 380, false}};
    for (const auto& row : rows) {
        DeviceIn("neta", {{SnmpAnswer(kSysName, VN_TYPE_NULL, {})}});
        std::string oid = "1.3";
        while (static_cast<int>(oid.size()) < 2 * row.oidBytes + 1) oid += ".1";
        GuardedBuffer value(row.valueBytes);
        uint32_t type = 0xFFFFFF00 | VN_TYPE_OPAQUE;  // the low byte alone is the tag
        EXPECT_EQ(0, Set(value, &type, oid.c_str()));
        EXPECT_TRUE(value.IsUntouched());
        const std::vector<Request> requests = agents->Requests();
        ASSERT_EQ(row.isSent ? 1u : 0u, requests.size()) << row.valueBytes << " " << row.oidBytes;
        if (!row.isSent) continue;
        const Bytes& sent = requests[0].data;
        const Bytes tlv = Tlv(VN_TYPE_OPAQUE, value.Content());
        EXPECT_EQ(tlv, Bytes(sent.end() - static_cast<std::ptrdiff_t>(tlv.size()), sent.end()));
    }
}

TEST_F(DirectedSet, ANullOrNegativeArgumentSendsNothing) {
    DeviceIn("neta", {{SnmpText("A")}});
    uint32_t type = VN_TYPE_OCTET_STRING;
    uint8_t value[4] = {};
    const auto set = [&](const char* oid, uint8_t* bytes, int32_t length, uint32_t* valueType) {
        return module.SetSnmpRequestRaw(kHost, oid, bytes, length, valueType, 0, 0, nullptr,
                                        nullptr);
    };
    EXPECT_EQ(0, set(nullptr, value, 4, &type));
    EXPECT_EQ(0, set(kSysName, nullptr, 4, &type));
    EXPECT_EQ(0, set(kSysName, value, 4, nullptr));
    EXPECT_EQ(0, set(kSysName, value, -1, &type));
    EXPECT_EQ(0, set(kSysName, value, INT32_MIN, &type));
    EXPECT_THAT(agents->Requests(), IsEmpty());
}

}  // namespace
}  // namespace vndiscover
