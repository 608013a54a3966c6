// OIDs as dotted text and in BER (octets from ITU-T X.690, 8.19, and RFC 1213).
#include "values/oid_text.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

using Octets = std::string;

TEST(OidOctets, ConvertBothWays) {
    const std::pair<Oid, Octets> rows[] = {
        {{1, 3, 6, 1, 2, 1, 1, 1, 0}, {0x2B, 6, 1, 2, 1, 1, 1, 0}},  // sysDescr.0
        {{2, 999, 3}, {'\x88', 0x37, 3}},                            // the standard's example
        {{1, 3, 127}, {0x2B, 0x7F}},
        {{1, 3, 128}, {0x2B, '\x81', 0}},
        {{1, 3, 16384}, {0x2B, '\x81', '\x80', 0}},
        {{0, 0, 4294967295}, {0, '\x8F', '\xFF', '\xFF', '\xFF', 0x7F}},
        {{2, 39}, {119}},
        {{1, 39}, {79}}};
    for (const auto& [oid, octets] : rows) {
        EXPECT_EQ(octets, EncodeOid(oid)) << OidToText(oid);
        EXPECT_EQ(oid, DecodeOid(octets)) << OidToText(oid);
        EXPECT_EQ(oid, ParseOid(OidToText(oid))) << OidToText(oid);
    }
}

TEST(OidOctets, MalformedOnesAreRefused) {
    for (const Octets& octets : {Octets(), Octets({0x2B, 6, '\x81'}),                // cut
                                 Octets({0x2B, '\x90', '\x80', '\x80', '\x80', 0}),  // 2^32
                                 Octets({'\x90', '\x80', '\x80', '\x80', 0x50, 1}),  // 2.(2^32)
                                 Octets(128, '\xFF')}) {
        EXPECT_FALSE(DecodeOid(octets));
    }
}

TEST(OidText, IsNumericWithOptionalLeadingDot) {
    EXPECT_EQ((Oid{1, 3, 6}), ParseOid("1.3.6"));
    EXPECT_EQ((Oid{1}), ParseOid(".1"));
    for (const char* text : {"", ".", "..1.3", "1..3", "1.3.", "sysDescr.0", "1.3.-6", "1.3. 6",
                             "3.1", "1.40", "1.3.4294967296", "1.3.99999999999999999999"}) {
        EXPECT_FALSE(ParseOid(text)) << text;
    }
    EXPECT_FALSE(ParseOid(OidToText(Oid(129, 1))));
}

TEST(OidRequests, ArcsTakeTwoBytesAtMostAndLengthIsLimited) {
    for (const Oid& oid : {Oid{1, 3, 16383}, Oid{2, 47}, Oid{1}}) EXPECT_FALSE(IsMisencoded(oid));
    for (const Oid& oid : {Oid{1, 3, 6, 16384, 1}, Oid{2, 48}}) EXPECT_TRUE(IsMisencoded(oid));
    EXPECT_FALSE(FitsRequest({1}));
    Oid oid(125, 1);  // the first two arcs are one octet
    EXPECT_TRUE(FitsRequest(oid));
    oid.back() = 128;
    EXPECT_FALSE(FitsRequest(oid));
}

}  // namespace
}  // namespace vndiscover::host
