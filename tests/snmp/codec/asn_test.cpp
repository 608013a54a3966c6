// BER primitives by ITU-T X.690 and by the module's own rules, and OIDs from text.
#include <gtest/gtest.h>

#include "helpers/log_capture.h"
#include "helpers/snmp_datagrams.h"
#include "snmp/codec/asn.h"
#include "snmp/codec/oid_text.h"

namespace vndiscover {
namespace {

TEST(Asn, LengthsUseTheShortestFormAndReadInAny) {
    const int32_t lengths[] = {0, 127, 128, 255, 256, 65536, INT32_MAX};
    ByteBuffer out;
    for (const int32_t length : lengths) AsnAppendLength(out, length);
    EXPECT_EQ(Hex("00 7f 8180 81ff 820100 83010000 847fffffff"), ToBytes(out));
    uint32_t cursor = 0;
    for (const int32_t length : lengths) {
        EXPECT_EQ(static_cast<uint32_t>(length), AsnReadLength(out, cursor));
    }
    // The indefinite form reads as 0, and only the last four bytes count.
    const ByteBuffer other = ToBuffer(Hex("80 85 11 22 33 44 55"));
    cursor = 0;
    EXPECT_EQ(0u, AsnReadLength(other, cursor));
    EXPECT_EQ(0x22334455u, AsnReadLength(other, cursor));
    EXPECT_EQ(other.length, cursor);

    UnitLog log;
    ByteBuffer negative;
    AsnAppendHeader(negative, kTagSequence, -1);
    EXPECT_EQ(Bytes{0x30}, ToBytes(negative));
    EXPECT_EQ("ERROR: asnLength is 0\n", log.Text());
}

TEST(Asn, IntegersUseTheShortestFormAndReadBack) {
    const int32_t values[] = {0,  127, 128,  256,  65408, INT32_MAX,
                              -1, -2,  -128, -129, -256,  INT32_MIN};
    ByteBuffer out;
    for (const int32_t value : values) AsnAppendInteger(value, out);
    EXPECT_EQ(Hex("020100 02017f 02020080 02020100 020300ff80 02047fffffff"
                  "0201ff 0201fe 020180 0202ff7f 0202ff00 020480000000"),
              ToBytes(out));
    uint32_t cursor = 0;
    for (const int32_t value : values) {
        int32_t read = 99;
        cursor = AsnReadInteger(read, out, cursor);
        EXPECT_EQ(value, read);
    }
}

// Forms that our encoder never writes.
TEST(Asn, OtherFormsOfIntegersReadByTheModulesRules) {
    const std::pair<Bytes, int32_t> rows[] = {
        {{2, 5, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}, -1},  // an unsigned value from 2^31 on
        {{2, 5, 0x01, 0x00, 0x00, 0x00, 0x02}, 2},   // the high byte is shifted out
        {{2, 3, 0x80, 0xFF, 0x80}, -128},            // the leading 80 is skipped
        {{2, 3, 0x80, 0xFF, 0x7F}, -0x7F0081},       // it is not skipped
        {{2, 2, 0x80, 0xFF}, -0x7F01},
        {{0x41, 2, 0x01, 0x00}, 256},  // any tag
        {{2, 0}, 0},
        {{2, 0, 0x80}, -1},  // the sign of the byte after it
        {{2, 0x81, 1, 5}, 5}};
    for (const auto& [bytes, expected] : rows) {
        int32_t value = 99;
        AsnReadInteger(value, ToBuffer(bytes), 0);
        EXPECT_EQ(expected, value) << ToHex(bytes);
    }
}

TEST(Asn, OctetStringsWithoutBytesAreEmpty) {
    const uint8_t bytes[] = {1, 2, 3};
    ByteBuffer out;
    AsnAppendOctetString(nullptr, 5, out);
    AsnAppendOctetString(bytes, 3, out);
    AsnAppendOctet(7, out);
    EXPECT_EQ(Hex("0400 0403010203 040107"), ToBytes(out));
    ByteBuffer read = ToBuffer({9});
    EXPECT_EQ(2u, AsnReadOctetString(read, out, 0));
    EXPECT_TRUE(read.Empty());
    EXPECT_EQ(7u, AsnReadOctetString(read, out, 2));
    EXPECT_EQ(Hex("010203"), ToBytes(read));
}

TEST(Asn, ShortAndWrongValuesAreDecodeErrors) {
    int32_t value = 0;
    for (const char* bytes : {"", "02", "02 01", "02 04 01 02 03", "02 06 01 02 03 04 05 06",
                              "02 82 00", "02 84 FF FF FF FF 01"}) {
        EXPECT_THROW(AsnReadInteger(value, ToBuffer(Hex(bytes)), 0), AsnDecodeError) << bytes;
    }
    EXPECT_THROW(AsnReadInteger(value, ToBuffer({2, 1, 1}), 4), AsnDecodeError);
    ByteBuffer string;
    for (const char* bytes : {"06 01 01", "04 02 01", "04 84 FF FF FF FE 01"}) {
        EXPECT_THROW(AsnReadOctetString(string, ToBuffer(Hex(bytes)), 0), AsnDecodeError) << bytes;
    }
}

TEST(Asn, BufferDumpIsOneWideLine) {
    UnitLog log;
    ByteBuffer().HexDump();
    ToBuffer(Hex("00 a5 ff")).HexDump();
    EXPECT_EQ("00  a5  ff  \n", log.Text());
}

using Pieces = std::vector<std::string>;

Bytes ContentOf(const std::string& text) {
    OidValue oid;
    EXPECT_EQ(ParseOidText(oid, text.c_str()), oid.length);
    EXPECT_EQ(0x06, oid.tag);
    return Bytes(oid.content, oid.content + oid.length);
}

TEST(OidText, EncodesWithinItsLimits) {
    EXPECT_EQ(Hex("2b 7f 81 00 ff 7f"), ContentOf("1.3.127.128.16383"));
    EXPECT_EQ(Hex("28 05"), ContentOf("1.256.5"));                   // the first byte wraps
    EXPECT_EQ(Hex("2b 80 00 81 01"), ContentOf("1.3.16384.32897"));  // high bits are lost
    EXPECT_EQ(Hex("2b 06"), ContentOf("1..3. .6"));                  // empty pieces are ignored
    EXPECT_EQ(Bytes(), ContentOf(".1"));                             // a single arc is not encoded
    EXPECT_EQ(Hex("00 00"), ContentOf("x.y.z"));                     // as atoi reads them
    EXPECT_EQ(255u, ContentOf(LongOid(255)).size());
    OidValue oid;
    EXPECT_EQ(256, ParseOidText(oid, LongOid(256).c_str()));  // so that the caller can refuse it
    EXPECT_EQ(0, oid.length);
    EXPECT_EQ(0, ParseOidText(oid, nullptr));
}

TEST(OidText, LogsItsOwnCountAndTheContent) {
    UnitLog log;
    for (const char* text : {".1.3.6.1.4.1.5963", "", "1.256.127.128"}) ContentOf(text);
    EXPECT_EQ(
        "OID length [8]\nOID = [2b 06 01 04 01 ae 4b ]\n"
        "OID length [0]\nOID = []\n"
        "OID length [5]\nOID = [28 7f 81 00 ]\n",
        log.Text());
}

TEST(TextTokenizer, SplitsAtAnyDelimiter) {
    EXPECT_EQ((Pieces{"a", "b", "c"}), SplitText("a,b;c", ",;"));
    EXPECT_EQ((Pieces{"a", "", "", "b"}), SplitText("a,, \t,b", ","));
    EXPECT_EQ(Pieces{"a"}, SplitText(" \t,a, \r\n", ","));  // blanks at the ends are dropped
    EXPECT_EQ((Pieces{"a b", "c", "d"}), SplitText("  a b\t,\"c\",'\"d\"'\n", ","));
    EXPECT_EQ((Pieces{"a,b", "it's", "open, to the end"}),
              SplitText("'a,b',\"it's\",'open, to the end", ","));
    EXPECT_EQ(Pieces(), SplitText("", ","));
    EXPECT_EQ(Pieces{std::string(259, 'x')}, SplitText(std::string(300, 'x').c_str(), "."));
    std::string many;
    for (int i = 0; i < 400; ++i) many += "1.";
    EXPECT_EQ(300u, SplitText(many.c_str(), ".").size());
}

}  // namespace
}  // namespace vndiscover
