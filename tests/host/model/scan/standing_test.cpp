// What a list may still tell of a device, after later searches and readings.
#include "model/scan/standing.h"

#include <gtest/gtest.h>

#include <numeric>

#include "host/model/scripted_device.h"
#include "model/scan/compare.h"
#include "model/scan/device_merge.h"
#include "model/scan/device_view.h"
#include "model/scan/scan.h"
#include "model/scan/scan_file.h"
#include "values/module_types.h"
#include "values/object_names.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

std::string At(int minute) { return "2026-11-25T04:" + std::to_string(10 + minute) + ":00Z"; }

class StandingTest : public testing::Test {
  protected:
    // A search at a minute, by SNMPv1 with a community, that these answered.
    void Search(int minute, size_t login, const std::vector<const char*>& addresses,
                bool isComplete = true) {
        ScanSweep sweep = {SweepKind::kSnmpV1, AnswerForm::kValue, false, {1, 3}, At(minute)};
        sweep.search = ++searches_;
        sweep.login = login;
        sweep.isComplete = isComplete;
        scan_.sweeps.push_back(sweep);
        for (const char* address : addresses)
            scan_.answers.push_back({scan_.sweeps.size() - 1, At(minute), address, Received("x")});
    }
    void Read(int minute, const char* address, bool isWhole, const std::string& variables) {
        ScanSweep sweep = {SweepKind::kSnmpV1, AnswerForm::kVariable, false, {}, At(minute)};
        sweep.isComplete = isWhole;
        scan_.sweeps.push_back(sweep);
        for (const Answer& one : AnswersOf(variables))
            scan_.answers.push_back({scan_.sweeps.size() - 1, At(minute), address, one});
    }
    std::string State(const char* address, const Reading* reading = nullptr,
                      bool isSearching = false, bool isBeingRead = false) const {
        for (const FoundDevice& device : MakeDevices(scan_)) {
            if (device.identity.Of(MergeKey::kAddress).count(address) == 0) continue;
            const Standing standing =
                StandingOf(scan_, device, reading, isBeingRead, LastSearches(scan_, isSearching));
            return StateText(standing, SummaryOf(*device.facts));
        }
        return "no device";
    }
    std::string Since(int minute) const { return "no answer since " + ShortTime(At(minute)); }

    Scan scan_;
    size_t searches_ = 0;
};

TEST_F(StandingTest, DeviceOutsideTheLastSearchIsSilent) {
    Search(0, 1, {"10.0.0.1", "10.0.0.2"});
    EXPECT_EQ("never read", State("10.0.0.1"));
    Search(1, 1, {"10.0.0.2"});
    EXPECT_EQ(Since(0), State("10.0.0.1"));
    EXPECT_EQ("never read", State("10.0.0.2"));
    EXPECT_EQ("never read", State("10.0.0.1", nullptr, true)) << "it may still answer";
    EXPECT_EQ(Since(0), State("10.0.0.1", nullptr, false, true)) << "it is being read";
    EXPECT_EQ("being read", State("10.0.0.2", nullptr, false, true));
    Read(2, "10.0.0.1", true, "hrPrinterStatus.1 i 3");
    EXPECT_EQ("idle", State("10.0.0.1")) << "it was read after the search";
    Search(2, 1, {"10.0.0.2"});
    EXPECT_EQ(Since(2), State("10.0.0.1")) << "it was read before, within the same second";
    Search(3, 1, {"10.0.0.1"});
    EXPECT_EQ("idle", State("10.0.0.1"));
    EXPECT_EQ(Since(2), State("10.0.0.2"));
}

// Also one that was stopped does not tell.
TEST_F(StandingTest, SearchThatDoesNotAskADeviceTellsNothingOfIt) {
    Search(0, 1, {"10.0.0.1"});
    Search(1, 2, {});
    EXPECT_EQ("never read", State("10.0.0.1"));
    Search(2, 1, {}, false);
    EXPECT_EQ("never read", State("10.0.0.1"));
    Search(3, 1, {});
    Search(4, 2, {});
    Search(5, 1, {}, false);
    EXPECT_EQ(Since(0), State("10.0.0.1")) << "an earlier one has told";
    RemoveFormerAnswers(scan_);
    EXPECT_EQ(Since(0), State("10.0.0.1"));
}

