// The meaning of a printer's variables in cases that tools often get wrong.
#include "model/printer/printer_facts.h"

#include <gtest/gtest.h>

#include "host/model/scripted_device.h"
#include "model/printer/report.h"

namespace vndiscover::host {
namespace {

constexpr char kPrinterType[] = ".1.3.6.1.2.1.25.3.1.5";

PrinterFacts Facts(ScriptedDevice& device) { return FactsOf(ReadPrinter(device.MakeAsker())); }

TEST(PrinterFacts, AreReadEvenIfNoPrinterIsListed) {
    ScriptedDevice device;
    EXPECT_FALSE(Facts(device).deviceIndex);
    device.Integer("prtMarkerSuppliesLevel.7.1", -3);
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ(7u, facts.deviceIndex);
    ASSERT_EQ(1u, facts.supplies.size());
    EXPECT_EQ("some left", LevelText(facts.supplies[0].level));
}

TEST(PrinterFacts, TextsAreUtf8OrLatin1) {
    const std::pair<const char*, const char*> rows[] = {
        {"B\xFCro", "B\xC3\xBCro"},
        {" B\xC3\xBCro \xC3", "B\xC3\xBCro \xC3\x83"},  // cut within a character
        {"a\x1B", "a\xEF\xBF\xBD"}};
    for (const auto& [text, shown] : rows) {
        ScriptedDevice device;
        device.Object("hrDeviceType.2", kPrinterType);
        device.Text("prtMarkerSuppliesDescription.2.1", text);
        EXPECT_EQ(shown, Facts(device).supplies.at(0).description);
    }
}

TEST(PrinterFacts, OddLevelsMeanWhatTheyShould) {
    ScriptedDevice device;
    device.variables[*ParseOidOrName("prtMarkerSuppliesLevel.1.1")] = {kGauge32,
                                                                       "\xFF\xFF\xFF\xFD"};
    device.Integer("prtMarkerSuppliesLevel.1.2", 500);
    device.Integer("prtMarkerSuppliesMaxCapacity.1.2", 10000);
    device.Integer("prtMarkerSuppliesSupplyUnit.1.2", 19);
    EXPECT_EQ("supply: some left; supply: 5 % (500 of 10000)", SuppliesText(Facts(device)));
}

TEST(PrinterFacts, UseTheAddressOfAnInterfaceThatIsUp) {
    ScriptedDevice device;
    const std::string mac[] = {
        {"\0\0\0\0\0\0", 6}, "AAAAAA", "BBBBBB", {"\x3C\x2A\xF4\0\xF5\x1B", 6}};
    const int types[] = {6, 24, 6, 62};
    for (int i = 0; i < 4; ++i) {
        const std::string row = "." + std::to_string(i + 1);
        device.Text(("ifPhysAddress" + row).c_str(), mac[i]);
        device.Integer(("ifType" + row).c_str(), types[i]);
        device.Integer(("ifOperStatus" + row).c_str(), 2);
    }
    EXPECT_EQ("42:42:42:42:42:42", Facts(device).macAddress);
    device.Integer("ifOperStatus.4", 1);
    EXPECT_EQ("3C:2A:F4:00:F5:1B", Facts(device).macAddress);
}

// As real printers send them (RFC 3805, prtMarkerSuppliesLevel).
struct LevelRow {
    Level level;
    std::optional<int> percent;
    const char* text;
};

TEST(Levels, AreSignedAndNeverMoreThanFull) {
    constexpr int64_t kHuge = INT64_MAX;
    const std::string pages = "impressions";
    const LevelRow rows[] = {
        {{400, 1000, pages}, 40, "40 % (400 of 1000 impressions)"},
        {{0, 1000, ""}, 0, "0 % (0 of 1000)"},
        {{1, 1000, ""}, 0, "under 1 % (1 of 1000)"},
        {{999, 1000, ""}, 99, "99 % (999 of 1000)"},
        {{29, 100, ""}, 29, "29 % (29 of 100)"},
        {{130, 100, pages}, 100, "100 % (130 of 100 impressions, above the maximum)"},
        {{kHuge - 1, kHuge, ""}, 100, "100 % (9223372036854775806 of 9223372036854775807)"},
        {{-1, 1000, pages}, {}, "no limit"},
        {{-2, 1000, pages}, {}, "unknown"},
        {{-3, 1000, pages}, {}, "some left"},
        {{-7, 1000, pages}, {}, "unknown (-7)"},
        {{1200, -2, pages}, {}, "1200 impressions, maximum unknown"},
        {{1200, 0, ""}, {}, "1200, maximum unknown"},
        {{1200, {}, pages}, {}, "1200 impressions, maximum unknown"},
        {{0, -2, pages}, 0, "empty"},
        {{0, {}, "", false, true}, 0, "room left: none"},
        {{1200, -1, pages}, {}, "1200 impressions, no maximum"},
        {{{}, 1000, pages}, {}, "not read"},
        // The level is the percentage, whatever the maximum.
        {{40, -2, "percent", true}, 40, "40 %"},
        {{40, 50, "percent", true}, 40, "40 %"},
        {{120, 100, "percent", true}, 100, "100 % (the device says 120 %)"},
        {{-3, 100, "percent", true}, {}, "some left"},
        // A receptacle's level is its remaining capacity.
        {{80, 100, "percent", true, true}, 80, "room left: 80 %"},
        {{-3, -2, "", false, true}, {}, "room left: some"},
        {{0, 30000, pages, false, true}, 0, "room left: 0 % (0 of 30000 impressions)"}};
    for (const LevelRow& row : rows) {
        EXPECT_EQ(row.percent, PercentOf(row.level)) << row.text;
        EXPECT_EQ(row.text, LevelText(row.level));
    }
}

}  // namespace
}  // namespace vndiscover::host
