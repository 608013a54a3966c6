// What a report says, and how a terminal shows it.
#include "model/printer/report.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

TEST(PrinterReport, SaysWhatIsMissingAndWhy) {
    PrinterFacts facts;
    facts.model = "VN LaserPro 410";
    facts.description = "VN LaserPro";  // says nothing new
    facts.upTicks = 500;
    facts.supplies = {{"Black", "", "", {400, 1000, ""}},
                      {"", "cyan", "inkCartridge", {-3, -2, ""}},
                      {"Fuser", "", "fuser", {5, 100, ""}},
                      {"A waste toner container with a long name", "", "opc", {0, -2, ""}}};
    facts.trays = {{"", "A4", {120, 500, ""}}};
    facts.errors = std::vector<std::string>{"overduePreventMaint"};
    facts.alerts = {{"critical", "cover", "jam", "Door A", 9000},  // from before the restart
                    {"warning", "other", "jam", "", 100},
                    {"other", "", "powerUp", "", 0}};
    facts.gaps = {
        {"trays", "prtInputName", "no answer"}, {"trays", "prtInputMediaName", "too long"},
        {"name", "sysName", "no answer"},       {"name", "prtGeneralPrinterName", "too long"},
        {"alerts", "", "not asked for"},        {"panel", "", "not asked for"},
        {"location", "", "not asked for"}};
    const Report report = ReportOf(facts, {"10.77.1.20", "SNMPv1", true, {41}});
    EXPECT_EQ(
        "Model          VN LaserPro 410\n"
        "Serial number  (not given)\n"
        "Name           (not read)\n"
        "Location       (not read)\n"
        "Address        10.77.1.20\n"
        "MAC address    (not given)\n"
        "Protocols      SNMPv1\n"
        "Up since       (0:00:05)\n"
        "Errors         ! maintenance overdue\n"
        "Alerts         !! critical: Door A (cover, jam)\n"
        "               ! warning: jam, for 0:00:04\n"
        "               power up\n"
        "Supplies       Black                     [####......]  ! 40 % (400 of 1000)\n"
        "               ink cartridge                           some left, cyan\n"
        "               Fuser                     [#.........]  ! 5 % (5 of 100), fuser\n"
        "               A waste toner container with a long name\n"
        "                                         [..........]  !! empty, photoconductor\n"
        "Trays          Tray 1  [##........]  ! 24 % (120 of 500), A4\n"
        "Not read       trays, name: no answer; too long (prtInputName,\n"
        "                 prtInputMediaName, sysName, prtGeneralPrinterName)\n"
        "               alerts, panel, location: not asked for\n",
        ReportText(report, {80, false, true, true}));
    EXPECT_EQ(std::string::npos, ReportText(report, {80, false, false}).find('!'));
    EXPECT_EQ(Severity::kFine, report[0].rows[0].severity);
    EXPECT_EQ(Severity::kUnknown, report.back().rows[0].severity);
}

TEST(PrinterReport, SpellsOutTheAbbreviationsOfAlerts) {
    EXPECT_EQ("warning: marker, photoconductor life over",
              AlertText({"warning", "marker", "markerOpcLifeOver", "", {}}));
    EXPECT_EQ("finisher supply, jam", AlertText({"", "finSupply", "jam", "", {}}));
}

// RFC 3805, the table of printer states.
TEST(PrinterSummary, JudgesStatesAsTheyAreMeant) {
    using Errors = std::optional<std::vector<std::string>>;
    const std::tuple<const char*, const char*, Errors, Severity, const char*> rows[] = {
        {"down", "warmup", Errors(), Severity::kFine, "warming up"},
        {"down", "warmup", {{"jammed"}}, Severity::kCritical, "jammed"},
        {"down", "idle", Errors(), Severity::kCritical, "down"},
        {"warning", "printing", {{"noPaper"}}, Severity::kAttention, "no paper"},
        {"warning", "printing", {{"noPaper", "jammed"}}, Severity::kCritical, "no paper, jammed"},
        {"unknown", "other", Errors(), Severity::kUnknown, "unknown"},
        {"running", "other", Errors(), Severity::kFine, "running"},
        {"", "", Errors(), Severity::kUnknown, ""}};
    for (const auto& [device, printer, errors, severity, state] : rows) {
        PrinterFacts facts;
        facts.deviceStatus = device;
        facts.printerStatus = printer;
        facts.errors = errors;
        EXPECT_EQ(severity, SummaryOf(facts).severity) << device << " " << printer;
        EXPECT_EQ(state, SummaryOf(facts).state);
        facts.supplies = {{"Few", "", "", {3, 1000, ""}}, {"None", "", "", {0, 1000, ""}}};
        const PrinterSummary low = SummaryOf(facts);
        EXPECT_EQ(std::min(severity, Severity::kAttention), low.severity) << state;
        EXPECT_EQ("0 % None", low.supply);
    }
}

TEST(ReportText, KeepsCommandsInOneLineAndCountsCharacters) {
    ReportSection section = {"Firewall", {}};
    section.Add("", "B\xC3\xBCro B\xC3\xBCro B\xC3\xBCro B\xC3\xBCro");
    section.Add("", "netsh advfirewall firewall add rule");
    section.rows.back().isCommand = true;
    EXPECT_EQ(
        "Firewall       B\xC3\xBCro B\xC3\xBCro B\xC3\xBCro\n"
        "                 B\xC3\xBCro\n"
        "                 netsh advfirewall firewall add rule\n",
        ReportText({section}, {29}));
}

TEST(ReportText, ColoursMarksAndBarsAsIfTheyWerePlain) {
    ReportSection section = {"Supplies", {}};
    section.Add("Toner", "4 % (40 of 1000 impressions)", Severity::kAttention);
    section.rows.back().percent = 25;
    section.rows.back().colour = "light cyan";
    section.Add("Drum", "empty", Severity::kCritical);
    EXPECT_EQ(
        "Supplies       Toner  [\x1b[36m###\x1b[0m.......]  \x1b[1;33m!\x1b[0m 4 %\n"
        "                 (40 of 1000 impressions)\n"
        "               Drum                 \x1b[1;31m!!\x1b[0m empty\n",
        ReportText({section}, {60, true}));
}

TEST(SupplyColours, AreTheLastWholeWord) {
    EXPECT_STREQ("cyan", FindSupplyColour(ColourWords({"Cyan toner", "", "", {}}))->word);
    EXPECT_STREQ("black",
                 FindSupplyColour(ColourWords({"Cyan toner", "cyan-black", "", {}}))->word);
    EXPECT_EQ(nullptr, FindSupplyColour("Redundant, ordered"));
}

}  // namespace
}  // namespace vndiscover::host