TEST_F(StandingTest, ReadingThatFailedIsToldInItsOwnWords) {
    Search(0, 1, {"10.0.0.1"});
    Reading reading = {"10.0.0.1", SweepKind::kSnmpV1, {}, false, At(1)};
    reading.end.spentMs = 12400;
    const auto with = [&](Status status, const char* problem, bool hasValues) {
        reading.end.lastStatus = status;
        reading.end.lastProblem = problem;
        reading.hasValues = hasValues;
        return State("10.0.0.1", &reading);
    };
    EXPECT_EQ("no answer", with(Status::kNoAnswer, "no answer", false));
    EXPECT_EQ("no answer", State("10.0.0.1", &reading, false, true)) << "while it is asked again";
    EXPECT_EQ("incomplete, no answer after 12 s", with(Status::kNoAnswer, "no answer", true));
    EXPECT_EQ("refused: wrong user", with(Status::kRefused, "refused: wrong user", false));
    EXPECT_EQ("no such value", with(Status::kAnswered, "", true));
    reading.end.gaps = {{"", "hrPrinterStatus", "no answer"}};
    EXPECT_EQ("incomplete, state not read", with(Status::kAnswered, "", true));
    Read(1, "10.0.0.1", false, "hrPrinterStatus.1 i 3");
    EXPECT_EQ("idle (incomplete, no answer after 12 s)", with(Status::kNoAnswer, "", true));
    Search(2, 1, {"10.0.0.1"});
    EXPECT_EQ("idle (incomplete, no answer after 12 s)", State("10.0.0.1", &reading))
        << "a search's answer tells nothing of its state";
    Search(3, 1, {});
    EXPECT_EQ(Since(2), State("10.0.0.1", &reading));
    reading.time = At(4);
    EXPECT_EQ("refused: wrong user", with(Status::kRefused, "refused: wrong user", false));
}

TEST_F(StandingTest, WhatAPrinterNoLongerSaysIsNotTold) {
    const auto facts = [&] { return *MakeDevices(scan_).at(0).facts; };
    Read(0, "10.0.0.1", true,
         "hrPrinterStatus.1 i 3; hrPrinterDetectedErrorState.1 x 08; sysUpTime.0 i 1; "
         "prtMarkerSuppliesDescription.1.1 s Toner; prtMarkerSuppliesDescription.1.2 s Drum; "
         "prtMarkerSuppliesLevel.1.1 i 7; prtAlertDescription.1.1 s Door open");
    scan_.sweeps.back().kind = SweepKind::kSnmpV3;
    EXPECT_EQ(2u, facts().supplies.size());
    EXPECT_EQ(7, facts().supplies[0].level.level);
    EXPECT_EQ(1u, facts().alerts.size());
    // For the list, without alerts: that of a former state may be over.
    Read(1, "10.0.0.1", false,
         "hrPrinterStatus.1 i 3; hrPrinterDetectedErrorState.1 x 00; "
         "prtMarkerSuppliesDescription.1.1 s Toner");
    EXPECT_EQ(1u, facts().supplies.size());
    EXPECT_FALSE(facts().supplies[0].level.level) << "of a former reading";
    EXPECT_EQ(0u, facts().alerts.size());
    EXPECT_EQ("idle", State("10.0.0.1"));
    EXPECT_EQ(At(1), facts().readTime);
    EXPECT_EQ(At(0), facts().upTicksTime);
    scan_.sweeps.back().isList = true;
    EXPECT_EQ("", facts().upTicksTime) << "by a protocol that it is no longer asked by";
    scan_.sweeps.back().kind = SweepKind::kSnmpV3;  // and its user is removed
    Read(2, "10.0.0.1", true, "hrDeviceStatus.1 i 2");
    EXPECT_EQ(0u, facts().supplies.size());
    EXPECT_EQ("", facts().printerStatus);
}

// The first of three levels was read anew, and the column before them, but of one row.
TEST_F(StandingTest, CutReadingReplacesOnlyWhatItRead) {
    Read(0, "10.0.0.1", false,
         "prtMarkerSuppliesType.1.1 i 3; prtMarkerSuppliesType.1.2 i 3; prtMarkerSuppliesLevel.1.1 "
         "i 7; prtMarkerSuppliesLevel.1.2 i 8");
    Read(1, "10.0.0.1", false, "prtMarkerSuppliesType.1.1 i 4; prtMarkerSuppliesLevel.1.1 i 6");
    scan_.sweeps.back().isCut = true;
    std::string problem;
    scan_ = *ReadScan(*WriteScan(scan_, problem), problem);
    const std::vector<Supply> supplies = MakeDevices(scan_).at(0).facts->supplies;
    ASSERT_EQ(2u, supplies.size());
    EXPECT_EQ(6, supplies[0].level.level);
    EXPECT_EQ(8, supplies[1].level.level);
    EXPECT_EQ(4u, RemoveFormerAnswers(scan_).size() - 2);
    EXPECT_EQ(At(0), scan_.answers[1].time);
}

