#include "model/walk_step.h"

#include "values/value_text.h"

namespace vndiscover::host {
namespace {

const Oid kReports = {1, 3, 6, 1, 6, 3, 15, 1, 1};

bool IsReport(const Oid& root, const Oid& answered, uint32_t type) {
    // A walk through the counters themselves meets them as variables.
    return type == kCounter32 && ReportReason(answered) && !IsWithin(answered, root);
}

}  // namespace

WalkStep JudgeAnswer(const Oid& root, const Oid& asked, const std::optional<Oid>& answered,
                     uint32_t type, bool isV3) {
    if (!answered) return WalkStep::kUnreadable;
    if (isV3 && IsReport(root, *answered, type)) return WalkStep::kRefused;
    // An error answer repeats the request's binding; SNMPv3 marks the end in the value's type.
    const bool isRepeated = *answered == asked && IsNoValue(type);
    if (isRepeated || (isV3 && type != kNull && IsNoValue(type))) return WalkStep::kEnd;
    if (*answered <= asked) return WalkStep::kNotIncreasing;
    if (!IsWithin(*answered, root)) return WalkStep::kEnd;
    const bool canBeAsked = FitsRequest(*answered) && !GoesOutWrong(*answered);
    return canBeAsked ? WalkStep::kVariable : WalkStep::kLastReachable;
}

const char* ReportReason(const Oid& oid) {
    constexpr const char* kReasons[] = {
        "the device does not support this security level",
        "the device's clock and the request disagree",
        "the device does not know this user",
        "the device does not know its own engine ID",
        "wrong authentication password or protocol",
        "the device cannot decrypt: wrong privacy password or protocol",
    };
    if (oid.size() != kReports.size() + 2 || !IsWithin(oid, kReports)) return nullptr;
    const uint32_t reason = oid[kReports.size()];
    return reason >= 1 && reason <= 6 ? kReasons[reason - 1] : nullptr;
}

}  // namespace vndiscover::host
