// Finds out in steps why one device does not answer.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "model/asking/answer.h"

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
    std::optional<int64_t> ms{};  // that the answer, or the silence, took; empty: not measured
};

struct HostDiagnosis {
    StepResult ping;
    StepResult v1;           // with this community
    StepResult discovery;    // of the SNMPv3 engine
    StepResult user;         // SNMPv3 with this user, if one was given and the engine answered
    bool hasUser = false;    // one was given
    bool isStopped = false;  // before the last step
    bool hasRoute = false;   // this computer has one to the device
    bool isUnknown = false;  // the device's name has no address, so nothing was sent
    std::string community;   // of the SNMPv1 request; empty: it is not to be shown
    std::string sender;      // the address of an SNMP answer, if it is not the one that was asked
    std::string problem;     // of this program, if it prevented the last step; mostly empty
};

// The steps; each call blocks until it has a result.
struct DiagnosisSteps {
    std::function<bool()> ping;
    Asker v1, v3;                   // times are by the clock of v1
    std::function<bool()> mayGoOn;  // called before each step; null: it always may
    std::string community;          // of v1, never empty
    std::string address;            // numeric, to be compared with the sender of answers
    bool hasRoute = false;          // as in HostDiagnosis
    bool hasUser = false;  // false: v3 uses an empty user name, which reaches the engine only
};

// Sends one ping, and an SNMPv1 and an SNMPv3 get-next request for sysDescr.0, which are repeated
// as PatientAsker does. An SNMPv3 request begins with engine discoveries.
HostDiagnosis Diagnose(const DiagnosisSteps& steps);

// Whether SNMP answers the user, or without one the community, and sweeps can find the device.
bool IsUsable(const HostDiagnosis& diagnosis);

bool IsUnsendable(const HostDiagnosis& diagnosis);

// "2.53 s", "under 0.01 s"
std::string SecondsText(int64_t ms);

// One sentence without a full stop: what answers, what does not, and the likely cause.
std::string VerdictOn(const HostDiagnosis& diagnosis);

}  // namespace vndiscover::host
