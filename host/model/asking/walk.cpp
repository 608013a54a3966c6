#include "model/asking/walk.h"

namespace vndiscover::host {

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
        end.step = JudgeAnswer(root, end.at, end.last.oid, end.last.type, asker.isV3);
        if (end.step != WalkStep::kVariable && end.step != WalkStep::kLastReachable) break;
        ++end.variables;
        end.at = end.last.oid;
        end.isStopped = !onVariable(end.last);
    }
    return end;
}

}  // namespace vndiscover::host
