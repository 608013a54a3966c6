#include "snmp/oid_text.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmp/text_tokenizer.h"

namespace vndiscover {
namespace {

using Pieces = std::vector<std::string>;

Bytes ContentOf(const char* text) {
    OidValue oid;
    const int32_t length = ParseOidText(oid, text);
    EXPECT_EQ(0x06, oid.tag);
    EXPECT_EQ(length, oid.length);
    return Bytes(oid.content, oid.content + oid.length);
}

TEST(OidText, EncodesDottedTextWithinItsLimits) {
    EXPECT_EQ(Hex("2b 06 01 02 01"), ContentOf("1.3.6.1.2.1"));
    EXPECT_EQ(Hex("2b 7f 81 00 ff 7f"), ContentOf(".1.3.127.128.16383"));
    EXPECT_EQ(Hex("78"), ContentOf("2.40"));
    EXPECT_EQ(Hex("2b 06"), ContentOf("1..3. .6"));      // empty pieces are ignored
    EXPECT_EQ(Hex("2b 80 00"), ContentOf("1.3.16384"));  // two bytes at most: high bits are lost
    EXPECT_EQ(Hex("2b 81 01"), ContentOf("1.3.32897"));
    EXPECT_EQ(Hex("28"), ContentOf("1.256"));  // the first byte wraps
    EXPECT_EQ(Bytes(), ContentOf(".1"));       // an arc alone is not written
    EXPECT_EQ(Bytes(), ContentOf(""));
    EXPECT_EQ(Bytes(), ContentOf(nullptr));
    EXPECT_EQ(Hex("00 00"), ContentOf("x.y.z"));  // as atoi reads them
}

TEST(OidText, ContentBeyondOneLengthByteIsNone) {
    std::string text = "1.3";
    for (int i = 0; i < 254; ++i) text += ".1";
    EXPECT_EQ(255u, ContentOf(text.c_str()).size());
    OidValue oid;
    EXPECT_EQ(256, ParseOidText(oid, (text + ".1").c_str()));  // told, for the caller to refuse
    EXPECT_EQ(0, oid.length);
}

TEST(OidText, LogsACountOfItsOwnAndTheContent) {
    UnitLog log;
    ContentOf(".1.3.6.1.2.1.1.1.0");
    ContentOf(".1.3.6.1.4.1.5963.43.5.1.1.1.1");
    ContentOf("");
    ContentOf("1.3.127.128");
    EXPECT_EQ((Pieces{"OID length [9]\n", "OID = [2b 06 01 02 01 01 01 00 ]\n", "OID length [14]\n",
                      "OID = [2b 06 01 04 01 ae 4b 2b 05 01 01 01 01 ]\n", "OID length [0]\n",
                      "OID = []\n", "OID length [5]\n", "OID = [2b 7f 81 00 ]\n"}),
              log.Lines());
}

TEST(TextTokenizer, SplitsAtAnyDelimiter) {
    EXPECT_EQ((Pieces{"a", "b", "c"}), SplitText("a,b;c", ",;"));
    EXPECT_EQ((Pieces{"a", "", "", "b"}), SplitText("a,, \t,b", ","));
    EXPECT_EQ((Pieces{"a"}), SplitText(",a,", ","));  // no pieces before the first, behind the last
    EXPECT_EQ((Pieces{"a"}), SplitText(" \t,a, \r\n", ","));
    EXPECT_EQ((Pieces{"a b", "c"}), SplitText("  a b\t,\"c\"\n", ","));
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
