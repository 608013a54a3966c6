#include "model/asking/host_diagnosis.h"

#include <gtest/gtest.h>

#include <utility>

namespace vndiscover::host {
namespace {

struct VerdictCase {
    const char* name;
    bool hasPing;
    Status v1, v3;
    bool hasUser;
    bool isUsable;
    const char* verdict;
};

TEST(Diagnosis, FindsWhatKeepsSweepsFromADeviceThatAnswers) {
    int64_t nowMs = 0;
    DiagnosisSteps steps;
    steps.ping = [] { return true; };
    steps.address = "10.77.1.2";
    std::string sender = "10.77.1.2";
    int64_t delayMs = 12;
    steps.v1.getNext = steps.v3.getNext = [&](const Oid& oid) {
        nowMs += delayMs;
        Answer answer = Failed(Status::kAnswered, oid);
        answer.sender = sender;
        return answer;
    };
    steps.v1.nowMs = [&] { return nowMs; };
    HostDiagnosis diagnosis = Diagnose(steps);
    EXPECT_TRUE(IsUsable(diagnosis));
    EXPECT_EQ(12, diagnosis.v1.ms);
    EXPECT_EQ(12, diagnosis.discovery.ms);

    delayMs = 2530;
    diagnosis = Diagnose(steps);
    EXPECT_FALSE(IsUsable(diagnosis));
    EXPECT_NE(std::string::npos,
              VerdictOn(diagnosis).find("answers after 2.53 s, but sweeps and SNMPv3 wait 2 s"));

    delayMs = 1;
    sender = "10.77.1.9";
    diagnosis = Diagnose(steps);
    EXPECT_FALSE(IsUsable(diagnosis));
    EXPECT_NE(std::string::npos, VerdictOn(diagnosis).find("from another address, 10.77.1.9"));
}

// It answers at once, but not for what follows sysDescr.0.
TEST(Diagnosis, SilenceForOneVariableIsNoLateAnswer) {
    int64_t nowMs = 0;
    DiagnosisSteps steps;
    steps.ping = [] { return true; };
    steps.v1.nowMs = [&] { return nowMs; };
    steps.v1.getNext = steps.v3.getNext = [&](const Oid& oid) {
        const bool isSilent = oid == Oid{1, 3, 6, 1, 2, 1, 1, 1, 0};
        nowMs += isSilent ? 10000 : 30;
        return Failed(isSilent ? Status::kNoAnswer : Status::kAnswered, oid);
    };
    const HostDiagnosis diagnosis = Diagnose(steps);
    EXPECT_TRUE(IsUsable(diagnosis)) << VerdictOn(diagnosis);
    EXPECT_EQ(30, diagnosis.v1.ms);
}

TEST(Diagnosis, TellsABlockedPortFromAMissingRoute) {
    HostDiagnosis diagnosis;
    diagnosis.v1.outcome = diagnosis.discovery.outcome = Outcome::kNotSent;
    diagnosis.hasRoute = true;
    EXPECT_NE(std::string::npos, VerdictOn(diagnosis).find("blocks outgoing UDP port 161"));
    diagnosis.isUnknown = true;
    EXPECT_NE(std::string::npos, VerdictOn(diagnosis).find("name has no address"));
}

// Before each step, of which none is taken then.
TEST(Diagnosis, CanBeStopped) {
    for (int allowed = 0; allowed <= 3; ++allowed) {
        int taken = 0, left = allowed;
        const auto answer = [&](const Oid& oid) {
            ++taken;
            return Failed(Status::kAnswered, oid);
        };
        DiagnosisSteps steps;
        steps.ping = [&] { return ++taken != 0; };
        steps.v1.getNext = steps.v3.getNext = answer;
        steps.mayGoOn = [&] { return left-- > 0; };
        const HostDiagnosis diagnosis = Diagnose(steps);
        EXPECT_EQ(allowed, taken);
        EXPECT_EQ(allowed < 3, diagnosis.isStopped);
        EXPECT_EQ(allowed < 3, VerdictOn(diagnosis) == "stopped before the last step");
    }
}

TEST(Diagnosis, NamesWhatAnswersAndWhy) {
    constexpr Status kYes = Status::kAnswered, kNo = Status::kNoAnswer;
    const VerdictCase rows[] = {
        {"All", true, kYes, Status::kRefused, false, true, "ping, SNMPv1 and SNMPv3 answer"},
        {"Unreadable", true, Status::kUnreadable, kYes, true, true,
         "ping, SNMPv1 and SNMPv3 answer"},
        {"NoPing", false, kYes, kYes, true, true,
         "SNMPv1 and SNMPv3 answer, ping does not: the device, or a firewall on the "
         "way, ignores pings"},
        {"NoV3", true, kYes, kNo, false, true,
         "ping and SNMPv1 answer, SNMPv3 does not: SNMPv3 switched off, or a device "
         "without it"},
        {"NoV3ForTheUser", true, kYes, kNo, true, false,
         "ping and SNMPv1 answer, SNMPv3 does not: SNMPv3 switched off, or a device "
         "without it"},
        {"NoV1", true, kNo, kYes, true, true,
         "ping and SNMPv3 answer, SNMPv1 does not: community wrong, or SNMPv1 switched "
         "off"},
        {"PingAlone", true, kNo, kNo, true, false,
         "ping answers, SNMPv1 and SNMPv3 do not: SNMP switched off, UDP port 161 "
         "blocked on the way, or community wrong and no SNMPv3"},
        {"Silent", false, kNo, kNo, false, false,
         "neither ping, SNMPv1 nor SNMPv3 answers: device switched off, another "
         "address, a router or firewall on the way, or pings ignored and community wrong"},
        {"RefusedUser", true, kYes, Status::kRefused, true, false,
         "ping, SNMPv1 and SNMPv3 answer; SNMPv3 refuses this user: unknown user"},
        {"DroppedUser", true, kYes, Status::kOnlyDiscovered, true, false,
         "ping, SNMPv1 and SNMPv3 answer; SNMPv3 with this user gets no readable "
         "answer: wrong privacy password or protocol, or the device drops requests that it "
         "refuses"},
        {"NotSent", false, Status::kSendFailed, Status::kSendFailed, true, false,
         "nothing could be sent: no route to the device, or no network"}};
    for (const VerdictCase& device : rows) {
        DiagnosisSteps steps;
        steps.ping = [&] { return device.hasPing; };
        steps.v1.getNext = [&](const Oid& oid) { return Failed(device.v1, oid); };
        steps.v3.getNext = [&](const Oid& oid) { return Failed(device.v3, oid, "unknown user"); };
        steps.hasUser = device.hasUser;
        const HostDiagnosis diagnosis = Diagnose(steps);
        EXPECT_EQ(device.verdict, VerdictOn(diagnosis)) << device.name;
        EXPECT_EQ(device.isUsable, IsUsable(diagnosis)) << device.name;
        EXPECT_EQ(device.v1 == Status::kSendFailed, IsUnsendable(diagnosis)) << device.name;
    }
}

}  // namespace
}  // namespace vndiscover::host
