#include "model/asking/walk_step.h"

#include "values/value_text.h"

namespace vndiscover::host {

WalkStep JudgeAnswer(const Oid& root, const Oid& asked, const Oid& answered, uint32_t type,
                     bool isV3) {
    // An SNMPv1 error answer repeats the request's binding; SNMPv3 marks the end by the value's
    // type.
    const bool isRepeated = answered == asked && IsNoValue(type);
    if (isRepeated || (isV3 && type != kNull && IsNoValue(type))) return WalkStep::kEnd;
    if (answered <= asked) return WalkStep::kNotIncreasing;
    if (!IsWithin(answered, root)) return WalkStep::kEnd;
    const bool canBeAsked = FitsRequest(answered) && !IsMisencoded(answered);
    return canBeAsked ? WalkStep::kVariable : WalkStep::kLastReachable;
}

}  // namespace vndiscover::host
