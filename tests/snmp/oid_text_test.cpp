#include "snmp/oid_text.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/log_capture.h"
#include "snmp/text_tokenizer.h"

namespace vndiscover {
namespace {

using Pieces = std::vector<std::string>;

Bytes ContentOf(const std::string& text) {
    OidValue oid;
    EXPECT_EQ(ParseOidText(oid, text.c_str()), oid.length);
    EXPECT_EQ(0x06, oid.tag);
    return Bytes(oid.content, oid.content + oid.length);
}

TEST(OidText, IsEncodedWithinItsLimits) {
    EXPECT_EQ(Hex("2b 7f 81 00 ff 7f"), ContentOf("1.3.127.128.16383"));
    EXPECT_EQ(Hex("28 05"), ContentOf("1.256.5"));                   // the first byte wraps
    EXPECT_EQ(Hex("2b 80 00 81 01"), ContentOf("1.3.16384.32897"));  // high bits are lost
    EXPECT_EQ(Hex("2b 06"), ContentOf("1..3. .6"));                  // empty pieces are ignored
    EXPECT_EQ(Bytes(), ContentOf(".1"));                             // an arc alone is not written
    EXPECT_EQ(Hex("00 00"), ContentOf("x.y.z"));                     // as atoi reads them
    std::string longest = "1.3";
    for (int i = 0; i < 254; ++i) longest += ".1";
    EXPECT_EQ(255u, ContentOf(longest).size());
    OidValue oid;
    EXPECT_EQ(256, ParseOidText(oid, (longest + ".1").c_str()));  // told, for the caller to refuse
    EXPECT_EQ(0, oid.length);
    EXPECT_EQ(0, ParseOidText(oid, nullptr));
}

TEST(OidText, LogsACountOfItsOwnAndTheContent) {
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
    EXPECT_EQ(Pieces{"a"}, SplitText(" \t,a, \r\n", ","));  // none before the first, after the last
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
