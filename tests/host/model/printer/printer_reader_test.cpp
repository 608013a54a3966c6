// What a misbehaving device can cost, and what variables mean where tools often get it wrong.
#include "model/printer/printer_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/model/scripted_device.h"
#include "model/printer/report.h"

namespace vndiscover::host {
namespace {

ScriptedDevice Printer() {
    ScriptedDevice device(
        "sysName.0 s hall; hrDeviceType.3 o .1.3.6.1.2.1.25.3.1.5; "
        "hrDeviceDescr.3 s VN LaserPro 410; prtGeneralSerialNumber.3 s VN1; "
        "prtInputCurrentLevel.3.1 i 5; prtInputCurrentLevel.3.2 i 5; .1.3.6.1.4.1.9999.1.0 s x");
    return device;
}

bool HasGap(const PrinterAnswers& answers, const std::string& subject, const std::string& object,
            const std::string& reason) {
    return std::any_of(answers.gaps.begin(), answers.gaps.end(), [&](const Gap& gap) {
        return gap.subject == subject && gap.object == object &&
               gap.reason.find(reason) != std::string::npos;
    });
}

TEST(PrinterReader, ReadsTheRowsOfThePrinter) {
    ScriptedDevice device = Printer();
    device.Add("hrDeviceDescr.1 s a processor; entPhysicalSerialNum.1 s of a part");
    const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
    EXPECT_EQ(device.variables.size() - 3, answers.values.size());
    EXPECT_FALSE(answers.values.count(*ParseOidOrName("hrDeviceDescr.1")));
    EXPECT_TRUE(answers.gaps.empty());
    EXPECT_LT(device.requests, 45u);
}

TEST(PrinterReader, StopsIfTheDeviceIsSilentOrRefuses) {
    for (const Status status :
         {Status::kNoAnswer, Status::kRefused, Status::kSendFailed, Status::kOnlyDiscovered}) {
        ScriptedDevice device = Printer();
        device.failure = [&](const Oid&) { return status; };
        EXPECT_EQ(status, ReadPrinter(device.MakeAsker()).lastStatus);
        const bool isSilent = status == Status::kNoAnswer || status == Status::kOnlyDiscovered;
        EXPECT_EQ(isSilent ? 2u : 1u, device.requests);
    }
    ScriptedDevice device = Printer();
    const Oid tray = *ParseOidOrName("prtInputCurrentLevel.3.1");
    bool isOff = false;
    device.failure = [&](const Oid& asked) {
        isOff |= asked == tray;
        return isOff ? Status::kNoAnswer : Status::kAnswered;
    };
    const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
    EXPECT_EQ(1u, answers.values.count(tray)) << "what came stays";
    EXPECT_TRUE(HasGap(answers, "trays", "prtInputCurrentLevel", "no answer"));
    EXPECT_TRUE(HasGap(answers, "alerts", "", "not asked"));
    EXPECT_FALSE(HasGap(answers, "supplies", "", ""));
    EXPECT_TRUE(HasGap(answers, "trays", "", "not asked"));
    EXPECT_EQ(5u, answers.gaps.size()) << "trays twice, alerts, panel, MAC address";
}

TEST(PrinterReader, WhatAnEarlyEndLeavesOutIsNotRead) {
    ScriptedDevice device = Printer();
    device.Text("prtMarkerSuppliesDescription.3.1", "Black");
    device.failure = [](const Oid& asked) {
        const bool isBefore = asked < OidOf("prtMarkerSuppliesSupplyUnit") ||
                              IsWithin(asked, OidOf("prtMarkerSuppliesDescription"));
        return isBefore ? Status::kAnswered : Status::kSendFailed;
    };
    EXPECT_EQ("Black: not read", SuppliesText(FactsOf(ReadPrinter(device.MakeAsker()))));
}

ScriptedDevice FullPrinter() {
    ScriptedDevice device = Printer();
    device.Texts({"sysDescr.0", "sysUpTime.0", "sysLocation.0"});
    device.Texts({"prtConsoleDisplayBufferText"}, {".3.1", ".3.2", ".3.3"});
    device.Texts({"prtMarkerSuppliesClass", "prtMarkerSuppliesType", "prtMarkerSuppliesLevel",
                  "prtMarkerSuppliesDescription", "prtInputName", "prtInputMediaName",
                  "prtAlertGroup", "prtAlertDescription", "prtAlertTime"},
                 {".3.1", ".3.2", ".3.4"});
    device.Texts({"ifType", "ifPhysAddress"}, {".1", ".2"});
    return device;
}

// Whatever it is: too long, or not given by the device.
TEST(PrinterReader, LosesOnlyTheVariableThatCannotBeRead) {
    ScriptedDevice whole = FullPrinter();
    const PrinterAnswers all = ReadPrinter(whole.MakeAsker());
    EXPECT_GT(all.values.size(), 35u);
    for (const Status status : {Status::kAnswered, Status::kUnreadable, Status::kNoAnswer,
                                Status::kOnlyDiscovered, Status::kRefused}) {
        for (const auto& [oid, value] : all.values) {
            // Without it, the device is read as one that lists no printer.
            if (IsWithin(oid, OidOf("hrDeviceType"))) continue;
            // A refusal of the first one is of all.
            if (status == Status::kRefused && IsWithin(oid, OidOf("sysUpTime"))) continue;
            ScriptedDevice device = FullPrinter();
            device.withheld[oid] = status;
            const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
            EXPECT_EQ(Status::kAnswered, answers.lastStatus) << NameText(oid);
            EXPECT_FALSE(answers.gaps.empty()) << NameText(oid);
            for (const auto& [other, otherValue] : all.values) {
                EXPECT_EQ(other != oid, answers.values.count(other) != 0)
                    << NameText(other) << " without " << NameText(oid);
            }
        }
    }
}

TEST(PrinterReader, RefusedTablesAreToldAndCostLittle) {
    ScriptedDevice device = FullPrinter();
    const Oid printerMib = {1, 3, 6, 1, 2, 1, 43};
    for (const auto& [oid, value] : device.variables)
        if (IsWithin(oid, printerMib)) device.withheld[oid] = Status::kRefused;
    const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
    EXPECT_EQ(Status::kAnswered, answers.lastStatus);
    EXPECT_TRUE(HasGap(answers, "serial number", "prtGeneralSerialNumber", "refused"));
    EXPECT_TRUE(HasGap(answers, "supplies", "prtMarkerSuppliesLevel", "refused"));
    EXPECT_EQ(1u, answers.values.count(*ParseOidOrName("ifPhysAddress.1")));
    EXPECT_GT(250u, device.requests);
}

// Each silence takes as long as the module waits.
TEST(PrinterReader, ASilentVariableLeavesTimeForOthers) {
    ScriptedDevice sparse = Printer();
    sparse.Texts({"sysDescr.0", "sysUpTime.0", "sysLocation.0"});
    const PrinterAnswers all = ReadPrinter(sparse.MakeAsker(), true);
    for (const auto& [oid, value] : sparse.variables) {
        if (IsWithin(oid, OidOf("hrDeviceType"))) continue;
        ScriptedDevice device = sparse;
        device.withheld[oid] = Status::kNoAnswer;
        int64_t nowMs = 0;
        Asker asker = device.MakeAsker();
        asker.nowMs = [&] { return nowMs; };
        asker.getNext = [&, ask = asker.getNext](const Oid& asked) {
            Answer answer = ask(asked);
            nowMs += answer.status == Status::kNoAnswer ? 10000 : 10;
            return answer;
        };
        const PrinterAnswers answers = ReadPrinter(asker, true);
        EXPECT_EQ(Status::kAnswered, answers.lastStatus) << NameText(oid) << ", " << nowMs;
        EXPECT_EQ(all.values.size() - all.values.count(oid), answers.values.size())
            << NameText(oid);
    }
}

// A table that ends before such a variable is complete.
TEST(PrinterReader, TwoSilentVariablesLeaveWhatIsBetween) {
    ScriptedDevice device = FullPrinter();
    for (const char* name : {"prtMarkerSuppliesType.3.1", "prtInputCurrentLevel.3.1"})
        device.withheld[*ParseOidOrName(name)] = Status::kNoAnswer;
    const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
    EXPECT_EQ(1u, answers.values.count(*ParseOidOrName("prtInputMediaName.3.1")));
    EXPECT_TRUE(HasGap(answers, "trays", "prtInputCurrentLevel", ""));
}

TEST(PrinterReader, EndsAColumnBeforeWhatCannotBeRead) {
    ScriptedDevice device = FullPrinter();
    device.Text("prtMarkerSuppliesLevel.4.1", "of another printer");
    const Oid other = {1, 3, 6, 1, 2, 1, 25, 3, 9, 9};
    device.variables[other] = {kOctetString, "after hrDeviceTable"};
    device.withheld[other] = Status::kUnreadable;
    EXPECT_TRUE(ReadPrinter(device.MakeAsker()).gaps.empty());
}

// The supply's row is known of other columns, so it is asked for before the end is.
TEST(PrinterReader, AColumnWithoutRowsIsNotGiven) {
    ScriptedDevice device = Printer();
    device.Texts({"prtMarkerSuppliesType"}, {".3.1", ".3.2"});
    device.Text("prtMarkerColorantValue.3.1", "black");
    device.withheld[*ParseOidOrName("prtMarkerColorantValue.3.1")] = Status::kUnreadable;
    const auto levels = [&] {
        std::string texts;
        for (const Supply& supply : FactsOf(ReadPrinter(device.MakeAsker())).supplies)
            texts += LevelText(supply.level) + ";";
        return texts;
    };
    EXPECT_EQ("not given;not given;", levels());
    device.Integer("prtMarkerSuppliesLevel.3.2", 9);
    device.withheld[*ParseOidOrName("prtMarkerSuppliesLevel.3.1")] = Status::kUnreadable;
    device.Integer("prtMarkerSuppliesLevel.3.1", 9);
    EXPECT_EQ("not read;9, maximum unknown;", levels());
}

// Of one datagram, or of two in a row.
TEST(PrinterReader, LossCostsNothing) {
    ScriptedDevice whole = FullPrinter();
    const size_t values = ReadPrinter(whole.MakeAsker()).values.size();
    for (const size_t lost : {1, 2}) {
        for (size_t period = lost * 2 + 1; period < 50; ++period) {
            ScriptedDevice device = FullPrinter();
            device.failure = [&](const Oid&) {
                const size_t place = device.requests % period;
                return place >= 2 && place < 2 + lost ? Status::kNoAnswer : Status::kAnswered;
            };
            const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
            EXPECT_EQ(values, answers.values.size()) << period;
            EXPECT_TRUE(answers.gaps.empty()) << period;
        }
    }
}

TEST(PrinterReader, EndlessTablesAreCut) {
    ScriptedDevice endless = Printer();
    for (int row = 1; row < 1000; ++row) endless.Integer("ifType." + std::to_string(row), 6);
    PrinterAnswers answers = ReadPrinter(endless.MakeAsker());
    EXPECT_TRUE(HasGap(answers, "MAC address", "ifType", "more rows"));
    EXPECT_LT(endless.requests, 400u);

    ScriptedDevice far = Printer();
    far.Integer("ifType.20000", 6);
    answers = ReadPrinter(far.MakeAsker());
    EXPECT_TRUE(HasGap(answers, "MAC address", "ifType", "index is over 16383"));
    EXPECT_EQ(1u, answers.values.count(*ParseOidOrName("ifType.20000")));
}

TEST(PrinterReader, TwoScalarsInARowAreNotRead) {
    ScriptedDevice device = FullPrinter();
    for (const char* name : {"sysName.0", "sysLocation.0"})
        device.withheld[*ParseOidOrName(name)] = Status::kUnreadable;
    const PrinterAnswers answers = ReadPrinter(device.MakeAsker());
    EXPECT_TRUE(HasGap(answers, "name", "sysName", ""));
    EXPECT_TRUE(HasGap(answers, "location", "sysLocation", ""));
}

TEST(PrinterReader, StopsWhenTheCallerAsks) {
    ScriptedDevice device = Printer();
    Asker asker = device.MakeAsker();
    asker.mayGoOn = [&] { return device.requests < 7; };
    EXPECT_TRUE(HasGap(ReadPrinter(asker), "model and state", "hrDeviceStatus", "stopped"));
    EXPECT_EQ(7u, device.requests);
}

TEST(PrinterReader, SlowDevicesAreAskedForTwoMinutes) {
    ScriptedDevice device = Printer();
    Asker asker = device.MakeAsker();
    asker.nowMs = [&] { return 5 + static_cast<int64_t>(device.requests) * 4000; };
    const PrinterAnswers answers = ReadPrinter(asker);
    EXPECT_EQ(30u, device.requests);
    EXPECT_TRUE(HasGap(answers, "alerts", "prtAlertSeverityLevel", "2 minutes"));
    EXPECT_TRUE(HasGap(answers, "alerts", "", "not asked"));
    EXPECT_TRUE(answers.isStopped);
    EXPECT_EQ(Status::kNoAnswer, answers.lastStatus);
}

TEST(Interfaces, AreReadAfterThePrinterAndInWords) {
    ScriptedDevice device(
        "sysName.0 s hall; ifType.1 i 24; ifType.2 i 6; ifAdminStatus.1 i 1; ifAdminStatus.2 i 1; "
        "ifOperStatus.1 i 9; ifOperStatus.2 i 2; ifPhysAddress.1 i 1; ifDescr.2 s LAN\x1B port; "
        "ifPhysAddress.2 x 02 10 20 30 40 50; ifSpeed.2 u 100000000");
    device.Integer("ifType.3.1", 6);  // no row of the table
    const Asker asker = device.MakeAsker();
    EXPECT_FALSE(ReadPrinter(asker).values.count(*ParseOidOrName("ifDescr.2")));
    const size_t before = 2 * device.requests;
    const PrinterAnswers answers = ReadPrinter(asker, true);
    EXPECT_EQ(7u, device.requests - before) << "three columns and their ends";
    EXPECT_TRUE(answers.gaps.empty());
    EXPECT_EQ(
        "Interfaces     Interface 1  9, software loopback, set to up\n"
        "               LAN\xEF\xBF\xBD port    down, 100 Mbit/s, 02:10:20:30:40:50, ethernet "
        "csmacd, set to up\n",
        ReportText({InterfaceSection(FactsOf(answers))}, {100}));
}

TEST(Interfaces, SpeedsHaveTheLargestUnit) {
    const std::pair<uint64_t, const char*> rows[] = {{0, ""},
                                                     {9600, "9.6 kbit/s"},
                                                     {1000000, "1 Mbit/s"},
                                                     {2500000000, "2.5 Gbit/s"},
                                                     {4294967295, "over 4.2 Gbit/s"}};
    for (const auto& [speed, text] : rows) EXPECT_EQ(text, SpeedText(speed));
}

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
    ScriptedDevice device(
        "hrDeviceType.3 o .1.3.6.1.2.1.25.3.1.5; hrDeviceType.4 o .1.3.6.1.2.1.25.3.1.5; "
        "prtGeneralSerialNumber.1 s VN1; prtAlertDescription.1.1 s VN1");
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
TEST(Levels, AreSignedAndNeverMoreThanFull) {
    constexpr int64_t kHuge = INT64_MAX;
    const std::string pages = "impressions";
    const std::tuple<Level, std::optional<int>, const char*> rows[] = {
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
    for (const auto& [level, percent, text] : rows) {
        EXPECT_EQ(percent, PercentOf(level)) << text;
        EXPECT_EQ(text, LevelText(level));
    }
}

}  // namespace
}  // namespace vndiscover::host
