#include "model/host_ladder.h"

#include <vector>

namespace vndiscover::host {
namespace {

// The variable that follows it, sysObjectID.0, is short enough for SNMPv1.
const Oid kSysDescr = {1, 3, 6, 1, 2, 1, 1, 1, 0};

// An answer without a value, or one that cannot be read, counts: the device accepted the request.
Rung RungOf(const Answer& answer) {
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

bool Answers(const Rung& rung) { return rung.outcome == Outcome::kAnswered; }

struct Name {
    const char* text;
    const Rung& rung;
};

std::string Listed(const std::vector<std::string>& names, const char* last) {
    std::string text;
    for (size_t i = 0; i < names.size(); ++i) {
        if (i != 0) text += i + 1 == names.size() ? last : ", ";
        text += names[i];
    }
    return text;
}

// "ping and SNMPv3 answer, SNMPv1 does not"
std::string Evidence(const HostLadder& ladder) {
    std::vector<std::string> answering, silent;
    for (const Name& name :
         {Name{"ping", ladder.ping}, Name{"SNMPv1", ladder.v1}, Name{"SNMPv3", ladder.discovery}}) {
        (Answers(name.rung) ? answering : silent).push_back(name.text);
    }
    if (answering.empty()) return "neither " + Listed(silent, " nor ") + " answers";
    std::string text =
        Listed(answering, " and ") + (answering.size() == 1 ? " answers" : " answer");
    if (!silent.empty())
        text += ", " + Listed(silent, " and ") + (silent.size() == 1 ? " does not" : " do not");
    return text;
}

const char* Cause(const HostLadder& ladder) {
    const bool hasV1 = Answers(ladder.v1);
    const bool hasV3 = Answers(ladder.discovery);
    if (hasV1 && hasV3)
        return Answers(ladder.ping) ? "" : "the device, or a firewall on the way, ignores pings";
    if (hasV1) return "SNMPv3 switched off, or a device without it";
    if (hasV3) return "community wrong, or SNMPv1 switched off";
    return Answers(ladder.ping)
               ? "SNMP switched off, UDP port 161 blocked on the way, or community wrong and no "
                 "SNMPv3"
               : "device switched off, another address, or a router or firewall on the way";
}

}  // namespace

HostLadder Climb(const LadderSteps& steps) {
    HostLadder ladder;
    ladder.ping = steps.ping() ? Rung{Outcome::kAnswered, ""} : Rung{Outcome::kSilent, ""};
    ladder.v1 = RungOf(steps.v1.getNext(kSysDescr));
    const Answer answer = steps.v3.getNext(kSysDescr);
    const bool isDiscovered =
        answer.status != Status::kNoAnswer && answer.status != Status::kSendFailed;
    ladder.discovery = isDiscovered ? Rung{Outcome::kAnswered, ""} : RungOf(answer);
    if (steps.hasUser && isDiscovered) ladder.user = RungOf(answer);
    return ladder;
}

bool IsUsable(const HostLadder& ladder) {
    return Answers(ladder.user.outcome == Outcome::kNotAsked ? ladder.v1 : ladder.user);
}

bool IsUnsendable(const HostLadder& ladder) {
    return ladder.v1.outcome == Outcome::kNotSent && ladder.discovery.outcome == Outcome::kNotSent;
}

std::string VerdictOn(const HostLadder& ladder) {
    if (IsUnsendable(ladder)) return "nothing could be sent: no route to the device, or no network";
    std::string verdict = Evidence(ladder);
    if (const std::string cause = Cause(ladder); !cause.empty()) verdict += ": " + cause;
    if (ladder.user.outcome == Outcome::kRefused)
        verdict += "; SNMPv3 refuses this user: " + ladder.user.detail;
    if (ladder.user.outcome == Outcome::kSilent)
        verdict += "; SNMPv3 with this user gets no readable answer: " + ladder.user.detail;
    return verdict;
}

}  // namespace vndiscover::host
