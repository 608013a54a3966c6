// A walk through a subtree of a device's variables.
#pragma once

#include <cstddef>
#include <functional>

#include "model/asking/asker.h"
#include "model/asking/walk_step.h"

namespace vndiscover::host {

struct WalkEnd {
    // kVariable: there was no answer, or it was stopped. Only kEnd is complete.
    WalkStep step = WalkStep::kVariable;
    bool isStopped = false;
    Answer last;           // to the last request
    Oid at;                // of the last variable, or the start
    size_t variables = 0;  // passed on
};

// The OID to request first; the caller checks whether it can be requested.
Oid WalkStart(const Oid& root);

// Requests one variable after the other until the subtree ends, the device gives none, or
// `onVariable` returns false.
WalkEnd WalkSubtree(const Asker& asker, const Oid& root,
                    const std::function<bool(const Answer&)>& onVariable);

}  // namespace vndiscover::host
