// Values by their type (RFC 1155 and X.690 for the bytes), in both directions.
#include "host/value_text.h"

#include <gtest/gtest.h>

#include "host/variable_writer.h"
#include "host/walk_step.h"

namespace vndiscover::host {
namespace {

std::string Bytes(std::initializer_list<int> bytes) { return {bytes.begin(), bytes.end()}; }

// The word of the command line, the text, the tag, and the shortest content for both.
TEST(Values, GoBothWays) {
    const std::string longest(126, 'x');
    const std::tuple<const char*, std::string, uint32_t, std::string> rows[] = {
        {"integer", "0", kInteger, Bytes({0})},
        {"i", "-1", kInteger, Bytes({0xFF})},
        {"i", "127", kInteger, Bytes({0x7F})},
        {"i", "128", kInteger, Bytes({0, 0x80})},
        {"i", "-128", kInteger, Bytes({0x80})},
        {"i", "-129", kInteger, Bytes({0xFF, 0x7F})},
        {"i", "-2147483648", kInteger, Bytes({0x80, 0, 0, 0})},
        {"u", "4294967295", kGauge32, Bytes({0, 255, 255, 255, 255})},
        {"counter", "200", kCounter32, Bytes({0, 200})},
        {"string", "a b", kOctetString, "a b"},
        {"s", longest, kOctetString, longest},
        {"x", "00 1B 44", kOctetString, Bytes({0, 0x1B, 0x44})},
        {"o", ".1.3.6.1.4.1.8072", kObjectIdentifier, Bytes({0x2B, 6, 1, 4, 1, 0xBF, 8})},
        {"a", "10.0.0.255", kIpAddress, Bytes({10, 0, 0, 255})}};
    for (const auto& [word, text, tag, bytes] : rows) {
        std::string problem;
        const auto value = ParseSetValue(word, text, problem);
        ASSERT_TRUE(value) << word << ' ' << text << ": " << problem;
        EXPECT_EQ(tag, value->type) << word << ' ' << text;
        EXPECT_EQ(bytes, value->bytes) << word << ' ' << text;
        EXPECT_EQ(text, FormatValue(tag, bytes));
    }
}

TEST(ShownValues, FollowTheType) {
    const std::tuple<uint32_t, std::string, const char*> rows[] = {
        {kInteger, "", ""},
        {kInteger, Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9}), "01 02 03 04 05 06 07 08 09"},
        {kObjectIdentifier, Bytes({0x2B, 0x81}), "2B 81"},  // cut
        {kIpAddress, Bytes({10, 1, 2}), "0A 01 02"},
        {kCounter32, Bytes({255, 255, 255, 255}), "4294967295"},  // without the zero byte
        {kCounter64, Bytes({0, 255, 255, 255, 255, 255, 255, 255, 255}), "18446744073709551615"},
        {kTimeTicks, Bytes({0x30, 0x39}), "12345 (0:02:03.45)"},
        {kTimeTicks, Bytes({0x01, 0x07, 0xAB, 0xFF}), "17279999 (1 day, 23:59:59.99)"},
        {kNull, "", "no value"},
        {0x47, "A", "41"}};
    for (const auto& [type, bytes, shown] : rows) EXPECT_EQ(shown, FormatValue(type, bytes));
}

TEST(LongValues, AreNotShownWithTheirLengthByte) {
    const std::string text(128, 'x');
    const std::tuple<std::string, size_t, size_t> rows[] = {
        {Bytes({0xAF}) + text, 128, 0xAF},
        {Bytes({0x80}) + text, 128, 128},
        {text.substr(1), 127, 127},
        {"x" + text, 129, 129}};  // no such length: as it came
    for (const auto& [bytes, shown, whole] : rows) {
        const Content content = ContentOf(kOctetString, bytes);
        EXPECT_EQ(bytes.substr(bytes.size() - shown), content.bytes);
        EXPECT_EQ(whole, content.wholeSize);
    }
    EXPECT_EQ(
        ".1.3.6 = OCTET STRING: " + text + " [the first 128 of 175 bytes]\n",
        VariableWriter(false).Row(AnsweredWith({1, 3, 6}, kOctetString, Bytes({0xAF}) + text)));
}

TEST(SetValues, TakeOtherSpellings) {
    std::string problem;
    EXPECT_EQ(Bytes({0, 0x1B, 0x4C, 0xFF}), ParseSetValue("x", "0x00 1b:4C-ff", problem)->bytes);
    EXPECT_EQ("", ParseSetValue("s", "", problem)->bytes);
    EXPECT_EQ(Bytes({1}), ParseSetValue("timeticks", "1", problem)->bytes);
    EXPECT_EQ(uint32_t{kNull}, ParseSetValue("null", "", problem)->type);
}