// A list that is refreshed for days stays as small as it was.
TEST_F(StandingTest, ReplacedAnswersAreRemoved) {
    for (int round = 0; round < 3; ++round) {
        Search(round, 1, {"10.0.0.1", "10.0.0.2"});
        Read(round, "10.0.0.1", true, "hrPrinterStatus.1 i 3");
    }
    scan_.splits = {{0, 4}};
    const std::vector<size_t> places = RemoveFormerAnswers(scan_);
    EXPECT_EQ((std::vector<size_t>{0, 1, 2, 0, 1, 2, 0, 1, 2}), places);
    EXPECT_EQ(3u, scan_.answers.size());
    EXPECT_EQ(2u, scan_.sweeps.size());
    ASSERT_EQ(1u, scan_.splits.size());
    EXPECT_EQ(1u, scan_.splits[0].second);
    EXPECT_EQ("idle", State("10.0.0.1"));
    EXPECT_EQ((std::vector<size_t>{0, 1, 2}), RemoveFormerAnswers(scan_));
}

// Only its readings tell that both answers are of one.
TEST_F(StandingTest, DeviceWithTwoAddressesStaysOne) {
    Search(0, 1, {"10.0.0.1", "10.0.0.2"});
    for (const char* address : {"10.0.0.1", "10.0.0.2"})
        Read(0, address, true, "hrPrinterStatus.1 i 3; prtGeneralSerialNumber.1 s S1");
    EXPECT_EQ(1u, MakeDevices(scan_).size());
    RemoveFormerAnswers(scan_);
    EXPECT_EQ(1u, MakeDevices(scan_).size());
}

TEST_F(StandingTest, PrinterReplacedAtItsAddressIsSilent) {
    const auto read = [&](int minute, const std::string& serial, const std::string& status) {
        Read(minute, "10.0.0.1", false, "hrPrinterStatus.1 i " + status);
        Read(minute, "10.0.0.1", true,
             "hrPrinterStatus.1 i " + status + "; prtGeneralSerialNumber.1 s " + serial);
    };
    Search(0, 1, {"10.0.0.1"});
    read(0, "first", "4");
    Search(1, 1, {"10.0.0.1"});
    EXPECT_EQ("printing", State("10.0.0.1"));
    read(1, "second", "3");
    EXPECT_EQ(Since(0), State("10.0.0.1"));
    const std::vector<FoundDevice> present = PresentDevices(scan_);
    ASSERT_EQ(1u, present.size());
    EXPECT_EQ("second", present[0].facts->serialNumber);
    EXPECT_EQ("idle", present[0].facts->printerStatus);
    EXPECT_EQ(4u, present[0].answers.size()) << "its search, and both readings";
    RemoveFormerAnswers(scan_);
    Search(2, 1, {"10.0.0.1"});
    EXPECT_EQ(Since(0), State("10.0.0.1")) << "after another search";
    EXPECT_EQ("second", PresentDevices(scan_).at(0).facts->serialNumber) << "which it answered";
}

// No search reaches it, and only its readings tell.
TEST_F(StandingTest, PrinterReplacedBeyondARouterIsSilent) {
    for (const std::string serial : {"first", "second"})
        Read(0, "10.9.0.5", true, "hrPrinterStatus.1 i 3; prtGeneralSerialNumber.1 s " + serial);
    EXPECT_EQ(Since(0), State("10.9.0.5"));
    const std::vector<FoundDevice> present = PresentDevices(scan_);
    ASSERT_EQ(1u, present.size());
    EXPECT_EQ("second", present[0].facts->serialNumber);
}

