// The answers of any number of sweeps, as received. Devices are derived from them: device_merge.h.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "model/asking/answer.h"
#include "values/module_types.h"
#include "values/oid_text.h"

namespace vndiscover::host {

enum class SweepKind { kSnmpV1, kSnmpV3, kWsd };

// The meaning of an answer's bytes.
enum class AnswerForm {
    kValue,     // the value of the sweep's OID, up to its first zero byte, of unknown type
    kDocument,  // the filled-in JSON request
    kVariable,  // a variable with OID and type, requested after the sweep
    kReply,     // a WS-Discovery reply
    kAdded,     // no answer: an address that a person has added, and as what
};

struct ScanSweep {
    SweepKind kind = SweepKind::kSnmpV1;
    AnswerForm form = AnswerForm::kValue;
    bool useIPv6 = false;
    Oid oid;           // requested, for kValue
    std::string time;  // of its start, as "2026-11-25T04:32:23Z"
    // The number of the search that it is a part of, from 1; 0: of none, or not known.
    size_t search{};
    // It ran to its end; or for kVariable, everything that is read of a device was read.
    bool isComplete{};
    bool isCut{};    // for kVariable: the reading ended early
    bool isList{};   // for kVariable: everything that a list shows of a device was read
    size_t login{};  // the caller's number of a community or user, from 1; 0: not known. Not saved
};

struct ScanAnswer {
    size_t sweep = 0;  // index in Scan::sweeps
    std::string time, address;
    Answer answer;  // unless the form is kVariable, only its bytes count
};

struct Scan {
    std::vector<ScanSweep> sweeps;
    std::vector<ScanAnswer> answers;  // in the order of their arrival
    // Pairs of answers that a person has declared to be of two devices.
    std::vector<std::pair<size_t, size_t>> splits;
};

inline const Oid& DefaultDiscoveryOid() {
    static const Oid oid = *ParseOid(kDefaultDiscoveryOid);
    return oid;
}

// The form of the answers to a sweep for this OID. SNMPv3 sweeps accept it only in a JSON request.
inline AnswerForm FormOf(SweepKind kind, const Oid& oid) {
    const bool isDocument = kind == SweepKind::kSnmpV3 && oid != DefaultDiscoveryOid();
    return kind == SweepKind::kWsd ? AnswerForm::kReply
           : isDocument            ? AnswerForm::kDocument
                                   : AnswerForm::kValue;
}

// Whether the OID is one of these standard objects, or an instance of one.
bool IsAny(const Oid& oid, std::initializer_list<const char*> objects);

// Whether a variable says what state a printer is in. A reading of the state alone leaves out
// alerts.
bool IsState(const Oid& oid);

// The object of a variable. The columns of supplies count as one, since a list reads them together:
// no column has rows of an earlier reading than the others.
Oid ObjectOf(const Oid& variable);

// Those of a device's answers that no later one replaces. The indexes are ascending.
// - A sweep replaces the answers to the same question from the same address.
// - A reading replaces the variables of each object that it read, by whichever protocol. A complete
//   one replaces all variables; one of all that a list shows, also those by another protocol; one
//   that ended early, only the variables that it read.
// - A state replaces alerts and the panel's text; a column of supplies, the other ones.
std::vector<size_t> CurrentAnswers(const Scan& scan, const std::vector<size_t>& answers);

// The indexes of sweeps of searches that ran to their end. Of sweeps that asked the same, only the
// last one counts. `running`: the number of a search that does not count; 0: all do.
std::vector<size_t> LastCompleteSweeps(const Scan& scan, size_t running = 0);

// Removes the other answers of each device, and sweeps that neither have answers nor say who was
// silent. Returns each answer's new index, or that of the answer that has replaced it.
std::vector<size_t> RemoveFormerAnswers(Scan& scan);

}  // namespace vndiscover::host
