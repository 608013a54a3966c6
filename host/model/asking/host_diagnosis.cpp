#include "model/asking/host_diagnosis.h"

#include <cstdio>
#include <vector>

#include "values/ip_address.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

// The variable that follows it, sysObjectID.0, is short enough for SNMPv1.
const Oid kSysDescr = {1, 3, 6, 1, 2, 1, 1, 1, 0};

// An answer without a value, or one that cannot be read, counts: the device accepted the request.
StepResult ResultOf(const Answer& answer, std::optional<int64_t> ms) {
    // In the order of Status.
    constexpr Outcome kOutcomes[] = {Outcome::kAnswered, Outcome::kSilent,   Outcome::kNotSent,
                                     Outcome::kAnswered, Outcome::kAnswered, Outcome::kSilent,
                                     Outcome::kRefused};
    StepResult result = {kOutcomes[static_cast<size_t>(answer.status)], "", ms};
    if (answer.status == Status::kRefused) result.detail = answer.note;
    if (answer.status == Status::kOnlyDiscovered)
        result.detail =
            "wrong privacy password or protocol, or the device drops requests that it refuses";
    return result;
}

// How long sweeps, and every request over SNMPv3, wait for an answer.
constexpr int64_t kModuleWaitMs = 2000;

bool IsLate(const HostDiagnosis& diagnosis) {
    return diagnosis.v1.outcome == Outcome::kAnswered && diagnosis.v1.ms >= kModuleWaitMs;
}

bool Answers(const StepResult& step) { return step.outcome == Outcome::kAnswered; }

std::string Listed(const std::vector<std::string>& names, const char* last) {
    return names.size() < 2 ? Joined(names)
                            : Joined({names.begin(), names.end() - 1}) + last + names.back();
}

// "ping and SNMPv3 answer, SNMPv1 does not"
std::string Evidence(const HostDiagnosis& diagnosis) {
    std::vector<std::string> answering, silent;
    for (const auto& [name, step] : {std::pair("ping", &diagnosis.ping),
                                     {"SNMPv1", &diagnosis.v1},
                                     {"SNMPv3", &diagnosis.discovery}})
        (Answers(*step) ? answering : silent).push_back(name);
    if (answering.empty()) return "neither " + Listed(silent, " nor ") + " answers";
    std::string text =
        Listed(answering, " and ") + (answering.size() == 1 ? " answers" : " answer");
    if (!silent.empty())
        text += ", " + Listed(silent, " and ") + (silent.size() == 1 ? " does not" : " do not");
    return text;
}

std::string Cause(const HostDiagnosis& diagnosis) {
    if (IsLate(diagnosis)) {
        return "SNMPv1 answers after " + SecondsText(*diagnosis.v1.ms) +
               ", but sweeps and SNMPv3 wait 2 s only";
    }
    const bool hasV1 = Answers(diagnosis.v1);
    const bool hasV3 = Answers(diagnosis.discovery);
    if (hasV1 && hasV3)
        return Answers(diagnosis.ping) ? "" : "the device, or a firewall on the way, ignores pings";
    if (hasV1) return "SNMPv3 switched off, or a device without it";
    if (hasV3) return "community wrong, or SNMPv1 switched off";
    return Answers(diagnosis.ping)
               ? "SNMP switched off, UDP port 161 blocked on the way, or community wrong and no "
                 "SNMPv3"
               : "device switched off, another address, a router or firewall on the way, or pings "
                 "ignored and community wrong";
}

// The result of a request, and the answer's sender if that is another address.
StepResult ResultOfAsking(const DiagnosisSteps& steps, const Asker& asker, Answer& answer,
                          std::string& otherSender) {
    // Of the last request, and of the last one that was answered: that counts if the variable stays
    // silent.
    std::optional<int64_t> spentMs, answeredMs;
    Asker timed = asker;
    timed.getNext = [&](const Oid& oid) {
        const int64_t startMs = steps.v1.NowMs();
        Answer one = asker.getNext(oid);
        spentMs = steps.v1.NowMs() - startMs;
        if (!IsSilence(one)) answeredMs = spentMs;
        return one;
    };
    answer = PatientAsker(timed).GetNext(kSysDescr);
    const auto asked = ParseIpAddress(steps.address), sender = ParseIpAddress(answer.sender);
    if (asked && sender && asked->bytes != sender->bytes) otherSender = answer.sender;
    return ResultOf(answer, answer.status == Status::kSilentHere ? answeredMs : spentMs);
}

}  // namespace

