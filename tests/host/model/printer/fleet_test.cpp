// In which order many printers are read, and what each costs.
#include "model/printer/fleet.h"

#include <gtest/gtest.h>

#include <deque>

#include "host/model/scripted_device.h"

namespace vndiscover::host {
namespace {

constexpr size_t kSupplies = 4;

ScriptedDevice Printer(int errors, int level) {
    ScriptedDevice device(
        "sysDescr.0 s VN LaserPro 410, firmware 2.1; sysName.0 s hall; hrDeviceStatus.7 i 2; "
        "hrDeviceType.7 o .1.3.6.1.2.1.25.3.1.5; hrDeviceDescr.7 s VN LaserPro 410; "
        "hrPrinterStatus.7 i 3; prtGeneralSerialNumber.7 s VN1; ifPhysAddress.1 s 123456");
    device.Text("hrPrinterDetectedErrorState.7", std::string(1, static_cast<char>(errors)));
    for (size_t supply = 1; supply <= kSupplies; ++supply) {
        const std::string row = ".7." + std::to_string(supply);
        device.Text("prtMarkerSuppliesDescription" + row, "Toner " + row);
        device.Integer("prtMarkerSuppliesMaxCapacity" + row, 100);
        device.Integer("prtMarkerSuppliesLevel" + row, level);
    }
    return device;
}

class FleetTest : public testing::Test {
  protected:
    // Adds a device whose requests each take so long.
    ScriptedDevice& Add(ScriptedDevice device, int64_t requestMs = 10) {
        fleet_.Add(std::to_string(devices_.size()), 0, {});
        devices_.push_back(std::move(device));
        times_.push_back(requestMs);
        return devices_.back();
    }

    // Does one job; what it was is added to the log, "2 state", "2 rest late".
    bool Step() {
        const auto job = fleet_.Next();
        if (!job) return false;
        Asker asker = devices_[job->index].MakeAsker();
        asker.getNext = [this, job, ask = asker.getNext](const Oid& oid) {
            nowMs_ += times_[job->index];
            return ask(oid);
        };
        asker.nowMs = [this] { return nowMs_; };
        log_ +=
            job->address + (job->isState ? " state" : " rest") + (job->isLate ? " late\n" : "\n");
        fleet_.Done(ReadJob(*job, asker));
        return true;
    }
    void Finish() {
        while (Step()) {
        }
        EXPECT_TRUE(fleet_.IsOver());
    }

    PrinterSummary Summary(size_t device) {
        return SummaryOf(FactsOf(fleet_.Devices()[device].answers));
    }

