// What an answer to a get-next request means for a walk.
#ifndef VNDISCOVER_HOST_MODEL_WALK_STEP_H
#define VNDISCOVER_HOST_MODEL_WALK_STEP_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "values/oid_text.h"

namespace vndiscover::host {

enum class WalkStep {
    kVariable,       // a variable of the subtree: show it, ask for the one behind it
    kLastReachable,  // likewise, but its OID cannot be asked for: show it and stop
    kEnd,            // the subtree or the device's variables end here
    kNotIncreasing,  // a device that would keep a walk going for ever
    kUnreadable,     // the answer's OID is no OID
    kRefused,        // SNMPv3: a report instead of an answer; see ReportReason
};

// `asked` is the OID of the request, `answered` the one of the answer, if it could be decoded.
WalkStep JudgeAnswer(const Oid& root, const Oid& asked, const std::optional<Oid>& answered,
                     uint32_t type, bool isV3);

// Why a device refused an SNMPv3 request: its report counts in one of six variables, one for each
// reason. Null: the OID is none of them.
const char* ReportReason(const Oid& oid);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_WALK_STEP_H
