// Output buffers of the host that are too small, or none at all. The C runtime's bounded copies
// decide about small ones; its invalid-parameter handler cannot be set under Wine, where it does
// nothing.
#include "exports/support/guarded_buffer.h"
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

constexpr char kHost[] = "10.77.1.11";

struct BufferCase : Row {
    int32_t size;  // of the buffer
    bool fits;
};

class DirectedBuffers : public QuickLabTest, public testing::WithParamInterface<BufferCase> {
  protected:
    // Never written beyond its end; what does not fit leaves it zeroed, or an empty text.
    static void ExpectBounded(const GuardedBuffer& buffer, const Bytes& whole, bool wholeIsZeroed) {
        EXPECT_TRUE(buffer.GuardsStand());
        const Bytes content = buffer.Content();
        if (GetParam().fits) {
            EXPECT_EQ(whole, Prefix(content, whole.size()));
        } else if (wholeIsZeroed) {
            EXPECT_EQ(Bytes(content.size(), 0), content);
        } else if (!content.empty()) {
            EXPECT_EQ(0, content[0]);
        }
    }
};

const Bytes kValue = TextBytes("LaserPro");  // eight bytes and a zero byte

TEST_P(DirectedBuffers, OfRawValuesAreNeverOverrun) {
    DeviceIn("neta", {{SnmpText("LaserPro")}});
    GuardedBuffer value(static_cast<size_t>(GetParam().size));
    uint32_t type = 0;
    EXPECT_EQ(8, module.GetSnmpRequestRaw(kHost, kSysDescr, value.Data(), value.Size(), &type, 0, 0,
                                          nullptr, nullptr));
    EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    ExpectBounded(value, kValue + Bytes{0}, true);
}

TEST_P(DirectedBuffers, OfTextsAreNeverOverrun) {
    DeviceIn("neta", {{SnmpText("LaserPro")}});
    GuardedBuffer text(static_cast<size_t>(GetParam().size));
    EXPECT_EQ(8, module.GetSnmpRequest(kHost, kSysDescr, text.Text(), text.Size(),
                                       VN_TYPE_OCTET_STRING, 0, 0, nullptr, nullptr));
    ExpectBounded(text, kValue + Bytes{0}, false);
}

TEST_P(DirectedBuffers, OfNumbersAreNeverOverrun) {
    DeviceIn("neta", {{SnmpAnswer(kSysDescr, VN_TYPE_INTEGER, {5, 0xF5, 0xE0, 0xFF})}});
    GuardedBuffer text(static_cast<size_t>(GetParam().size));
    EXPECT_EQ(4, module.GetSnmpRequest(kHost, kSysDescr, text.Text(), text.Size(), VN_TYPE_INTEGER,
                                       0, 0, nullptr, nullptr));
    ExpectBounded(text, TextBytes("99999999") + Bytes{0}, false);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DirectedBuffers,
                         testing::Values(BufferCase{"Enough", 9, true},
                                         BufferCase{"OneShort", 8, false},
                                         BufferCase{"OneByte", 1, false},
                                         BufferCase{"None", 0, false}),
                         kNameOfRow);

class DirectedNull : public QuickLabTest {};

TEST_F(DirectedNull, BuffersDropTheValueOnly) {
    DeviceIn("neta", {{SnmpText("LaserPro")}});
    uint32_t type = 0;
    EXPECT_EQ(
        8, module.GetSnmpRequestRaw(kHost, kSysDescr, nullptr, 256, &type, 0, 0, nullptr, nullptr));
    EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    EXPECT_EQ(8, module.GetSnmpRequest(kHost, kSysDescr, nullptr, 256, VN_TYPE_OCTET_STRING, 0, 0,
                                       nullptr, nullptr));
    EXPECT_EQ(8, module.GetSnmpInformation(kHost, nullptr, nullptr, nullptr));
}

TEST_F(DirectedNull, ANegativeSizeIsASizeOfNone) {
    DeviceIn("neta", {{SnmpText("LaserPro")}});
    GuardedBuffer value(0);
    module.GetSnmpRequestRaw(kHost, kSysDescr, value.Data(), -1, nullptr, 0, 0, nullptr, nullptr);
    module.GetSnmpRequest(kHost, kSysDescr, value.Text(), INT32_MIN, VN_TYPE_OCTET_STRING, 0, 0,
                          nullptr, nullptr);
    EXPECT_TRUE(value.GuardsStand());
}

}  // namespace
}  // namespace vndiscover
