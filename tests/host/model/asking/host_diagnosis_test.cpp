#include "model/asking/host_diagnosis.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

namespace vndiscover::host {
namespace {

// Of a device that answers a ping, and this to requests.
DiagnosisSteps StepsWith(const std::function<Answer(const Oid&)>& answer) {
    DiagnosisSteps steps;
    steps.ping = [] { return true; };
    steps.v1.getNext = steps.v3.getNext = answer;
    return steps;
}

// It answers at once, but not for what follows sysDescr.0.
TEST(Diagnosis, SilenceForOneVariableIsNoLateAnswer) {
    int64_t nowMs = 0;
    DiagnosisSteps steps = StepsWith([&](const Oid& oid) {
        const bool isSilent = oid == Oid{1, 3, 6, 1, 2, 1, 1, 1, 0};
        nowMs += isSilent ? 10000 : 30;
        return Failed(isSilent ? Status::kNoAnswer : Status::kAnswered, oid);
    });
    steps.v1.nowMs = [&] { return nowMs; };
    const HostDiagnosis diagnosis = Diagnose(steps);
    EXPECT_TRUE(IsUsable(diagnosis)) << VerdictOn(diagnosis);
    EXPECT_EQ(30, diagnosis.v1.ms);
    EXPECT_EQ(30, diagnosis.discovery.ms);
}

// Before each step, of which none is taken then.
TEST(Diagnosis, CanBeStopped) {
    for (int allowed = 0; allowed <= 3; ++allowed) {
        int taken = 0, left = allowed;
        DiagnosisSteps steps = StepsWith([&](const Oid& oid) {
            ++taken;
            return Failed(Status::kAnswered, oid);
        });
        steps.ping = [&] { return ++taken != 0; };
        steps.mayGoOn = [&] { return left-- > 0; };
        const HostDiagnosis diagnosis = Diagnose(steps);
        EXPECT_EQ(allowed, taken);
        EXPECT_EQ(allowed < 3, diagnosis.isStopped);
        EXPECT_EQ(allowed < 3, VerdictOn(diagnosis) == "stopped before the last step");
    }
}

TEST(Diagnosis, NamesWhatAnswersAndWhy) {
    constexpr Status kYes = Status::kAnswered, kNo = Status::kNoAnswer;
    // Ping, SNMPv1 and SNMPv3; whether there is a user, and whether the device can be used.
    const std::tuple<bool, Status, Status, bool, bool, const char*> rows[] = {
        {true, kYes, Status::kRefused, false, true, "ping, SNMPv1 and SNMPv3 answer"},
        {true, Status::kUnreadable, kYes, true, true, "ping, SNMPv1 and SNMPv3 answer"},
        {false, kYes, kYes, true, true,
         "SNMPv1 and SNMPv3 answer, ping does not: the device, or a firewall on the way, ignores "
         "pings"},
        {true, kYes, kNo, false, true,
         "ping and SNMPv1 answer, SNMPv3 does not: SNMPv3 switched off, or a device without it"},
        {true, kYes, kNo, true, false,
         "ping and SNMPv1 answer, SNMPv3 does not: SNMPv3 switched off, or a device without it"},
        {true, kNo, kYes, true, true,
         "ping and SNMPv3 answer, SNMPv1 does not: community wrong, or SNMPv1 switched off"},
        {true, kNo, kNo, true, false,
         "ping answers, SNMPv1 and SNMPv3 do not: SNMP switched off, UDP port 161 "
         "blocked on the way, or community wrong and no SNMPv3"},
        {false, kNo, kNo, false, false,
         "neither ping, SNMPv1 nor SNMPv3 answers: device switched off, another "
         "address, a router or firewall on the way, or pings ignored and community wrong"},
        {true, kYes, Status::kRefused, true, false,
         "ping, SNMPv1 and SNMPv3 answer; SNMPv3 refuses this user: unknown user"},
        {true, kYes, Status::kOnlyDiscovered, true, false,
         "ping, SNMPv1 and SNMPv3 answer; SNMPv3 with this user gets no readable "
         "answer: wrong privacy password or protocol, or the device drops requests that it "
         "refuses"},
        {false, Status::kSendFailed, Status::kSendFailed, true, false,
         "nothing could be sent: no route to the device, or no network"}};
    for (const auto& [hasPing, v1, v3, hasUser, isUsable, verdict] : rows) {
        DiagnosisSteps steps;
        steps.ping = [&, has = hasPing] { return has; };
        steps.v1.getNext = [&, status = v1](const Oid& oid) { return Failed(status, oid); };
        steps.v3.getNext = [&, status = v3](const Oid& oid) {
            return Failed(status, oid, "unknown user");
        };
        steps.hasUser = hasUser;
        const HostDiagnosis diagnosis = Diagnose(steps);
        EXPECT_EQ(verdict, VerdictOn(diagnosis));
        EXPECT_EQ(isUsable, IsUsable(diagnosis)) << verdict;
        EXPECT_EQ(v1 == Status::kSendFailed, IsUnsendable(diagnosis)) << verdict;
    }
}

}  // namespace
}  // namespace vndiscover::host
