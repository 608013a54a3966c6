// Values by their type (RFC 1155 and X.690 for the bytes), in both directions.
#include "host/value_text.h"

#include <gtest/gtest.h>

#include "host/variable_writer.h"
#include "host/walk_step.h"

namespace vndiscover::host {
namespace {

std::string Bytes(std::initializer_list<int> bytes) { return {bytes.begin(), bytes.end()}; }

struct ValueCase {
    const char* name;
    uint32_t type;
    std::string bytes;
    std::string shown;
};

class ShownValues : public testing::TestWithParam<ValueCase> {};

TEST_P(ShownValues, FollowTheType) {
    EXPECT_EQ(GetParam().shown, FormatValue(GetParam().type, GetParam().bytes));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ShownValues,
    testing::Values(
        ValueCase{"Negative", kInteger, Bytes({0xFF}), "-1"},
        ValueCase{"Smallest", kInteger, Bytes({0x80, 0, 0, 0}), "-2147483648"},
        ValueCase{"Positive", kInteger, Bytes({0, 0x80}), "128"},
        ValueCase{"IntegerWithoutBytes", kInteger, "", ""},
        ValueCase{"IntegerOfNineBytes", kInteger, Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9}),
                  "01 02 03 04 05 06 07 08 09"},
        ValueCase{"Text", kOctetString, "LaserPro 410", "LaserPro 410"},
        ValueCase{"HardwareAddress", kOctetString, Bytes({0, 0x1B, 0x44}), "00 1B 44"},
        ValueCase{"Oid", kObjectIdentifier, Bytes({0x2B, 6, 1, 4, 1, 0xBF, 8}),
                  ".1.3.6.1.4.1.8072"},
        ValueCase{"CutOid", kObjectIdentifier, Bytes({0x2B, 0x81}), "2B 81"},
        ValueCase{"Address", kIpAddress, Bytes({192, 168, 1, 20}), "192.168.1.20"},
        ValueCase{"AddressOfThreeBytes", kIpAddress, Bytes({10, 1, 2}), "0A 01 02"},
        ValueCase{"LargestCounter", kCounter32, Bytes({0, 0xFF, 0xFF, 0xFF, 0xFF}), "4294967295"},
        ValueCase{"CounterWithoutTheZeroByte", kCounter32, Bytes({0xFF, 0xFF, 0xFF, 0xFF}),
                  "4294967295"},
        ValueCase{"LargestCounter64", kCounter64,
                  Bytes({0, 255, 255, 255, 255, 255, 255, 255, 255}), "18446744073709551615"},
        ValueCase{"Ticks", kTimeTicks, Bytes({0x30, 0x39}), "12345 (0:02:03.45)"},
        ValueCase{"TicksOfDays", kTimeTicks, Bytes({0x01, 0x07, 0xAB, 0xFF}),
                  "17279999 (1 day, 23:59:59.99)"},
        ValueCase{"NoValue", kNull, "", "no value"},
        ValueCase{"UnknownType", 0x47, Bytes({0x41}), "41"}),
    [](const auto& row) { return row.param.name; });

TEST(LongValues, AreNotShownWithTheirLengthByte) {
    const std::string text(128, 'x');
    const Content cut = ContentOf(kOctetString, Bytes({0xAF}) + text);
    EXPECT_EQ(text, cut.bytes);
    EXPECT_EQ(0xAFu, cut.wholeSize);
    const Content whole = ContentOf(kOctetString, Bytes({0x80}) + text);
    EXPECT_EQ(text, whole.bytes);
    EXPECT_EQ(128u, whole.wholeSize);
    EXPECT_EQ(127u, ContentOf(kOctetString, text.substr(1)).bytes.size());
    EXPECT_EQ(129u,
              ContentOf(kOctetString, "x" + text).bytes.size());  // no such length: as it came
    EXPECT_EQ(
        ".1.3.6 = OCTET STRING: " + text + " [the first 128 of 175 bytes]\n",
        VariableWriter(false).Row(AnsweredWith({1, 3, 6}, kOctetString, Bytes({0xAF}) + text)));
}

