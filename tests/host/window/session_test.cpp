#include "window/work/session.h"

#include <gtest/gtest.h>

#include <memory>

#include "host/model/scripted_device.h"
#include "model/scan/device_view.h"
#include "values/module_types.h"
#include "values/object_names.h"

namespace vndiscover::host {
namespace {

const std::string kMinutes[] = {"2026-11-25T04:10:00Z", "2026-11-25T04:20:00Z",
                                "2026-11-25T04:30:00Z"};

class Sessions : public testing::Test {
  protected:
    // The addresses that answered, each with what.
    using Answers = std::vector<std::pair<std::string, std::string>>;
    void Sweep(WorkerId worker, SweepKind kind, const Answers& answers) {
        SweepStep step;
        step.kind = kind;
        session_.BeginSweep(worker, step, "");
        for (const auto& [address, bytes] : answers)
            session_.AddAnswer(worker, {0, "", address, Received(bytes)});
        session_.EndSweep(worker, true);
    }
    std::string Read() {
        session_.Refresh();
        std::string addresses;
        for (const AskTarget& target : session_.TargetsToRead()) addresses += target.address + ";";
        return addresses;
    }
    Credentials credentials_;
    Session session_{credentials_};
};

// The sweep is still running, so that the device may still answer.
TEST_F(Sessions, RunningSweepIsNoSilence) {
    SweepStep step;
    step.kind = SweepKind::kWsd;
    session_.BeginSweep(WorkerId::kWsd, step, "");
    const DeviceRow row;
    EXPECT_EQ(ProtocolState::kPending, session_.ProtocolsOf(row).at(2).state);
    session_.EndSweep(WorkerId::kWsd, true);
    EXPECT_EQ(ProtocolState::kSilent, session_.ProtocolsOf(row).at(2).state);
}

// Also one that has only been added: its user asks for it.
TEST_F(Sessions, RefusalIsAskedOfAKnownDevice) {
    credentials_.security = std::make_shared<const Security>();
    session_.BeginSearch();
    Sweep(WorkerId::kSnmp, SweepKind::kSnmpV3, {});
    EXPECT_FALSE(session_.WhomToAskForARefusal());
    session_.AddByHand({{"10.77.1.9", "hall"}}, "");
    session_.Refresh();
    const auto target = session_.WhomToAskForARefusal();
    ASSERT_TRUE(target);
    EXPECT_EQ("10.77.1.9", target->address);
    EXPECT_EQ(SweepKind::kSnmpV3, target->Kind());
}

// Printers that only replied to a Probe, but no such computers; nobody who missed the search, even
// while the row says that the device is being read.
TEST_F(Sessions, SearchReadsWhoAnsweredItAndMayBeAPrinter) {
    for (const bool isFirst : {true, false}) {
        session_.BeginSearch();
        Sweep(WorkerId::kSnmp, SweepKind::kSnmpV1,
              isFirst ? Answers{{"10.77.1.1", "x"}} : Answers());
        Sweep(WorkerId::kWsd, SweepKind::kWsd,
              {{"10.77.1.4", Reply("urn:4", "Computer")},
               {"10.77.1.5", Reply("urn:5", "PrintDeviceType")}});
        session_.EndSearch();
        session_.BeginReading("10.77.1.1");
        Results::Read stopped = {{"10.77.1.1"}, "", {}};
        stopped.answers.isStopped = true;  // before anything came: as if it had not begun
        session_.AddReading(stopped);
        session_.BeginReading("10.77.1.1");
        EXPECT_EQ(isFirst ? "10.77.1.1;10.77.1.5;" : "10.77.1.5;", Read());
        EXPECT_EQ(isFirst ? 3u : 2u, session_.PresentDevices().size());
    }
}

// Its address may have changed.
TEST_F(Sessions, DeviceIsAskedWhereItAnsweredLast) {
    Scan scan;
    scan.sweeps = {{SweepKind::kSnmpV1, AnswerForm::kDocument, false, {}, ""}};
    scan.answers = {{0, kMinutes[0], "10.77.1.9", Received("{}")},
                    {0, kMinutes[1], "10.77.1.8", Received("{}")},
                    {0, kMinutes[2], "fe80::1", Received("{}")}};
    session_.SetScan(scan);
    EXPECT_EQ("10.77.1.8", session_.TargetOf({0, 1, 2})->address);
}

// Not as it answered an earlier search, if it has answered the last one otherwise; nor by what was
// removed from the settings. An added one may answer another community now.
TEST_F(Sessions, DeviceIsAskedAsItAnswersNow) {
    credentials_.security = std::make_shared<const Security>();
    credentials_.communities = {"old", "new"};
    const auto search = [&](bool isV3) {
        session_.BeginSearch();
        SweepStep step;
        step.kind = isV3 ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1;
        step.login = {"old", isV3 ? credentials_.security : nullptr};
        session_.BeginSweep(WorkerId::kSnmp, step, "");
        session_.AddAnswer(WorkerId::kSnmp, {0, "", "10.77.1.9", Received("x")});
        session_.EndSweep(WorkerId::kSnmp, true);
        session_.EndSearch();
        session_.Refresh();
        return *session_.TargetOf(session_.view.Row(0).answers);
    };
    EXPECT_TRUE(search(true).login.security);
    const AskTarget now = search(false);
    EXPECT_FALSE(now.login.security);
    EXPECT_EQ("old", now.login.community);
    EXPECT_TRUE(now.otherCommunities.empty());
    session_.AddByHand({{"10.77.1.9", "hall"}}, "");
    EXPECT_EQ((std::vector<std::string>{"new"}), search(false).otherCommunities);
    credentials_.communities = {"new"};
    EXPECT_EQ("new", search(false).login.community);
}

// Its reading is not that of who has its former address now.
TEST_F(Sessions, MovedDeviceHasItsOwnReading) {
    Scan scan;
    scan.sweeps = {{SweepKind::kSnmpV1, AnswerForm::kVariable, false, {}, ""},
                   {SweepKind::kSnmpV1, AnswerForm::kVariable, false, {}, ""}};
    const Answer serial = AnswersOf("prtGeneralSerialNumber.1 s S1").front();
    scan.answers = {{0, kMinutes[0], "10.77.1.20", serial}, {1, kMinutes[1], "10.77.1.31", serial}};
    session_.SetScan(scan);
    Results::Read read = {{"10.77.1.20"}, kMinutes[2], {}};
    read.answers.lastStatus = Status::kNoAnswer;
    session_.AddReading(read);
    session_.Refresh();
    EXPECT_EQ(Standing::Kind::kRead, session_.view.Row(0).standing.kind);
}

// Its first round, or the first try of a slow device, may be older than what the user has had read
// meanwhile; supplies are one thing.
TEST_F(Sessions, LateListReadingLeavesANewerState) {
    using Values = std::vector<std::pair<int, const char*>>;
    const auto add = [&](int minute, bool isForList, const Values& values,
                         Status end = Status::kAnswered) {
        Results::Read read = {{"10.77.1.1"}, kMinutes[minute], {}, isForList};
        read.answers.lastStatus = end;
        for (const auto& [at, variables] : values) {
            for (const Answer& one : AnswersOf(variables))
                (read.answers.values[one.oid] = one).time = kMinutes[at];
        }
        session_.AddReading(read);
    };
    add(0, true, {{0, "hrPrinterStatus.1 i 3"}});
    add(1, false,
        {{1,
          "sysUpTime.0 i 1; hrPrinterStatus.1 i 4; prtAlertCode.1.1 i 3; "
          "prtMarkerSuppliesLevel.1.1 i 9"}});
    for (int round = 0; round < 2; ++round)
        add(2, true,
            {{1, "hrPrinterStatus.1 i 3"},
             {0, "prtMarkerSuppliesType.1.1 i 3"},
             {2, "prtMarkerSuppliesLevel.1.1 i 7"}});
    add(2, true, {{2, "prtMarkerSuppliesType.1.1 i 3"}}, Status::kNoAnswer);
    session_.Refresh();
    const PrinterFacts& facts = *session_.view.Row(0).facts;
    EXPECT_EQ("printing", facts.printerStatus);
    EXPECT_EQ(kMinutes[1], facts.readTime);
    EXPECT_EQ(1u, facts.alerts.size());
    EXPECT_EQ(9, facts.supplies.at(0).level.level);
}

// Without a user, one that has answered over SNMPv3 is asked over SNMPv1.
TEST_F(Sessions, ReadingIsOfTheProtocolThatWasAsked) {
    Scan scan;
    scan.sweeps = {{SweepKind::kSnmpV3, AnswerForm::kDocument, false, {}, ""}};
    scan.answers = {{0, "", "10.77.1.9", Received("{}")}};
    session_.SetScan(scan);
    session_.Refresh();
    Results::Read read;
    read.target = session_.TargetOf(session_.view.Row(0).answers).value();
    EXPECT_EQ(std::vector<std::string>{"public"}, read.target.otherCommunities);
    read.answers.lastStatus = Status::kNoAnswer;
    session_.AddReading(read);
    session_.Refresh();
    const DeviceRow& row = session_.view.Row(0);
    EXPECT_EQ(Standing::Kind::kNoAnswer, row.standing.kind);
    const std::vector<ProtocolLine> protocols = session_.ProtocolsOf(row);
    EXPECT_EQ(ProtocolState::kSilent, protocols[0].state);
    EXPECT_EQ(ProtocolState::kAnswered, protocols[1].state);
    credentials_.security = std::make_shared<const Security>();
    EXPECT_EQ(SweepKind::kSnmpV3, session_.TargetOf(row.answers)->Kind());
}

// With the second round of a list by another login.
TEST_F(Sessions, WhatOnlyAFormerUserCouldReadGoes) {
    const auto location = [&](std::shared_ptr<const Security> user, const char* variable,
                              bool isStateOnly) {
        const AskTarget target = {"10.77.1.9", {"", std::move(user)}};
        Results::Read round = {target, "", {}, true, false, isStateOnly};
        for (const Answer& one : AnswersOf(variable)) round.answers.values[one.oid] = one;
        session_.AddReading(round);
        session_.Refresh();
        return session_.view.Row(0).facts->location;
    };
    EXPECT_EQ("hall", location(std::make_shared<const Security>(), "sysLocation.0 s hall", false));
    EXPECT_EQ("hall", location(nullptr, "sysName.0 s hall", true));
    EXPECT_EQ("", location(nullptr, "sysName.0 s hall", false));
}

}  // namespace
}  // namespace vndiscover::host
