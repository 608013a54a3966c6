// The BER primitives against ITU-T X.690 and the system's own rules.
#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmp/asn_decode.h"
#include "snmp/asn_encode.h"

namespace vndiscover {
namespace {

struct LengthCase {
    const char* name;
    int32_t length;
    Bytes bytes;
};

class AsnLength : public testing::TestWithParam<LengthCase> {};

TEST_P(AsnLength, TakesTheShortestFormAndReadsBack) {
    ByteBuffer out;
    AsnAppendLength(out, GetParam().length);
    EXPECT_EQ(GetParam().bytes, ToBytes(out));
    uint32_t cursor = 0;
    EXPECT_EQ(static_cast<uint32_t>(GetParam().length), AsnReadLength(out, cursor));
    EXPECT_EQ(out.length, cursor);
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, AsnLength,
    testing::Values(LengthCase{"Zero", 0, {0x00}}, LengthCase{"LastShort", 127, {0x7F}},
                    LengthCase{"FirstLong", 128, {0x81, 0x80}},
                    LengthCase{"LastOfOneByte", 255, {0x81, 0xFF}},
                    LengthCase{"TwoBytes", 256, {0x82, 0x01, 0x00}},
                    LengthCase{"ThreeBytes", 65536, {0x83, 0x01, 0x00, 0x00}},
                    LengthCase{"Largest", 0x7FFFFFFF, {0x84, 0x7F, 0xFF, 0xFF, 0xFF}}),
    [](const auto& row) { return row.param.name; });

TEST(AsnLengthEdges, ANegativeLengthIsLoggedAndLeftOut) {
    ByteBuffer out;
    UnitLog log;
    AsnAppendHeader(out, kTagSequence, -1);
    EXPECT_EQ(Bytes{0x30}, ToBytes(out));
    EXPECT_EQ(std::vector<std::string>{"ERROR: asnLength is 0\n"}, log.Lines());
}

TEST(AsnLengthEdges, IndefiniteReadsAsZeroAndOfManyBytesTheLastFourCount) {
    uint32_t cursor = 0;
    EXPECT_EQ(0u, AsnReadLength(ToBuffer({0x80, 0x55}), cursor));
    EXPECT_EQ(1u, cursor);
    cursor = 0;
    EXPECT_EQ(0x22334455u, AsnReadLength(ToBuffer({0x85, 0x11, 0x22, 0x33, 0x44, 0x55}), cursor));
    EXPECT_EQ(6u, cursor);
}

struct IntegerCase {
    const char* name;
    int32_t value;
    Bytes bytes;
};

class AsnInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(AsnInteger, TakesTheShortestFormAndReadsBack) {
    ByteBuffer out;
    AsnAppendInteger(GetParam().value, out);
    EXPECT_EQ(GetParam().bytes, ToBytes(out));
    int32_t value = 0;
    EXPECT_EQ(out.length, AsnReadInteger(value, out, 0));
    EXPECT_EQ(GetParam().value, value);
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, AsnInteger,
    testing::Values(IntegerCase{"Zero", 0, {2, 1, 0}}, IntegerCase{"P127", 127, {2, 1, 0x7F}},
                    IntegerCase{"P128", 128, {2, 2, 0x00, 0x80}},
                    IntegerCase{"P256", 256, {2, 2, 0x01, 0x00}},
                    IntegerCase{"P65408", 65408, {2, 3, 0x00, 0xFF, 0x80}},
                    IntegerCase{"Largest", 0x7FFFFFFF, {2, 4, 0x7F, 0xFF, 0xFF, 0xFF}},
                    IntegerCase{"M1", -1, {2, 1, 0xFF}}, IntegerCase{"M2", -2, {2, 1, 0xFE}},
                    IntegerCase{"M128", -128, {2, 1, 0x80}},
                    IntegerCase{"M129", -129, {2, 2, 0xFF, 0x7F}},
                    IntegerCase{"M256", -256, {2, 2, 0xFF, 0x00}},
                    IntegerCase{"Smallest", INT32_MIN, {2, 4, 0x80, 0x00, 0x00, 0x00}}),
    [](const auto& row) { return row.param.name; });

// What our encoder never writes.
TEST(AsnReadIntegerTest, ReadsOtherFormsByItsOwnRules) {
    struct {
        Bytes bytes;
        int32_t value;
    } const rows[] = {
        {{2, 5, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}, -1},  // an unsigned value from 2^31 on
        {{2, 5, 0x01, 0x00, 0x00, 0x00, 0x02}, 2},   // the high byte is shifted out
        {{2, 3, 0x80, 0xFF, 0x80}, -128},            // the leading 80 is skipped
        {{2, 3, 0x80, 0xFF, 0x7F}, -0x7F0081},       // it is not
        {{2, 2, 0x80, 0xFF}, -0x7F01},
        {{0x41, 2, 0x01, 0x00}, 256},  // any tag
        {{2, 0}, 0},
        {{2, 0, 0x80}, -1},  // the sign of the byte behind
        {{2, 0x81, 1, 5}, 5},
    };
    for (const auto& row : rows) {
        int32_t value = 99;
        AsnReadInteger(value, ToBuffer(row.bytes), 0);
        EXPECT_EQ(row.value, value) << testing::PrintToString(row.bytes);
    }
}

TEST(AsnOctetString, NothingToSayIsAnEmptyString) {
    const uint8_t bytes[] = {1, 2, 3};
    ByteBuffer out;
    AsnAppendOctetString(nullptr, 5, out);
    AsnAppendOctetString(bytes, 0, out);
    AsnAppendOctetString(bytes, 3, out);
    AsnAppendOctet(7, out);
    EXPECT_EQ(Hex("0400 0400 0403010203 040107"), ToBytes(out));
    ByteBuffer read = ToBuffer({9});
    EXPECT_EQ(2u, AsnReadOctetString(read, out, 0));
    EXPECT_TRUE(read.Empty());
    EXPECT_EQ(9u, AsnReadOctetString(read, out, 4));
    EXPECT_EQ(Bytes({1, 2, 3}), ToBytes(read));
}

TEST(AsnDecodeErrors, EveryShortOrWrongValueIsOne) {
    int32_t value = 0;
    ByteBuffer string;
    const auto integerFails = [&](const Bytes& bytes) {
        EXPECT_THROW(AsnReadInteger(value, ToBuffer(bytes), 0), AsnDecodeError)
            << testing::PrintToString(bytes);
    };
    const auto stringFails = [&](const Bytes& bytes) {
        EXPECT_THROW(AsnReadOctetString(string, ToBuffer(bytes), 0), AsnDecodeError)
            << testing::PrintToString(bytes);
    };
    integerFails({});
    integerFails({2});
    integerFails({2, 1});
    integerFails({2, 4, 1, 2, 3});
    integerFails({2, 6, 1, 2, 3, 4, 5, 6});
    integerFails({2, 0x82, 0});
    integerFails({2, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 1});
    stringFails({0x06, 1, 1});
    stringFails({0x04, 2, 1});
    stringFails({0x04, 0x84, 0xFF, 0xFF, 0xFF, 0xFE, 1});
    EXPECT_THROW(AsnReadInteger(value, ToBuffer({2, 1, 1}), 4), AsnDecodeError);
}

}  // namespace
}  // namespace vndiscover
