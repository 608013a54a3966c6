// Texts, OIDs, names and values (RFC 1155, 1213, 2790, 3805 and ITU-T X.690), in both directions.
#include <gtest/gtest.h>

#include <algorithm>

#include "values/ip_address.h"
#include "values/object_names.h"
#include "values/oid_text.h"
#include "values/text.h"
#include "values/value_text.h"

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
    EXPECT_EQ("a#", Shown({"a\r\n", 2}, Breaks::kKeep));
}

TEST(ShownValue, IsNeverEmptyForReceivedBytes) {
    EXPECT_EQ("", ShownValue(""));
    EXPECT_EQ("a", ShownValue({"a\0\0", 3}));
    EXPECT_EQ("0x0000", ShownValue({"\0\0", 2}));
}

TEST(SpacedWords, AreThoseOfTheObjects) {
    EXPECT_EQ("input media supply low", SpacedWords("inputMediaSupplyLow"));
    EXPECT_EQ("marker toner almost empty", SpacedWords("markerTonerAlmostEmpty"));
    EXPECT_EQ("electrophotographic LED", SpacedWords("electrophotographicLED"));
}

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

TEST(Oids, PartsAreNoLongerThanTheWhole) {
    EXPECT_EQ(Oid(), Tail({1, 3}, 3));
    EXPECT_EQ(Oid({1, 3}), Head({1, 3}, 3));
}

TEST(OidOctets, MalformedOnesAreRefused) {
    for (const Octets& octets : {Octets(), Octets({0x2B, 6, '\x81'}),                // cut
                                 Octets({0x2B, '\x90', '\x80', '\x80', '\x80', 0}),  // 2^32
                                 Octets({'\x90', '\x80', '\x80', '\x80', 0x50, 1}),  // 2.(2^32)
                                 Octets(128, '\xFF'), Octets(128, '\x01')}) {
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

TEST(ObjectNames, ConvertBothWays) {
    const std::pair<const char*, const char*> rows[] = {
        {"sysDescr.0", ".1.3.6.1.2.1.1.1.0"},
        {"hrPrinterStatus.1", ".1.3.6.1.2.1.25.3.5.1.1.1"},
        {"ifOutOctets", ".1.3.6.1.2.1.2.2.1.16"},
        {"prtMarkerSuppliesLevel.1.12", ".1.3.6.1.2.1.43.11.1.1.9.1.12"},
        {"entPhysicalSerialNum.1", ".1.3.6.1.2.1.47.1.1.1.1.11.1"}};
    for (const auto& [name, oid] : rows) {
        EXPECT_EQ(ParseOid(oid), ParseOidOrName(name));
        EXPECT_EQ(ParseOid(oid), ParseOidOrName(oid));
        EXPECT_EQ(name, NameText(*ParseOid(oid)));
    }
    EXPECT_EQ(ParseOid(".1.3.6.1.2.1.1.5.0"), ParseOidOrName("SYSname.0"));
    for (const char* text :
         {"", ".", "sysDesc.0", "sysDescr.", "sysDescr..0", "sysDescr.x", "sysDescr0"})
        EXPECT_FALSE(ParseOidOrName(text)) << text;
    // Between two objects, before the first and after the last.
    for (const char* oid : {".1.3.6.1.2.1.2.2.1.11.1", ".1.3", ".2.5"})
        EXPECT_EQ(oid, NameText(*ParseOid(oid)));
}

TEST(ObjectNames, AreInOrderAndUnique) {
    const std::vector<Oid>& all = StandardObjects();
    for (size_t i = 1; i < all.size(); ++i) {
        EXPECT_LT(all[i - 1], all[i]) << NameText(all[i]);
    }
}

TEST(NamedValues, AreSpelledOut) {
    const std::tuple<const char*, uint32_t, std::string, const char*> rows[] = {
        {"hrPrinterStatus.1", kInteger, "\x03", "idle(3)"},
        {"hrPrinterStatus.1", kInteger, "\x09", "9"},
        {"prtAlertCode.1.1", kInteger, "\x04\x4D", "markerTonerEmpty(1101)"},
        {"prtMarkerSuppliesLevel.1.1", kInteger, "\xFD", "-3"},
        {"hrPrinterDetectedErrorState.1", kOctetString, "\x0C", "doorOpen, jammed"},
        {"hrPrinterDetectedErrorState.1", kOctetString, "\x40\x03",
         "noPaper, overduePreventMaint, bit 15"},
        {"hrPrinterDetectedErrorState.1", kOctetString, std::string(7, '\0') + "\x01\xFF",
         "bit 63"},
        {"hrPrinterDetectedErrorState.1", kOctetString, {"\0", 1}, "none"},
        {"ifPhysAddress.2", kOctetString, "ABCDEF", "41:42:43:44:45:46"},
        {"atPhysAddress.1.1.10.0.0.1", kOctetString, "ABCDEF", "41:42:43:44:45:46"},
        {"ipNetToMediaPhysAddress.1.10.0.0.1", kOctetString, "ABCDEF", "41:42:43:44:45:46"},
        {"sysName.0", kOctetString, "hall", "hall"},
        {"hrPrinterStatus.1", kNull, "", "no value"}};
    for (const auto& [name, type, bytes, shown] : rows)
        EXPECT_EQ(shown, FormatNamedValue(*ParseOidOrName(name), type, bytes)) << name;
}

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

TEST(IpAddress, OtherTextIsNone) {
    for (const char* text :
         {"", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.4x", "1.2.3.4%2", ":", "1:::2",
          "fe80:", "1:2:3:4:5:6:7:8:9", "1::2:3:4:5:6:7:8", "12345::", "g::1", "beef.de"})
        EXPECT_FALSE(ParseIpAddress(text)) << text;
    for (const char* text : {"255.255.255.255", "239.1.2.3", "0.0.0.0", "ff02::1", "::"})
        EXPECT_FALSE(ParseIpAddress(text)->IsUnicast()) << text;
    EXPECT_TRUE(ParseIpAddress("223.1.1.1")->IsUnicast() && ParseIpAddress("fe80::1")->IsUnicast());
    EXPECT_FALSE(ParseIpAddress(std::string_view("1.2.3.4\0x", 9)));
    EXPECT_EQ(ParseIpAddress("0:0:0:0:0:0:0:1")->bytes, ParseIpAddress("::1%3")->bytes);
}

TEST(IpAddress, NetworkIsTheAdapters) {
    const IpAddress device = *ParseIpAddress("10.77.5.20");
    EXPECT_EQ("10.77.4.0/22", CommonNetwork(device, "10.77.7.1", "255.255.252.0"));
    for (const char* adapter : {"10.77.8.1", "0.0.0.0", "fe80::1", ""})
        EXPECT_EQ("", CommonNetwork(device, adapter, "255.255.252.0")) << adapter;
    EXPECT_EQ("", CommonNetwork(device, "0.0.0.0", "0.0.0.0"));
}

}  // namespace
}  // namespace vndiscover::host
