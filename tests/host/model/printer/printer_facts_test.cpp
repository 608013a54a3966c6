// The meaning of a printer's variables in cases that tools often get wrong.
#include "model/printer/printer_facts.h"

#include <gtest/gtest.h>

#include "host/model/scripted_device.h"

namespace vndiscover::host {
namespace {

PrinterFacts Facts(ScriptedDevice& device) {
    const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
    PrinterFacts facts = FactsOf(answers);
    EXPECT_EQ(facts.deviceIndex.has_value(), HasPrinter(answers));
    return facts;
}

TEST(PrinterFacts, AreReadEvenIfNoPrinterIsListed) {
    ScriptedDevice device;
    EXPECT_FALSE(Facts(device).deviceIndex);
    device.Integer("prtMarkerSuppliesLevel.7.1", -3);
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ(7u, facts.deviceIndex);
    ASSERT_EQ(1u, facts.supplies.size());
    EXPECT_EQ("some left", LevelText(facts.supplies[0].level));
}

TEST(PrinterFacts, AreFoundUnderAnotherNumber) {
    ScriptedDevice device;
    for (const char* name : {"hrDeviceType.3", "hrDeviceType.4"})
        device.Object(name, ".1.3.6.1.2.1.25.3.1.5");
    for (const char* name : {"prtGeneralSerialNumber.1", "prtAlertDescription.1.1"})
        device.Text(name, "VN1");
    device.Integer("prtInputCurrentLevel.4.1", 5);  // of the second printer
    EXPECT_EQ(0u, Facts(device).alerts.size());
    device.Integer("prtMarkerSuppliesLevel.1.1", 7);
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ(3u, facts.deviceIndex);
    EXPECT_EQ("VN1", facts.serialNumber);
    EXPECT_EQ(1u, facts.alerts.size());
    EXPECT_EQ(0u, facts.trays.size());
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
