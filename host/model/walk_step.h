// What an answer to a get-next request means for a walk.
#ifndef VNDISCOVER_HOST_MODEL_WALK_STEP_H
#define VNDISCOVER_HOST_MODEL_WALK_STEP_H

#include <cstdint>

#include "values/oid_text.h"

namespace vndiscover::host {

enum class WalkStep {
    kVariable,       // a variable of the subtree: show it, ask for the one that follows it
    kLastReachable,  // likewise, but its OID cannot be asked for: show it and stop
    kEnd,            // the subtree or the device's variables end here
    kNotIncreasing,  // a device that would keep a walk going for ever
};

// `asked` is the OID of the request, `answered` and `type` are the answer's.
WalkStep JudgeAnswer(const Oid& root, const Oid& asked, const Oid& answered, uint32_t type,
                     bool isV3);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_WALK_STEP_H
