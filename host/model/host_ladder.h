// Finds out in steps why one device does not answer.
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
    Rung user;       // SNMPv3 with this user, if one was given
};

// The steps; each call blocks until it has a result.
struct LadderSteps {
    std::function<bool()> ping;
    Asker v1, v3;
    bool hasUser = false;  // false: v3 uses an empty user name, which reaches the engine only
};

// Sends one ping, and one SNMPv1 and one SNMPv3 get-next request for sysDescr.0. An SNMPv3 request
// begins with engine discoveries.
HostLadder Climb(const LadderSteps& steps);

// True if SNMP answers as requested: to the user if there was one, otherwise to the community.
bool IsUsable(const HostLadder& ladder);

// True if nothing could be sent over SNMP.
bool IsUnsendable(const HostLadder& ladder);

// One sentence without a full stop: what answers, what does not, and the likely cause.
std::string VerdictOn(const HostLadder& ladder);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_HOST_LADDER_H
