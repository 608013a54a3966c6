// Why one device does not answer, found by asking in steps.
#ifndef VNDISCOVER_HOST_MODEL_HOST_LADDER_H
#define VNDISCOVER_HOST_MODEL_HOST_LADDER_H

#include <functional>
#include <string>

#include "model/printer_reader.h"

namespace vndiscover::host {

enum class Outcome {
    kNotAsked,
    kAnswered,
    kSilent,   // detail may say why
    kRefused,  // detail says why
    kNotSent,
};

struct Rung {
    Outcome outcome = Outcome::kNotAsked;
    std::string detail;
};

struct HostLadder {
    Rung ping;
    Rung v1;         // with this community
    Rung discovery;  // of the SNMPv3 engine
    Rung user;       // SNMPv3 with this user; not asked: none was given
};

// How to ask; each call blocks until it knows.
struct LadderSteps {
    std::function<bool()> ping;
    Asker v1, v3;
    bool hasUser = false;  // false: v3 asks with an empty user, which shows the engine alone
};

// One ping, one SNMPv1 and one SNMPv3 get-next request for sysDescr.0, and nothing else; an SNMPv3
// request begins with engine discoveries.
HostLadder Climb(const LadderSteps& steps);

// True when SNMP answers as it was asked: this user if there was one, else this community.
bool IsUsable(const HostLadder& ladder);

// True when nothing could be sent over SNMP.
bool IsUnsendable(const HostLadder& ladder);

// One sentence without a full stop: what answers, what does not, and what that means.
std::string VerdictOn(const HostLadder& ladder);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_HOST_LADDER_H
