// Values by their type (RFC 1155 and X.690 for the bytes), in both directions.
#include "values/value_text.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

std::string Bytes(std::initializer_list<int> bytes) { return {bytes.begin(), bytes.end()}; }

// The word on the command line, the text, the tag, and the shortest content.
TEST(Values, ConvertBothWays) {
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
        {kTimeTicks, Bytes({0x01, 0x07, 0xAC, 0x00}), "17280000 (2 days, 0:00:00.00)"},
        {kNull, "", "no value"},
        {0x47, "A", "41"}};
    for (const auto& [type, bytes, shown] : rows) EXPECT_EQ(shown, FormatValue(type, bytes));
}

TEST(LongValues, AreShownWithoutTheirLengthByte) {
    const std::string text(128, 'x');
    const std::tuple<std::string, size_t, size_t> rows[] = {
        {Bytes({0xAF}) + text, 128, 0xAF},
        {Bytes({0x80}) + text, 128, 128},
        {text.substr(1), 127, 127},
        {"x" + text, 129, 129}};  // no such length: unchanged
    for (const auto& [bytes, shown, whole] : rows) {
        const Content content = ContentOf(kOctetString, bytes);
        EXPECT_EQ(bytes.substr(bytes.size() - shown), content.bytes);
        EXPECT_EQ(whole, content.wholeSize);
    }
}

TEST(SetValues, AcceptOtherSpellings) {
    std::string problem;
    EXPECT_EQ(Bytes({0, 0x1B, 0x4C, 0xFF}), ParseSetValue("x", "0x00 1b:4C-ff", problem)->bytes);
    EXPECT_EQ("", ParseSetValue("s", "", problem)->bytes);
    EXPECT_EQ(Bytes({1}), ParseSetValue("timeticks", "1", problem)->bytes);
    EXPECT_EQ(uint32_t{kNull}, ParseSetValue("null", "", problem)->type);
}

TEST(SetValues, MalformedOnesAreRefusedWithAReason) {
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"s", {std::string(127, 'x')}},
        {"i", {"2147483648", "-2147483649", "", "1x", "-"}},
        {"u", {"-1", "4294967296"}},
        {"x", {"0", "0g"}},
        {"a", {"10.0.0", "10.0.0.256", "10.0.0.0.1", "10..0.1"}},
        {"o", {"1", "name"}},
        {"n", {"x"}},
        {"z", {"1"}},  // and an unknown type
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

}  // namespace
}  // namespace vndiscover::host
