#include "model/asking/walk.h"

#include "values/value_text.h"

namespace vndiscover::host {

WalkStep StepOf(const Oid& root, const Oid& asked, const Answer& answer, bool isV3) {
    // An SNMPv1 error answer repeats the request's binding; SNMPv3 marks the end by the value's
    // type.
    const bool isRepeated = answer.oid == asked && IsNoValue(answer.type);
    if (isRepeated || (isV3 && answer.type != kNull && IsNoValue(answer.type)))
        return WalkStep::kEnd;
    if (answer.oid <= asked) return WalkStep::kNotIncreasing;
    if (!IsWithin(answer.oid, root)) return WalkStep::kEnd;
    const bool canBeAsked = FitsRequest(answer.oid) && !IsMisencoded(answer.oid);
    return canBeAsked ? WalkStep::kVariable : WalkStep::kLastReachable;
}

Oid WalkStart(const Oid& root) {
    Oid start = root;
    if (start.size() == 1) start.push_back(0);  // an OID in a request has at least two numbers
    return start;
}

WalkEnd WalkSubtree(const Asker& asker, const Oid& root,
                    const std::function<bool(const Answer&)>& onVariable) {
    WalkEnd end;
    end.at = WalkStart(root);
    while (end.step == WalkStep::kVariable && !end.isStopped) {
        end.isStopped = asker.mayGoOn && !asker.mayGoOn();
        if (end.isStopped) break;
        end.last = asker.getNext(end.at);
        if (end.last.status != Status::kAnswered) break;
        end.step = StepOf(root, end.at, end.last, asker.isV3);
        if (end.step != WalkStep::kVariable && end.step != WalkStep::kLastReachable) break;
        ++end.variables;
        end.at = end.last.oid;
        end.isStopped = !onVariable(end.last);
    }
    return end;
}

}  // namespace vndiscover::host