// Its alerts there are over if it is read elsewhere without them.
TEST_F(StandingTest, FormerAddressTellsNothingOfNow) {
    Read(0, "10.0.0.1", true,
         "hrPrinterStatus.1 i 3; prtGeneralSerialNumber.1 s S1; prtMarkerSuppliesDescription.1.1 s "
         "Toner; prtMarkerSuppliesDescription.1.2 s Drum; prtAlertDescription.1.1 s Door open");
    Read(1, "10.0.0.2", false,
         "prtGeneralSerialNumber.1 s S1; prtMarkerSuppliesDescription.1.1 s Toner");
    EXPECT_EQ(1u, MakeDevices(scan_).at(0).facts->supplies.size());
    Read(2, "10.0.0.2", true, "prtGeneralSerialNumber.1 s S1");
    EXPECT_TRUE(MakeDevices(scan_).at(0).facts->alerts.empty());
}

TEST_F(StandingTest, WorstIsToldFirstWithItsTime) {
    PrinterSummary summary;
    summary.state = "door open";
    summary.severity = Severity::kCritical;
    Standing standing = {Standing::Kind::kRead, At(1), ""};
    EXPECT_EQ("door open, as of " + ShortTime(At(0)), StateLine(standing, summary, At(0)));
    summary.severity = Severity::kAttention;
    summary.supplyProblem = "a supply is low";
    PrinterFacts facts;
    EXPECT_EQ("door open, a supply is low", StateCell(standing, summary, facts));
    facts.errors = {"lowToner"};
    EXPECT_EQ("door open", StateCell(standing, summary, facts));
    summary.severity = Severity::kCritical;
    standing.kind = Standing::Kind::kNotFound;
    EXPECT_EQ(Since(1) + "; before: door open, as of " + ShortTime(At(0)),
              StateLine(standing, summary, At(0)));
}

TEST_F(StandingTest, ChangesAreOfKnownStates) {
    ChangeLog log;
    DeviceRow row;
    row.Text(Column::kAddress) = "10.0.0.1";
    const auto take = [&](Standing::Kind kind, const char* state, const Level& level) {
        PrinterFacts facts;
        facts.supplies = {{"Toner", "", "", level}};
        row.summary = SummaryOf(facts);
        row.summary.state = state;
        row.standing.kind = kind;
        row.Text(Column::kState) = StateText(row.standing, row.summary);
        return log.Add(row, At(0));
    };
    const auto of = [](int level) { return Level{level, 1000, ""}; };
    using Kind = Standing::Kind;
    EXPECT_FALSE(take(Kind::kNeverRead, "", of(300)));
    EXPECT_FALSE(take(Kind::kRead, "door open", of(300))) << "nothing was known before";
    EXPECT_FALSE(take(Kind::kBeingRead, "door open", of(300)));
    EXPECT_FALSE(take(Kind::kRead, "door open", of(290)));
    EXPECT_FALSE(log.IsMarked(row));
    EXPECT_TRUE(take(Kind::kRead, "jammed", of(290)));
    EXPECT_TRUE(take(Kind::kRead, "jammed", of(9)));
    EXPECT_TRUE(take(Kind::kRead, "jammed", of(0)));
    log.RecordStates({row});  // by another limit
    EXPECT_TRUE(log.IsMarked(row));
    EXPECT_FALSE(take(Kind::kRead, "jammed", of(0)));
    EXPECT_TRUE(take(Kind::kRead, "jammed", {0, 100, "", false, true}));
    log.Unmark(row);
    EXPECT_FALSE(log.IsMarked(row));
    log.ForgetStates();
    EXPECT_FALSE(take(Kind::kRead, "idle", of(300))) << "of another list";
    const auto after = [&](size_t back) { return log.Changes().at(back).after; };
    ASSERT_EQ(4u, log.Changes().size());
    EXPECT_EQ("jammed, a waste container is full", after(0));
    EXPECT_EQ("jammed, a supply is empty", after(1));
    EXPECT_EQ("jammed, a supply is low", after(2));
    EXPECT_EQ("door open", log.Changes()[3].before);
    PrinterFacts lowToner;
    lowToner.errors = {"lowToner"};
    row.facts = std::make_shared<const PrinterFacts>(lowToner);
    EXPECT_TRUE(take(Kind::kRead, "low toner", of(9)));
    EXPECT_EQ("low toner", after(0)) << "which says it of the supply";
    EXPECT_TRUE(take(Kind::kRead, "low toner", of(0)));
    EXPECT_EQ("low toner, a supply is empty", after(0));
    row.facts = nullptr;
    EXPECT_TRUE(take(Kind::kRead, "idle", of(300)));
    // One that answers a search again still has to be read.
    EXPECT_TRUE(take(Kind::kNotFound, "idle", of(300)));
    PrinterFacts former;
    former.readTime = At(0);
    row.facts = std::make_shared<const PrinterFacts>(former);
    EXPECT_FALSE(take(Kind::kNotFound, "idle", of(300)));
    EXPECT_FALSE(take(Kind::kRead, "idle", of(300)));
    former.readTime = At(1);
    row.facts = std::make_shared<const PrinterFacts>(former);
    EXPECT_TRUE(take(Kind::kRead, "idle", of(300)));
    row.facts = nullptr;
    // Two of one serial number, which a person has separated.
    row.Text(Column::kSerial) = "0042";
    row.isSeparated = true;
    EXPECT_FALSE(take(Kind::kRead, "idle", of(300)));
    row.Text(Column::kAddress) = "10.0.0.2";
    EXPECT_FALSE(take(Kind::kRead, "jammed", of(300))) << "the other is the first of its key";
    row.Text(Column::kAddress) = "10.0.0.1";
    EXPECT_FALSE(take(Kind::kRead, "idle", of(300)));
    // Time passes by itself.
    for (const auto& [kind, isNew] : {std::pair(Kind::kIncomplete, true),
                                      {Kind::kIncomplete, false},
                                      {Kind::kNotFound, true},
                                      {Kind::kNotFound, false}}) {
        row.standing.note = isNew ? "no answer after 12 s" : "no answer after 13 s";
        row.standing.lastAnswer = At(isNew);
        EXPECT_EQ(isNew, take(kind, "idle", of(300)));
    }
    EXPECT_EQ("idle (incomplete, no answer after 13 s)", log.Changes()[0].before);
}

