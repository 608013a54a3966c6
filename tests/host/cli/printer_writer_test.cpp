#include "cli/printer_writer.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

TEST(PrinterReport, SaysWhatIsMissingAndWhy) {
    PrinterFacts facts;
    facts.model = "VN LaserPro 410";
    facts.upTicks = 500;
    facts.supplies = {{"Black", "", "", {400, 1000, ""}},
                      {"", "cyan", "inkCartridge", {-3, -2, ""}}};
    facts.alerts = {{"critical", "", "jam", "", 9000}};  // from before the restart
    facts.gaps = {{"trays", "prtInputName", "no answer"},
                  {"alerts", "", "not asked for"},
                  {"panel", "", "not asked for"}};
    EXPECT_EQ(
        "Model          VN LaserPro 410\n"
        "Serial number  (not given)\n"
        "Name           (not given)\n"
        "Location       (not given)\n"
        "MAC address    (not given)\n"
        "Up since       noon (0:00:05)\n"
        "Alerts         critical: jam\n"
        "Supplies       Black          [########............]  40 % (400 of 1000)\n"
        "               ink cartridge                          some left, cyan ink cartridge\n"
        "Not read       trays (prtInputName): no answer\n"
        "               alerts, panel: not asked for\n",
        PrinterText(facts, "noon"));
}

}  // namespace
}  // namespace vndiscover::host
