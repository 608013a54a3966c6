// A walk through a subtree of a device's variables.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "model/asking/answer.h"

namespace vndiscover::host {

// What an answer to a get-next request means for a walk.
enum class WalkStep {
    kVariable,       // a variable of the subtree: show it, and ask for the next one
    kLastReachable,  // the same, but its OID cannot be requested: show it and stop
    kEnd,            // of the subtree, or of the device's variables
    kNotIncreasing,  // the device would keep the walk going for ever
};

// `asked` is the OID of the request, `answer` has a status of kAnswered.
WalkStep StepOf(const Oid& root, const Oid& asked, const Answer& answer, bool isV3);

struct WalkEnd {
    // kVariable: there was no answer, or it was stopped. Only kEnd is complete.
    WalkStep step = WalkStep::kVariable;
    bool isStopped = false;
    Answer last;                      // to the last request
    Oid at;                           // of the last variable, or the start
    size_t variables = 0;             // passed on
    size_t skipped = 0;               // variables that could not be read
    bool isLeast = false;             // there may be more of them: whole subtrees were passed
    std::optional<Answer> edge{};     // the failure to read what follows, which may be beyond
    std::string SkippedText() const;  // "3", "at least 3"
};

// The OID to request first; the caller checks whether it can be requested.
Oid WalkStart(const Oid& root);

// Requests one variable after the other until the subtree ends, the device gives none, or
// `onVariable` returns false. A variable that cannot be read is skipped, and those after it that no
// request reaches: `onSkipped`, which may be empty, gets the failure with the OID before it.
WalkEnd WalkSubtree(const Asker& asker, const Oid& root,
                    const std::function<bool(const Answer&)>& onVariable,
                    const std::function<void(const Answer&)>& onSkipped = {});

}  // namespace vndiscover::host