// After the first of two rounds, a state stands beside the supplies of the search before.
TEST_F(StandingTest, ChangesAreOfWholeReadings) {
    ChangeLog log;
    Reading reading = {"10.0.0.1", SweepKind::kSnmpV1, {}, true};
    const auto add = [&](int minute, bool isStateOnly) {
        reading.time = At(minute);
        reading.isStateOnly = isStateOnly;
        const auto standing = [&](const FoundDevice& device) {
            return StandingOf(scan_, device, &reading, false, LastSearches(scan_, false));
        };
        return log.Add(MakeRows({scan_, {}, {}}, MakeDevices(scan_), standing).at(0), At(minute));
    };
    Read(0, "10.0.0.1", true,
         "hrPrinterStatus.1 i 3; hrPrinterDetectedErrorState.1 x 08; "
         "prtMarkerSuppliesMaxCapacity.1.1 i 64; prtMarkerSuppliesLevel.1.1 i 1");
    EXPECT_FALSE(add(0, false));
    Read(1, "10.0.0.1", false, "hrPrinterDetectedErrorState.1 x 00");
    EXPECT_FALSE(add(1, true));
    Read(2, "10.0.0.1", false, "prtMarkerSuppliesLevel.1.1 i 63");
    EXPECT_TRUE(add(2, false));
    ASSERT_EQ(1u, log.Changes().size());
    EXPECT_EQ("door open, a supply is low", log.Changes()[0].before);
    EXPECT_EQ("idle", log.Changes()[0].after);
}

class Protocols : public testing::Test {
  protected:
    // "SNMPv1 answered;SNMPv1 IPv6 silent: why;"
    std::string Shown(const std::vector<Reading>& readings = {},
                      const std::vector<size_t>& running = {}) const {
        constexpr const char* kNames[] = {"SNMPv1", "SNMPv3", "WSD"};
        constexpr const char* kStates[] = {" answered", " no value", " refused",
                                           " pending",  " silent",   " not asked"};
        std::vector<size_t> answers(scan_.answers.size());
        std::iota(answers.begin(), answers.end(), size_t{0});
        std::string all;
        for (const ProtocolLine& line : ProtocolsOf(scan_, answers, readings, running)) {
            all += kNames[static_cast<size_t>(line.kind)];
            all +=
                std::string(line.useIPv6 ? " IPv6" : "") + kStates[static_cast<size_t>(line.state)];
            all += (line.note.empty() ? "" : ": ") + line.note + ";";
        }
        return all;
    }
    static ScanSweep Sweep(SweepKind kind, bool useIPv6 = false) {
        const bool isWsd = kind == SweepKind::kWsd;
        return {kind, isWsd ? AnswerForm::kReply : AnswerForm::kValue, useIPv6, {1, 3}, ""};
    }
    static Reading Ended(SweepKind kind, Status status, const char* address = "10.0.0.1") {
        Reading reading = {address, kind, {}};
        reading.end.lastStatus = status;
        reading.end.lastProblem = "why";
        return reading;
    }
    Scan scan_;
};

