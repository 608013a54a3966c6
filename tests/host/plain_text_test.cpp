// What devices send, and what of it reaches a terminal.
#include "host/plain_text.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

constexpr char kReplaced[] = "\xEF\xBF\xBD";

TEST(PlainText, LeavesReadableTextAlone) {
    EXPECT_EQ("LaserPro 410", PlainText("LaserPro 410"));
    EXPECT_EQ("B\xC3\xBCro \xE2\x82\xAC \xF0\x9F\x96\xA8",
              PlainText("B\xC3\xBCro \xE2\x82\xAC \xF0\x9F\x96\xA8"));
    EXPECT_EQ("", PlainText(""));
}

TEST(PlainText, ReplacesWhatATerminalWouldObey) {
    const std::string replaced = kReplaced;
    EXPECT_EQ(replaced + "[2J" + replaced + "]0;x" + replaced, PlainText("\x1B[2J\x1B]0;x\x07"));
    EXPECT_EQ(replaced + "2J", PlainText("\xC2\x9B"
                                         "2J"));  // CSI as one C1 character
    EXPECT_EQ(replaced + "2J", PlainText("\x9B"
                                         "2J"));  // and as a bare byte
    EXPECT_EQ("a" + replaced + "b", PlainText("a\xE2\x80\xAE"
                                              "b"));  // right-to-left override
    EXPECT_EQ("a" + replaced + "b", PlainText(std::string_view("a\0b", 3)));
    EXPECT_EQ(replaced, PlainText("\x7F"));
}

TEST(PlainText, FoldsOrKeepsLineBreaks) {
    EXPECT_EQ("a b c", PlainText("\r\na\r\n\tb\nc\r\n"));
    EXPECT_EQ("a\n\tb\n", PlainText("a\r\n\tb\n", Breaks::kKeep));
    // A lone carriage return would let the rest of a line overwrite its beginning.
    EXPECT_EQ(std::string("a") + kReplaced + "b", PlainText("a\rb", Breaks::kKeep));
}

TEST(PlainText, ReadsWhatIsNoUtf8AsLatin1) {
    EXPECT_EQ("B\xC3\xBCro", PlainText("B\xFCro"));
    EXPECT_EQ("\xC3\xA9", PlainText("\xE9"));              // cut sequence
    EXPECT_EQ("\xC3\x80\xC2\xAF", PlainText("\xC0\xAF"));  // overlong slash
    // A surrogate in UTF-8 form: three Latin-1 bytes, the last of them a control character.
    EXPECT_EQ(std::string("\xC3\xAD\xC2\xA0") + kReplaced, PlainText("\xED\xA0\x80"));
    EXPECT_EQ(std::string("\xC3\xB4") + kReplaced + kReplaced + kReplaced,
              PlainText("\xF4\x90\x80\x80"));
}

TEST(Printable, IsTextButNoBinaryValue) {
    EXPECT_TRUE(IsPrintable(""));
    EXPECT_TRUE(IsPrintable("Cisco IOS\r\nVersion 12\t"));
    EXPECT_TRUE(IsPrintable(std::string_view("LaserPro\0", 9)));
    EXPECT_TRUE(IsPrintable("B\xFCro"));
    EXPECT_FALSE(IsPrintable(std::string_view("\x00\x1B\x44\x11\x3A\xB7", 6)));
    EXPECT_FALSE(
        IsPrintable("\xA0\xB1\xC2\xD3\xE4\xF5"));  // a hardware address, all Latin-1 letters
    EXPECT_FALSE(IsPrintable("\x1B[2J"));
    EXPECT_EQ("LaserPro", ShownValue(std::string_view("LaserPro\0", 9)));
    EXPECT_EQ("0x1B5B324A", ShownValue("\x1B[2J"));
}

TEST(Padded, CountsCharactersNotBytes) {
    EXPECT_EQ("B\xC3\xBCro  ", Padded("B\xC3\xBCro", 6));
    EXPECT_EQ("abcdef", Padded("abcdef", 3));
}

}  // namespace
}  // namespace vndiscover::host
