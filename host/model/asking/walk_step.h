// What an answer to a get-next request means for a walk.
#pragma once

#include <cstdint>

#include "values/oid_text.h"

namespace vndiscover::host {

enum class WalkStep {
    kVariable,       // a variable of the subtree: show it, and ask for the next one
    kLastReachable,  // the same, but its OID cannot be requested: show it and stop
    kEnd,            // of the subtree, or of the device's variables
    kNotIncreasing,  // the device would keep the walk going for ever
};

// `asked` is the OID of the request, `answered` and `type` are the answer's.
WalkStep JudgeAnswer(const Oid& root, const Oid& asked, const Oid& answered, uint32_t type,
                     bool isV3);

}  // namespace vndiscover::host
