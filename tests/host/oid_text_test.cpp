// OIDs as people write them and as BER holds them (octets from ITU-T X.690, 8.19, and RFC 1213).
#include "host/oid_text.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

std::string Octets(std::initializer_list<int> bytes) { return {bytes.begin(), bytes.end()}; }

struct OctetCase {
    const char* name;
    Oid oid;
    std::string octets;
};

class OidOctets : public testing::TestWithParam<OctetCase> {};

TEST_P(OidOctets, GoBothWays) {
    EXPECT_EQ(GetParam().octets, EncodeOid(GetParam().oid));
    EXPECT_EQ(GetParam().oid, DecodeOid(GetParam().octets));
    EXPECT_EQ(GetParam().oid, ParseOid(OidToText(GetParam().oid)));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, OidOctets,
    testing::Values(
        OctetCase{"SysDescr", {1, 3, 6, 1, 2, 1, 1, 1, 0}, Octets({0x2B, 6, 1, 2, 1, 1, 1, 0})},
        OctetCase{"ExampleOfTheStandard", {2, 999, 3}, Octets({0x88, 0x37, 3})},
        OctetCase{"LastOneByteArc", {1, 3, 127}, Octets({0x2B, 0x7F})},
        OctetCase{"FirstTwoByteArc", {1, 3, 128}, Octets({0x2B, 0x81, 0})},
        OctetCase{"FirstThreeByteArc", {1, 3, 16384}, Octets({0x2B, 0x81, 0x80, 0})},
        OctetCase{"LargestArc", {0, 0, 4294967295}, Octets({0, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F})},
        OctetCase{"Roots", {2, 39}, Octets({119})},
        OctetCase{"OneThirtyNine", {1, 39}, Octets({79})}),
    [](const auto& row) { return row.param.name; });

TEST(OidOctetsFromDevices, ThatAreNoOidAreRefused) {
    EXPECT_FALSE(DecodeOid(""));
    EXPECT_FALSE(DecodeOid(Octets({0x2B, 6, 0x81})));                    // cut
    EXPECT_FALSE(DecodeOid(Octets({0x2B, 0x90, 0x80, 0x80, 0x80, 0})));  // 2^32
    EXPECT_FALSE(DecodeOid(Octets({0x90, 0x80, 0x80, 0x80, 0x50, 1})));  // 2.(2^32)
    EXPECT_FALSE(DecodeOid(std::string(128, '\xFF')));
}

TEST(OidText, IsNumericWithOrWithoutTheLeadingDot) {
    EXPECT_EQ((Oid{1, 3, 6}), ParseOid("1.3.6"));
    EXPECT_EQ((Oid{1, 3, 6}), ParseOid(".1.3.6"));
    EXPECT_EQ((Oid{1}), ParseOid(".1"));
    for (const char* text : {"", ".", "..1.3", "1..3", "1.3.", "sysDescr.0", "1.3.-6", "1.3. 6",
                             "3.1", "1.40", "1.3.4294967296", "1.3.99999999999999999999"}) {
        EXPECT_FALSE(ParseOid(text)) << text;
    }
    std::string many = "1.3";
    for (int i = 0; i < 127; ++i) many += ".1";
    EXPECT_FALSE(ParseOid(many));
}

TEST(OidRequests, HaveTwoByteArcsAndALimit) {
    EXPECT_FALSE(GoesOutWrong({1, 3, 16383}));
    EXPECT_TRUE(GoesOutWrong({1, 3, 6, 16384, 1}));
    EXPECT_TRUE(GoesOutWrong({2, 999}));
    EXPECT_FALSE(GoesOutWrong({2, 47}));
    EXPECT_FALSE(GoesOutWrong({1}));
    EXPECT_FALSE(FitsRequest({1}));
    Oid oid(125, 1);  // the first two arcs are one octet
    EXPECT_TRUE(FitsRequest(oid));
    oid.back() = 128;
    EXPECT_FALSE(FitsRequest(oid));
}

TEST(OidOrder, IsThatOfAWalk) {
    EXPECT_LT((Oid{1, 3, 6, 1}), (Oid{1, 3, 6, 1, 0}));
    EXPECT_LT((Oid{1, 3, 9}), (Oid{1, 3, 10}));
    EXPECT_TRUE(IsWithin({1, 3, 6}, {1, 3, 6}));
    EXPECT_TRUE(IsWithin({1, 3, 6, 1}, {1, 3, 6}));
    EXPECT_FALSE(IsWithin({1, 3}, {1, 3, 6}));
    EXPECT_FALSE(IsWithin({1, 3, 7}, {1, 3, 6}));
}

}  // namespace
}  // namespace vndiscover::host
