// Finds out in steps why one device does not answer.
#pragma once

#include <functional>
#include <string>

#include "model/asking/asker.h"

namespace vndiscover::host {

enum class Outcome {
    kNotAsked,
    kAnswered,
    kSilent,   // detail may say why
    kRefused,  // detail says why
    kNotSent,
};

struct StepResult {
    Outcome outcome = Outcome::kNotAsked;
    std::string detail;
};

struct HostDiagnosis {
    StepResult ping;
    StepResult v1;           // with this community
    StepResult discovery;    // of the SNMPv3 engine
    StepResult user;         // SNMPv3 with this user, if one was given and the engine answered
    bool hasUser = false;    // one was given
    bool isStopped = false;  // before the last step
};

// The steps; each call blocks until it has a result.
struct DiagnosisSteps {
    std::function<bool()> ping;
    Asker v1, v3;
    std::function<bool()> mayGoOn;  // called before each step; null: it always may
    bool hasUser = false;  // false: v3 uses an empty user name, which reaches the engine only
};

// Sends one ping, and one SNMPv1 and one SNMPv3 get-next request for sysDescr.0. An SNMPv3 request
// begins with engine discoveries.
HostDiagnosis Diagnose(const DiagnosisSteps& steps);

// True if SNMP answers as requested: to the user if there was one, otherwise to the community.
bool IsUsable(const HostDiagnosis& diagnosis);

// True if nothing could be sent over SNMP.
bool IsUnsendable(const HostDiagnosis& diagnosis);

// One sentence without a full stop: what answers, what does not, and the likely cause.
std::string VerdictOn(const HostDiagnosis& diagnosis);

}  // namespace vndiscover::host