TEST(SetValuesThatAreNone, AreRefusedWithAReason) {
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"s", {std::string(127, 'x')}},
        {"i", {"2147483648", "-2147483649", "", "1x", "-"}},
        {"u", {"-1", "4294967296"}},
        {"x", {"0", "0g"}},
        {"a", {"10.0.0", "10.0.0.256", "10.0.0.0.1", "10..0.1"}},
        {"o", {"1", "name"}},
        {"n", {"x"}},
        {"z", {"1"}},  // and words that are no type
        {"", {"1"}},
        {"int", {"1"}}};
    for (const auto& [type, texts] : rows) {
        for (const std::string& text : texts) {
            std::string problem;
            EXPECT_FALSE(ParseSetValue(type, text, problem)) << type << " " << text;
            EXPECT_NE("", problem);
        }
    }
}

TEST(VariableRows, AreLinesOrJsonElements) {
    VariableWriter text(false);
    EXPECT_EQ(".1.3.6 = INTEGER: 5\n", text.Row(AnsweredWith({1, 3, 6}, kInteger, "\x05")));
    EXPECT_EQ(".1.3.6 = OCTET STRING: \"\"\n", text.Row(AnsweredWith({1, 3, 6}, kOctetString, "")));
    EXPECT_EQ(".1.3.6 = no value\n", text.Row(AnsweredWith({1, 3, 6}, kNull, "")));
    EXPECT_EQ("", text.Row(Answer()));
    VariableWriter json(true);
    std::string document;
    for (const Answer& answer :
         {AnsweredWith({1, 3, 6}, kCounter64, Bytes({127, 255, 255, 255, 255, 255, 255, 255})),
          AnsweredWith({1, 3, 7}, kOctetString, "a\"\x7F"),
          AnsweredWith({1, 3, 8}, kOctetString, "a\"\nb"),
          AnsweredWith({1, 3, 9}, kNoSuchInstance, ""), Answer()}) {
        document += json.Row(answer);
    }
    EXPECT_EQ(R"([
  {"oid":".1.3.6","type":"Counter64","value":9223372036854775807},
  {"oid":".1.3.7","type":"OCTET STRING","value":"61 22 7F","encoding":"hex"},
  {"oid":".1.3.8","type":"OCTET STRING","value":"a\"\nb"},
  {"oid":".1.3.9","type":"noSuchInstance","value":null},
  {"oid":"","error":"no answer"}
]
)",
              document + json.End());
    EXPECT_EQ("[]\n", VariableWriter(true).End());
}

TEST(Walk, EndsWhereItMustAndNeverLoops) {
    const Oid root = {1, 3, 6, 1, 2, 1};
    const Oid asked = {1, 3, 6, 1, 2, 1, 1, 1, 0};
    const Oid next = {1, 3, 6, 1, 2, 1, 1, 2, 0};
    const Oid wrongDigest = {1, 3, 6, 1, 6, 3, 15, 1, 1, 5, 0};  // usmStatsWrongDigests of RFC 3414
    const std::tuple<WalkStep, std::optional<Oid>, uint32_t, bool> rows[] = {
        {WalkStep::kVariable, next, kInteger, false},
        {WalkStep::kVariable, next, kNull, false},
        {WalkStep::kEnd, Oid{1, 3, 6, 1, 4, 1}, kInteger, false},
        {WalkStep::kEnd, asked, kNull, false},
        {WalkStep::kEnd, asked, kEndOfMibView, true},
        {WalkStep::kNotIncreasing, asked, kInteger, false},
        {WalkStep::kNotIncreasing, Oid{1, 3, 6, 1, 2, 1, 1, 1}, kInteger, false},
        {WalkStep::kNotIncreasing, Oid{1, 3, 6}, kNull, false},
        {WalkStep::kLastReachable, Oid{1, 3, 6, 1, 2, 1, 6, 16384}, kInteger, false},
        {WalkStep::kUnreadable, std::nullopt, kInteger, false},
        {WalkStep::kRefused, wrongDigest, kCounter32, true},
        {WalkStep::kEnd, wrongDigest, kCounter32, false}};
    for (const auto& [step, answered, type, isV3] : rows) {
        EXPECT_EQ(step, JudgeAnswer(root, asked, answered, type, isV3))
            << (answered ? OidToText(*answered) : "") << " type " << type;
    }
    EXPECT_EQ(WalkStep::kVariable, JudgeAnswer({1, 3, 6}, {1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0},
                                               wrongDigest, kCounter32, true));
}

}  // namespace
}  // namespace vndiscover::host
