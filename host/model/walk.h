// A walk through a subtree of a device's variables.
#ifndef VNDISCOVER_HOST_MODEL_WALK_H
#define VNDISCOVER_HOST_MODEL_WALK_H

#include <cstddef>
#include <functional>

#include "model/printer_reader.h"
#include "model/walk_step.h"

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

#endif  // VNDISCOVER_HOST_MODEL_WALK_H
