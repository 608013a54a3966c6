#include "model/asking/host_diagnosis.h"

#include <vector>

#include "values/text.h"

namespace vndiscover::host {
namespace {

// The variable that follows it, sysObjectID.0, is short enough for SNMPv1.
const Oid kSysDescr = {1, 3, 6, 1, 2, 1, 1, 1, 0};

// An answer without a value, or one that cannot be read, counts: the device accepted the request.
StepResult ResultOf(const Answer& answer) {
    switch (answer.status) {
        case Status::kAnswered:
        case Status::kUnreadable:
            return {Outcome::kAnswered, ""};
        case Status::kSendFailed:
            return {Outcome::kNotSent, ""};
        case Status::kRefused:
            return {Outcome::kRefused, answer.note};
        case Status::kOnlyDiscovered:
            return {Outcome::kSilent,
                    "wrong privacy password, or the device drops requests that it refuses"};
        case Status::kNoAnswer:
            break;
    }
    return {Outcome::kSilent, ""};
}

bool Answers(const StepResult& step) { return step.outcome == Outcome::kAnswered; }

struct Name {
    const char* text;
    const StepResult& step;
};

std::string Listed(const std::vector<std::string>& names, const char* last) {
    return names.size() < 2 ? Joined(names)
                            : Joined({names.begin(), names.end() - 1}) + last + names.back();
}

// "ping and SNMPv3 answer, SNMPv1 does not"
std::string Evidence(const HostDiagnosis& diagnosis) {
    std::vector<std::string> answering, silent;
    for (const Name& name : {Name{"ping", diagnosis.ping}, Name{"SNMPv1", diagnosis.v1},
                             Name{"SNMPv3", diagnosis.discovery}}) {
        (Answers(name.step) ? answering : silent).push_back(name.text);
    }
    if (answering.empty()) return "neither " + Listed(silent, " nor ") + " answers";
    std::string text =
        Listed(answering, " and ") + (answering.size() == 1 ? " answers" : " answer");
    if (!silent.empty())
        text += ", " + Listed(silent, " and ") + (silent.size() == 1 ? " does not" : " do not");
    return text;
}

const char* Cause(const HostDiagnosis& diagnosis) {
    const bool hasV1 = Answers(diagnosis.v1);
    const bool hasV3 = Answers(diagnosis.discovery);
    if (hasV1 && hasV3)
        return Answers(diagnosis.ping) ? "" : "the device, or a firewall on the way, ignores pings";
    if (hasV1) return "SNMPv3 switched off, or a device without it";
    if (hasV3) return "community wrong, or SNMPv1 switched off";
    return Answers(diagnosis.ping)
               ? "SNMP switched off, UDP port 161 blocked on the way, or community wrong and no "
                 "SNMPv3"
               : "device switched off, another address, or a router or firewall on the way";
}

}  // namespace

HostDiagnosis Diagnose(const DiagnosisSteps& steps) {
    HostDiagnosis diagnosis;
    diagnosis.hasUser = steps.hasUser;
    const auto mustStop = [&] {
        diagnosis.isStopped = steps.mayGoOn && !steps.mayGoOn();
        return diagnosis.isStopped;
    };
    if (mustStop()) return diagnosis;
    diagnosis.ping =
        steps.ping() ? StepResult{Outcome::kAnswered, ""} : StepResult{Outcome::kSilent, ""};
    if (mustStop()) return diagnosis;
    diagnosis.v1 = ResultOf(steps.v1.getNext(kSysDescr));
    if (mustStop()) return diagnosis;
    const Answer answer = steps.v3.getNext(kSysDescr);
    const bool isDiscovered =
        answer.status != Status::kNoAnswer && answer.status != Status::kSendFailed;
    diagnosis.discovery = isDiscovered ? StepResult{Outcome::kAnswered, ""} : ResultOf(answer);
    if (steps.hasUser && isDiscovered) diagnosis.user = ResultOf(answer);
    return diagnosis;
}

bool IsUsable(const HostDiagnosis& diagnosis) {
    return Answers(diagnosis.hasUser ? diagnosis.user : diagnosis.v1);
}

bool IsUnsendable(const HostDiagnosis& diagnosis) {
    return diagnosis.v1.outcome == Outcome::kNotSent &&
           diagnosis.discovery.outcome == Outcome::kNotSent;
}

std::string VerdictOn(const HostDiagnosis& diagnosis) {
    if (diagnosis.isStopped) return "stopped before the last step";
    if (IsUnsendable(diagnosis))
        return "nothing could be sent: no route to the device, or no network";
    std::string verdict = Evidence(diagnosis);
    if (const std::string cause = Cause(diagnosis); !cause.empty()) verdict += ": " + cause;
    if (diagnosis.user.outcome == Outcome::kRefused)
        verdict += "; SNMPv3 refuses this user: " + diagnosis.user.detail;
    if (diagnosis.user.outcome == Outcome::kSilent)
        verdict += "; SNMPv3 with this user gets no readable answer: " + diagnosis.user.detail;
    return verdict;
}

}  // namespace vndiscover::host