HostDiagnosis Diagnose(const DiagnosisSteps& steps) {
    HostDiagnosis diagnosis;
    diagnosis.hasUser = steps.hasUser;
    diagnosis.hasRoute = steps.hasRoute;
    diagnosis.community = steps.community;
    const auto mustStop = [&] { return diagnosis.isStopped = steps.mayGoOn && !steps.mayGoOn(); };
    if (mustStop()) return diagnosis;
    const int64_t startMs = steps.v1.NowMs();
    diagnosis.ping.outcome = steps.ping() ? Outcome::kAnswered : Outcome::kSilent;
    diagnosis.ping.ms = steps.v1.NowMs() - startMs;
    Answer answer;
    if (mustStop()) return diagnosis;
    diagnosis.v1 = ResultOfAsking(steps, steps.v1, answer, diagnosis.sender);
    if (mustStop()) return diagnosis;
    const StepResult v3 = ResultOfAsking(steps, steps.v3, answer, diagnosis.sender);
    if (v3.outcome == Outcome::kSilent && mustStop()) return diagnosis;
    const bool isDiscovered =
        answer.status != Status::kNoAnswer && answer.status != Status::kSendFailed;
    // The module finds the engine out within the request: it has answered by then.
    const auto engineMs = v3.outcome == Outcome::kSilent ? std::nullopt : v3.ms;
    diagnosis.discovery = isDiscovered ? StepResult{Outcome::kAnswered, "", engineMs} : v3;
    if (steps.hasUser && isDiscovered) diagnosis.user = v3;
    return diagnosis;
}

bool IsUsable(const HostDiagnosis& diagnosis) {
    return Answers(diagnosis.hasUser ? diagnosis.user : diagnosis.v1) && !IsLate(diagnosis) &&
           diagnosis.sender.empty() && !diagnosis.isStopped;
}

std::string SecondsText(int64_t ms) {
    if (ms < 10) return "under 0.01 s";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f s", static_cast<double>(ms) / 1000);
    return text;
}

bool IsUnsendable(const HostDiagnosis& diagnosis) {
    return diagnosis.v1.outcome == Outcome::kNotSent &&
           diagnosis.discovery.outcome == Outcome::kNotSent;
}

std::string VerdictOn(const HostDiagnosis& diagnosis) {
    if (diagnosis.isUnknown) return "nothing was sent: this name has no address";
    if (!diagnosis.problem.empty()) return "not finished: " + diagnosis.problem;
    if (diagnosis.isStopped) return "stopped before the last step";
    if (IsUnsendable(diagnosis)) {
        return Answers(diagnosis.ping) || diagnosis.hasRoute
                   ? "no SNMP request can be sent, although the device can be reached: a firewall "
                     "on this computer blocks outgoing UDP port 161"
                   : "nothing could be sent: no route to the device, or no network";
    }
    std::string verdict = Evidence(diagnosis);
    if (const std::string cause = Cause(diagnosis); !cause.empty()) verdict += ": " + cause;
    if (!diagnosis.sender.empty()) {
        verdict += "; the answer comes from another address, " + diagnosis.sender +
                   ", by which sweeps list the device";
    }
    if (diagnosis.user.outcome == Outcome::kRefused)
        verdict += "; SNMPv3 refuses this user: " + diagnosis.user.detail;
    if (diagnosis.user.outcome == Outcome::kSilent)
        verdict += "; SNMPv3 with this user gets no readable answer: " + diagnosis.user.detail;
    return verdict;
}

}  // namespace vndiscover::host