struct SetCase {
    const char* name;
    const char* type;
    const char* text;
    uint32_t tag;
    std::string bytes;
};

class SetValues : public testing::TestWithParam<SetCase> {};

TEST_P(SetValues, BecomeTheShortestContent) {
    std::string problem;
    const auto value = ParseSetValue(GetParam().type, GetParam().text, problem);
    ASSERT_TRUE(value) << problem;
    EXPECT_EQ(GetParam().tag, value->type);
    EXPECT_EQ(GetParam().bytes, value->bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SetValues,
    testing::Values(
        SetCase{"Zero", "integer", "0", kInteger, Bytes({0})},
        SetCase{"MinusOne", "i", "-1", kInteger, Bytes({0xFF})},
        SetCase{"Positive127", "i", "127", kInteger, Bytes({0x7F})},
        SetCase{"Positive128", "i", "128", kInteger, Bytes({0, 0x80})},
        SetCase{"Minus128", "i", "-128", kInteger, Bytes({0x80})},
        SetCase{"Minus129", "i", "-129", kInteger, Bytes({0xFF, 0x7F})},
        SetCase{"Smallest", "i", "-2147483648", kInteger, Bytes({0x80, 0, 0, 0})},
        SetCase{"LargestGauge", "u", "4294967295", kGauge32, Bytes({0, 255, 255, 255, 255})},
        SetCase{"Counter", "counter", "200", kCounter32, Bytes({0, 200})},
        SetCase{"Ticks", "timeticks", "1", kTimeTicks, Bytes({1})},
        SetCase{"Text", "string", "a b", kOctetString, "a b"},
        SetCase{"EmptyText", "s", "", kOctetString, ""},
        SetCase{"Hex", "x", "0x00 1b:4C-ff", kOctetString, Bytes({0, 0x1B, 0x4C, 0xFF})},
        SetCase{"Oid", "o", ".1.3.6.1.4.1.99999", kObjectIdentifier,
                Bytes({0x2B, 6, 1, 4, 1, 0x86, 0x8D, 0x1F})},
        SetCase{"Address", "a", "10.0.0.255", kIpAddress, Bytes({10, 0, 0, 255})},
        SetCase{"Null", "null", "", kNull, ""}),
    [](const auto& row) { return row.param.name; });

TEST(SetValuesThatAreNone, AreRefusedWithAReason) {
    const std::pair<const char*, const char*> rows[] = {
        {"i", "2147483648"}, {"i", "-2147483649"}, {"i", ""},        {"i", "1x"}, {"i", "-"},
        {"u", "-1"},         {"u", "4294967296"},  {"x", "0"},       {"x", "0g"}, {"a", "10.0.0"},
        {"a", "10.0.0.256"}, {"a", "10.0.0.0.1"},  {"a", "10..0.1"}, {"o", "1"},  {"o", "name"},
        {"n", "x"},          {"z", "1"},           {"", "1"},        {"int", "1"}};
    for (const auto& [type, text] : rows) {
        std::string problem;
        EXPECT_FALSE(ParseSetValue(type, text, problem)) << type << " " << text;
        EXPECT_NE("", problem);
    }
    std::string problem;
    EXPECT_TRUE(ParseSetValue("s", std::string(126, 'x'), problem));
    EXPECT_FALSE(ParseSetValue("s", std::string(127, 'x'), problem));
}

TEST(VariableRows, AreLinesOrJsonElements) {
    VariableWriter text(false);
    EXPECT_EQ(".1.3.6 = INTEGER: 5\n", text.Row(AnsweredWith({1, 3, 6}, kInteger, "\x05")));
    EXPECT_EQ(".1.3.6 = OCTET STRING: \"\"\n", text.Row(AnsweredWith({1, 3, 6}, kOctetString, "")));
    EXPECT_EQ(".1.3.6 = no value\n", text.Row(AnsweredWith({1, 3, 6}, kNull, "")));
    EXPECT_EQ("", text.Row(Answer()));
    VariableWriter json(true);
    std::string document = json.Row(
        AnsweredWith({1, 3, 6}, kCounter64, Bytes({127, 255, 255, 255, 255, 255, 255, 255})));
    document += json.Row(AnsweredWith({1, 3, 7}, kOctetString, "a\"\x7F"));
    document += json.Row(AnsweredWith({1, 3, 8}, kOctetString, "a\"\nb"));
    document += json.Row(AnsweredWith({1, 3, 9}, kNoSuchInstance, ""));
    document += json.Row(Answer()) + json.End();
    EXPECT_EQ(
        "[\n"
        "  {\"oid\":\".1.3.6\",\"type\":\"Counter64\",\"value\":9223372036854775807},\n"
        "  {\"oid\":\".1.3.7\",\"type\":\"OCTET STRING\",\"value\":\"61 22 "
        "7F\",\"encoding\":\"hex\"},\n"
        "  {\"oid\":\".1.3.8\",\"type\":\"OCTET STRING\",\"value\":\"a\\\"\\nb\"},\n"
        "  {\"oid\":\".1.3.9\",\"type\":\"noSuchInstance\",\"value\":null},\n"
        "  {\"oid\":\"\",\"error\":\"no answer\"}\n"
        "]\n",
        document);
    EXPECT_EQ("[]\n", VariableWriter(true).End());
}

TEST(Walk, EndsWhereItMustAndNeverLoops) {
    const Oid root = {1, 3, 6, 1, 2, 1};
    const Oid asked = {1, 3, 6, 1, 2, 1, 1, 1, 0};
    const auto judge = [&](const std::optional<Oid>& answered, uint32_t type, bool isV3 = false) {
        return JudgeAnswer(root, asked, answered, type, isV3);
    };
    EXPECT_EQ(WalkStep::kVariable, judge(Oid{1, 3, 6, 1, 2, 1, 1, 2, 0}, kInteger));
    EXPECT_EQ(WalkStep::kVariable, judge(Oid{1, 3, 6, 1, 2, 1, 1, 2, 0}, kNull));
    EXPECT_EQ(WalkStep::kEnd, judge(Oid{1, 3, 6, 1, 4, 1}, kInteger));
    EXPECT_EQ(WalkStep::kEnd, judge(asked, kNull));
    EXPECT_EQ(WalkStep::kEnd, judge(asked, kEndOfMibView, true));
    EXPECT_EQ(WalkStep::kNotIncreasing, judge(asked, kInteger));
    EXPECT_EQ(WalkStep::kNotIncreasing, judge(Oid{1, 3, 6, 1, 2, 1, 1, 1}, kInteger));
    EXPECT_EQ(WalkStep::kNotIncreasing, judge(Oid{1, 3, 6}, kNull));
    EXPECT_EQ(WalkStep::kLastReachable, judge(Oid{1, 3, 6, 1, 2, 1, 6, 16384}, kInteger));
    EXPECT_EQ(WalkStep::kUnreadable, judge(std::nullopt, kInteger));
    const Oid wrongDigest = {1, 3, 6, 1, 6, 3, 15, 1, 1, 5, 0};  // usmStatsWrongDigests of RFC 3414
    EXPECT_EQ(WalkStep::kRefused, judge(wrongDigest, kCounter32, true));
    EXPECT_EQ(WalkStep::kEnd, judge(wrongDigest, kCounter32));
    EXPECT_EQ(WalkStep::kVariable, JudgeAnswer({1, 3, 6}, {1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0},
                                               wrongDigest, kCounter32, true));
}

}  // namespace
}  // namespace vndiscover::host