TEST_F(Protocols, SayWhichSweepsADeviceAnswered) {
    scan_.sweeps = {Sweep(SweepKind::kSnmpV1), Sweep(SweepKind::kSnmpV3),
                    Sweep(SweepKind::kSnmpV3, true)};
    scan_.answers = {{0, "", "10.0.0.1", Received("")}};
    EXPECT_EQ("SNMPv1 no value;SNMPv3 silent;SNMPv3 IPv6 pending;WSD not asked;", Shown({}, {2}));
    scan_.answers.push_back({0, "", "10.0.0.1", Received("x")});
    scan_.answers.push_back({2, "", "fe80::1", Received("x")});
    EXPECT_EQ("SNMPv1 answered;SNMPv3 silent;SNMPv3 IPv6 answered;WSD not asked;", Shown({}, {2}));
}

// A device that answers may have no address there.
TEST_F(Protocols, IPv6SilenceOfAnAnsweringDeviceIsNotShown) {
    scan_.sweeps = {Sweep(SweepKind::kSnmpV1), Sweep(SweepKind::kSnmpV1, true)};
    scan_.answers = {{0, "", "10.0.0.1", Received("x")}};
    EXPECT_EQ("SNMPv1 answered;SNMPv3 not asked;WSD not asked;", Shown());
    scan_.sweeps[1].search = 1;  // and it was stopped
    EXPECT_EQ("SNMPv1 answered;SNMPv3 not asked;WSD not asked;", Shown());
    scan_.answers.clear();
    EXPECT_EQ("SNMPv1 silent;SNMPv1 IPv6 not asked;SNMPv3 not asked;WSD not asked;", Shown());
}

TEST_F(Protocols, SayWhyAReadingFailed) {
    scan_.sweeps = {Sweep(SweepKind::kWsd), Sweep(SweepKind::kSnmpV3)};
    scan_.answers = {{0, "", "10.0.0.1", Received("<a/>")}};
    for (const auto& [status, state] : {std::pair(Status::kRefused, "refused"),
                                        {Status::kOnlyDiscovered, "refused"},
                                        {Status::kAnswered, "no value"},
                                        {Status::kSendFailed, "silent"}})  // to the sweep
        EXPECT_EQ("SNMPv1 not asked;SNMPv3 " + std::string(state) + ": why;WSD answered;",
                  Shown({Ended(SweepKind::kSnmpV3, status)}));
    // Not swept by SNMPv1, but read.
    Reading reading = Ended(SweepKind::kSnmpV1, Status::kNoAnswer);
    EXPECT_EQ("SNMPv1 silent: why;SNMPv3 silent;WSD answered;", Shown({reading}));
    reading.end.isStopped = true;  // by the user
    EXPECT_EQ("SNMPv1 not asked;SNMPv3 silent;WSD answered;", Shown({reading}));
    reading = Ended(SweepKind::kSnmpV1, Status::kNoAnswer, "fe80::1");
    EXPECT_EQ("SNMPv1 not asked;SNMPv1 IPv6 silent: why;SNMPv3 silent;WSD answered;",
              Shown({reading}));
}

// A variable that came after the sweep is an answer; that sweeps of it exist is no request.
TEST_F(Protocols, AReadingThatBroughtValuesIsAnAnswer) {
    scan_.sweeps = {Sweep(SweepKind::kWsd),
                    {SweepKind::kSnmpV1, AnswerForm::kVariable, false, {}, ""}};
    scan_.answers = {{0, "", "10.0.0.1", Received("<a/>")}};
    EXPECT_EQ("SNMPv1 not asked;SNMPv3 not asked;WSD answered;", Shown());
    scan_.answers.push_back({1, "", "10.0.0.1", AnsweredWith({1, 3}, kOctetString, "hall")});
    EXPECT_EQ("SNMPv1 answered: why;SNMPv3 not asked;WSD answered;",
              Shown({Ended(SweepKind::kSnmpV1, Status::kNoAnswer)}));
}

}  // namespace
}  // namespace vndiscover::host
