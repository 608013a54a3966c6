// Text from devices, and what of it reaches a terminal.
#include "values/plain_text.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

// U+FFFD, which replaces control characters, is written as '#' here.
std::string Shown(std::string_view bytes, Breaks breaks = Breaks::kFold) {
    std::string text = PlainText(bytes, breaks);
    for (size_t at; (at = text.find("\xEF\xBF\xBD")) != std::string::npos;)
        text.replace(at, 3, "#");
    return text;
}

TEST(PlainText, ReplacesControlCharactersAndReadsLatin1) {
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"B\xC3\xBCro \xE2\x82\xAC \xF0\x9F\x96\xA8", "B\xC3\xBCro \xE2\x82\xAC \xF0\x9F\x96\xA8"},
        {"\x1B[2J\x1B]0;x\x07", "#[2J#]0;x#"},
        {"\xC2\x9B+2J", "#+2J"},    // CSI as one C1 character
        {"\x9B+2J", "#+2J"},        // and as a bare byte
        {"+\xE2\x80\xAE+", "+#+"},  // right-to-left override
        {{"a\0b\x7F", 4}, "a#b#"},
        {"\r\na\r\n\tb\nc\r\n", "a b c"},
        // Bytes that are not UTF-8 are Latin-1.
        {"B\xFCro", "B\xC3\xBCro"},
        {"\xE9", "\xC3\xA9"},                   // an incomplete sequence
        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},       // an overlong slash
        {"\xE0\x90\x80", "\xC3\xA0##"},         // and an overlong U+0400
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0#"},  // a surrogate
        {"\xF4\x90\x80\x80", "\xC3\xB4###"}};   // beyond U+10FFFF
    for (const auto& [bytes, shown] : rows) EXPECT_EQ(shown, Shown(bytes));
    EXPECT_EQ("a\n\tb\n", Shown("a\r\n\tb\n", Breaks::kKeep));
    EXPECT_EQ("a#b", Shown("a\rb", Breaks::kKeep)) << "b must not overwrite the line";
}

TEST(ShownValue, IsNeverEmptyForReceivedBytes) {
    EXPECT_EQ("", ShownValue(""));
    EXPECT_EQ("a", ShownValue({"a\0\0", 3}));
    EXPECT_EQ("0x0000", ShownValue({"\0\0", 2}));
}

TEST(Padded, CountsCharactersNotBytes) { EXPECT_EQ("B\xC3\xBCro  ", Padded("B\xC3\xBCro", 6)); }

}  // namespace
}  // namespace vndiscover::host