    Fleet fleet_;
    std::deque<ScriptedDevice> devices_;
    std::vector<int64_t> times_;
    int64_t nowMs_ = 0;
    std::string log_;
};

TEST_F(FleetTest, StatesComeFirstInFourRequestsEach) {
    Add(Printer(0x08, 50));  // door open
    Add(Printer(0, 4));
    EXPECT_EQ("state of 0 of 2", fleet_.Progress());
    Step();
    Step();
    for (const ScriptedDevice& device : devices_) EXPECT_EQ(4u, device.requests);
    EXPECT_EQ("0 of 2, 1 critical, 0 need attention", fleet_.Progress());
    EXPECT_STREQ("not read", MissingText(fleet_.Devices()[0].answers.gaps, "name"));
    Finish();
    EXPECT_EQ("0 state\n1 state\n0 rest\n1 rest\n", log_);
    EXPECT_EQ("door open", Summary(0).state);
    EXPECT_EQ("4 % Toner .7.1", Summary(1).supply);
    EXPECT_EQ(Severity::kAttention, Summary(1).severity) << "its toner is low";
    // A list of hundreds of printers must not take minutes.
    for (const ScriptedDevice& device : devices_) EXPECT_GE(20 + 6 * kSupplies, device.requests);
    for (const auto& [oid, answer] : fleet_.Devices()[0].answers.values)
        EXPECT_FALSE(answer.time.empty()) << "its own, in whichever round";
}

// It is no other kind of device because of that, and what it is shows another column.
TEST_F(FleetTest, PrinterThatKeepsItsStateToItselfStaysOne) {
    for (const bool hasErrors : {true, false}) {
        ScriptedDevice& device = Add(Printer(0x08, 50));
        device.Object("hrDeviceType.1", ".1.3.6.1.2.1.25.3.1.3");
        device.withheld[*ParseOidOrName("hrPrinterStatus.7")] = Status::kNoAnswer;
        if (!hasErrors) device.variables.erase(*ParseOidOrName("hrPrinterDetectedErrorState.7"));
    }
    Finish();
    EXPECT_EQ("0 state\n1 state\n0 rest\n1 rest\n", log_);
    EXPECT_EQ("door open", Summary(0).state);
    EXPECT_EQ("50 % Toner .7.1", Summary(1).supply);
    for (const FleetDevice& device : fleet_.Devices()) EXPECT_TRUE(IsStateUnread(device.answers));
}

TEST_F(FleetTest, WhatIsKnownIsNotRequestedAgain) {
    ScriptedDevice& device = Add(Printer(0, 50));
    device.failure = [&](const Oid&) {  // once, while supplies are read
        times_[0] = device.requests == 16 ? 10000 : 10;
        return device.requests == 17 ? Status::kNoAnswer : Status::kAnswered;
    };
    Finish();
    EXPECT_EQ("0 state\n0 rest\n0 rest late\n", log_);
    EXPECT_EQ(kSupplies, FactsOf(fleet_.Devices()[0].answers).supplies.size());
    EXPECT_GE(20 + 6 * kSupplies + 10, device.requests);
}

// By which its IPv4 and IPv6 addresses are then merged.
TEST_F(FleetTest, WithoutASerialNumberTheMacAddressIsRead) {
    Add(Printer(0, 50));
    ScriptedDevice& device = Add(Printer(0, 50));
    device.variables.erase(*ParseOidOrName("prtGeneralSerialNumber.7"));
    device.Add("ifPhysAddress.2 s ABCDEF; ifOperStatus.1 i 2; ifOperStatus.2 i 1");
    Finish();
    const PrinterFacts first = FactsOf(fleet_.Devices()[0].answers);
    EXPECT_EQ("", first.macAddress);
    EXPECT_STREQ("not read", MissingText(first.gaps, "MAC address")) << "not asked for";
    EXPECT_STREQ("not given", MissingText(first.gaps, "location"));
    EXPECT_TRUE(ReportOf(first, {}).back().rows.empty()) << "nothing has failed";
    const std::string whole = FactsOf(ReadPrinter(device.MakeAsker())).macAddress;
    EXPECT_EQ("41:42:43:44:45:46", whole);
    EXPECT_EQ(whole, FactsOf(fleet_.Devices()[1].answers).macAddress);
}

TEST_F(FleetTest, ColoursAreReadIfNoNameTellsOne) {
    for (const char* name : {"Toner", "Black toner"}) {
        ScriptedDevice& device = Add(Printer(0, 50));
        device.Text("prtMarkerSuppliesDescription.7.1", name);
        device.Add("prtMarkerSuppliesColorantIndex.7.1 i 1; prtMarkerColorantValue.7.1 s cyan");
    }
    Finish();
    EXPECT_EQ("cyan", Summary(0).supplyColour);
    EXPECT_EQ("Black toner", Summary(1).supplyColour) << "not asked for";
}

TEST_F(FleetTest, SlowDevicesAreReadAfterAllOthers) {
    Add(Printer(0, 50), 4000);
    Add(Printer(0, 50));
    ScriptedDevice& silent = Add({}, 10000);
    silent.failure = [](const Oid&) { return Status::kNoAnswer; };
    Finish();
    EXPECT_EQ("0 state\n1 state\n2 state\n1 rest\n0 state late\n2 state late\n0 rest late\n", log_);
    EXPECT_EQ(50, Summary(0).lowestSupply);
    EXPECT_EQ(Status::kNoAnswer, fleet_.Devices()[2].answers.lastStatus);
    EXPECT_EQ(3u, silent.requests);
}

TEST_F(FleetTest, ADeviceThatIsNoPrinterCostsThreeRequests) {
    ScriptedDevice& device = Add({});
    device.Add("hrDeviceType.1 o .1.3.6.1.2.1.25.3.1.3; .1.3.6.1.4.1.9999.1.0 s of its maker");
    Finish();
    EXPECT_EQ(3u, device.requests);
    EXPECT_FALSE(fleet_.Devices()[0].severity);
}

}  // namespace
}  // namespace vndiscover::host
