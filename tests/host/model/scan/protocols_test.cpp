#include "model/scan/standing.h"

#include <gtest/gtest.h>

#include <map>

#include "values/module_types.h"
#include "values/object_names.h"

namespace vndiscover::host {
namespace {

using State = ProtocolState;

// The states by "SNMPv1", "SNMPv1, IPv6" and so on.
std::map<std::string, State> States(const Scan& scan, const std::vector<Reading>& readings,
                                    const std::vector<size_t>& running) {
    std::vector<size_t> answers;
    for (size_t index = 0; index < scan.answers.size(); ++index) answers.push_back(index);
    std::map<std::string, State> states;
    for (const ProtocolLine& line : ProtocolsOf(scan, answers, readings, running)) {
        const char* const names[] = {"SNMPv1", "SNMPv3", "WSD"};
        states[names[static_cast<size_t>(line.kind)] + std::string(line.useIPv6 ? "6" : "")] =
            line.state;
    }
    return states;
}

ScanSweep Sweep(SweepKind kind, bool useIPv6 = false) {
    const bool isWsd = kind == SweepKind::kWsd;
    return {kind, isWsd ? AnswerForm::kReply : AnswerForm::kValue, useIPv6, {1, 3}, ""};
}

Reading Ended(SweepKind kind, Status status, const char* problem,
              const char* address = "10.0.0.1") {
    Reading reading = {address, kind, {}};
    reading.end.lastStatus = status;
    reading.end.lastProblem = problem;
    return reading;
}

TEST(Protocols, SayWhichSweepsADeviceAnswered) {
    Scan scan;
    scan.sweeps = {Sweep(SweepKind::kSnmpV1), Sweep(SweepKind::kSnmpV3),
                   Sweep(SweepKind::kSnmpV3, true)};
    scan.answers = {{0, "", "10.0.0.1", Received("")}};
    using Map = std::map<std::string, State>;
    EXPECT_EQ((Map{{"SNMPv1", State::kNoValue},
                   {"SNMPv3", State::kSilent},
                   {"SNMPv36", State::kPending},
                   {"WSD", State::kNotAsked}}),
              States(scan, {}, {2}));
    scan.answers.push_back({0, "", "10.0.0.1", Received("x")});
    scan.answers.push_back({2, "", "fe80::1", Received("x")});
    EXPECT_EQ(State::kAnswered, States(scan, {}, {2})["SNMPv1"]);
    EXPECT_EQ(State::kAnswered, States(scan, {}, {2})["SNMPv36"]);
    EXPECT_EQ(State::kSilent, States(scan, {}, {2})["SNMPv3"]);
}

// A device that answers may have no address there.
TEST(Protocols, IPv6SilenceOfAnAnsweringDeviceIsNotShown) {
    Scan scan;
    scan.sweeps = {Sweep(SweepKind::kSnmpV1), Sweep(SweepKind::kSnmpV1, true)};
    scan.answers = {{0, "", "10.0.0.1", Received("x")}};
    EXPECT_EQ(0u, States(scan, {}, {}).count("SNMPv16"));
    scan.answers.clear();
    EXPECT_EQ(State::kSilent, States(scan, {}, {})["SNMPv16"]);
}

TEST(Protocols, SayWhyAReadingFailed) {
    Scan scan;
    scan.sweeps = {Sweep(SweepKind::kWsd), Sweep(SweepKind::kSnmpV3)};
    scan.answers = {{0, "", "10.0.0.1", Received("<a/>")}};
    const auto v3 = [&](Status status) {
        const std::vector<Reading> readings = {Ended(SweepKind::kSnmpV3, status, "why")};
        return ProtocolsOf(scan, {0}, readings, {}).at(1);
    };
    EXPECT_EQ(State::kRefused, v3(Status::kRefused).state);
    EXPECT_EQ("why", v3(Status::kRefused).note);
    EXPECT_EQ(State::kRefused, v3(Status::kOnlyDiscovered).state);
    EXPECT_EQ(State::kNoValue, v3(Status::kAnswered).state);
    EXPECT_EQ(State::kSilent, v3(Status::kSendFailed).state) << "to the sweep";
    // Not swept by SNMPv1, but read.
    std::vector<Reading> readings = {Ended(SweepKind::kSnmpV1, Status::kNoAnswer, "no answer")};
    EXPECT_EQ(State::kSilent, States(scan, readings, {})["SNMPv1"]);
    readings[0].end.isStopped = true;  // by the user
    EXPECT_EQ(State::kNotAsked, States(scan, readings, {})["SNMPv1"]);
    readings = {Ended(SweepKind::kSnmpV1, Status::kNoAnswer, "no answer", "fe80::1")};
    EXPECT_EQ(State::kNotAsked, States(scan, readings, {})["SNMPv1"]);
    EXPECT_EQ(State::kSilent, States(scan, readings, {})["SNMPv16"]);
}

// A variable that came after the sweep is an answer; that sweeps of it exist is no request.
TEST(Protocols, AReadingThatBroughtValuesIsAnAnswer) {
    Scan scan;
    scan.sweeps = {Sweep(SweepKind::kWsd),
                   {SweepKind::kSnmpV1, AnswerForm::kVariable, false, {}, ""}};
    scan.answers = {{0, "", "10.0.0.1", Received("<a/>")}};
    EXPECT_EQ(State::kNotAsked, States(scan, {}, {})["SNMPv1"]);
    scan.answers.push_back({1, "", "10.0.0.1", AnsweredWith({1, 3}, kOctetString, "hall")});
    const std::vector<Reading> readings = {Ended(SweepKind::kSnmpV1, Status::kNoAnswer, "silent")};
    EXPECT_EQ(State::kAnswered, States(scan, readings, {})["SNMPv1"]);
    EXPECT_EQ("silent", ProtocolsOf(scan, {0, 1}, readings, {}).at(0).note);
}

}  // namespace
}  // namespace vndiscover::host
