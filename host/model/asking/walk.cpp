#include "model/asking/walk.h"

#include <algorithm>
#include <set>

#include "values/object_names.h"
#include "values/value_text.h"

namespace vndiscover::host {

WalkStep StepOf(const Oid& root, const Oid& asked, const Answer& answer, bool isV3) {
    // An SNMPv1 error answer repeats the request's binding; SNMPv3 has a type for the end.
    const bool isRepeated = answer.oid == asked && IsNoValue(answer.type);
    if (isRepeated || (isV3 && answer.type != kNull && IsNoValue(answer.type)))
        return WalkStep::kEnd;
    if (answer.oid <= asked) return WalkStep::kNotIncreasing;
    if (!IsWithin(answer.oid, root)) return WalkStep::kEnd;
    const bool canBeAsked = FitsRequest(answer.oid) && !IsMisencoded(answer.oid);
    return canBeAsked ? WalkStep::kVariable : WalkStep::kLastReachable;
}

std::string WalkEnd::SkippedText() const {
    return (isLeast ? "at least " : "") + std::to_string(skipped);
}

Oid WalkStart(const Oid& root) {
    Oid start = root;
    if (start.size() == 1) start.push_back(0);  // an OID in a request has at least two numbers
    return start;
}

namespace {

// OIDs after `at`, in ascending order. A get-next request for one that is not before the device's
// next variable gets past it. They are guessed from the rows and columns `seen` so far, which are
// in ascending order, from the standard objects, and from the subtrees of `root`.
std::vector<Oid> WaysPast(const Oid& root, const Oid& at, const std::vector<Oid>& seen) {
    constexpr uint32_t kRows = 32, kSubtrees = 64;
    std::set<Oid> ways;
    const auto add = [&](const Oid& oid) {
        if (oid > at && IsWithin(oid, root) && FitsRequest(oid) && !IsMisencoded(oid))
            ways.insert(oid);
    };
    // `oid`, and the rows below it that are the first ones below `like`.
    const auto addWithRows = [&](const Oid& oid, const Oid& like) {
        add(oid);
        auto row = std::lower_bound(seen.begin(), seen.end(), like);
        for (uint32_t rows = 0; rows < kRows; ++rows, ++row) {
            if (row == seen.end() || !IsWithin(*row, like)) return;
            add(Append(oid, Tail(*row, like.size())));
        }
    };
    // The next row, column, table ...
    for (size_t size = at.size(); size > root.size(); --size) {
        Oid next = Head(at, size);
        for (uint32_t step = 0; step < (size == at.size() ? kRows : 1); ++step) {
            ++next.back();
            addWithRows(next, Head(at, size));
        }
    }
    for (const Oid& object : StandardObjects()) {
        const bool isInTable =
            at.size() >= object.size() && IsWithin(at, Head(object, object.size() - 1));
        addWithRows(object, isInTable ? Head(at, object.size()) : object);
        for (const uint32_t instance : {0, 1}) add(Append(object, {instance}));
    }
    Oid subtree = Append(root, {at.size() > root.size() ? at[root.size()] : 0});
    for (uint32_t step = 0; step < kSubtrees; ++step) {
        ++subtree.back();
        add(subtree);
    }
    return {ways.begin(), ways.end()};
}

// The first way that gets past. Several variables may be too long. A silence takes seconds, so only
// few ways are tried then. The request before the first one that got past may have been lost, so
// it is sent again; if it gets past now, the search continues before it.
template <class GetsPast>
std::vector<Oid>::const_iterator FirstOf(const std::vector<Oid>& ways, bool isSilence,
                                         const GetsPast& getsPast) {
    if (!isSilence) return std::find_if(ways.begin(), ways.end(), getsPast);
    const auto failed = [&](const Oid& way) { return !getsPast(way); };
    auto first = std::partition_point(ways.begin(), ways.end(), failed);
    while (first != ways.begin() && getsPast(*(first - 1)))
        first = std::partition_point(ways.begin(), first - 1, failed);
    return first;
}

constexpr size_t kMostSeen = 20000;

class Walk {
  public:
    Walk(const Asker& asker, const Oid& root) : asker_(asker), patient_(asker), root_(root) {
        end_.at = WalkStart(root);
    }

    WalkEnd Run(const std::function<bool(const Answer&)>& onVariable,
                const std::function<void(const Answer&)>& onSkipped) {
        while (end_.step == WalkStep::kVariable && !HasStopped()) {
            Oid asked = end_.at;
            end_.last = patient_.GetNext(asked);
            if (patient_.IsError(asked, end_.last, Beyond()))
                end_.last = Failed(Status::kUnreadable, asked, kErrorAnswer);
            if (IsOnlyThisOne(end_.last)) {
                const Answer failure = end_.last;
                asked = Skip();
                if (end_.step == WalkStep::kEnd) {
                    end_.edge = failure;
                } else if (end_.last.status == Status::kAnswered) {
                    ++end_.skipped;
                    if (onSkipped) onSkipped(failure);
                }
            }
            if (end_.last.status != Status::kAnswered || end_.step == WalkStep::kEnd) break;
            end_.step = StepOf(root_, asked, end_.last, asker_.isV3);
            if (end_.step != WalkStep::kVariable && end_.step != WalkStep::kLastReachable) break;
            ++end_.variables;
            end_.at = end_.last.oid;
            seen_.push_back(end_.at);
            // In a table without end, the earlier rows add nothing.
            if (seen_.size() > kMostSeen) seen_.erase(seen_.begin(), seen_.end() - kMostSeen / 2);
            end_.isStopped = !onVariable(end_.last);
        }
        return end_;
    }

  private:
    bool HasStopped() { return end_.isStopped = end_.isStopped || !asker_.MayGoOn(); }

    // The OID whose request got past the variable, with the answer in end_.last; otherwise that is
    // the failure. If the variable is beyond the subtree, end_.step is kEnd.
    Oid Skip() {
        const bool isSilence = end_.last.status == Status::kSilentHere;
        Oid beyond = Beyond();
        if (HasStopped() || IsMisencoded(beyond)) return end_.at;
        Answer outside = patient_.GetNext(beyond);
        if (outside.status != Status::kAnswered && !IsOnlyThisOne(outside)) return end_.at;
        // If that failed too, the variable is perhaps the one that follows. Silence takes too long
        // to try more.
        const bool isAtEdge = outside.status != Status::kAnswered;
        if (isAtEdge) outside = AnsweredWith(beyond, kEndOfMibView, "");
        const std::vector<Oid> ways =
            isAtEdge && isSilence ? std::vector<Oid>() : WaysPast(root_, end_.at, seen_);
        Answer sign = outside;  // of the device, that it still answers
        const auto isAlive = [&] {
            return sign.status == Status::kAnswered || sign.status == Status::kUnreadable;
        };
        const auto getsPast = [&](const Oid& way) {
            if (!isAlive()) return true;
            const Answer answer = HasStopped() ? outside : asker_.getNext(way);
            const bool isError = patient_.IsError(way, answer, beyond);
            const bool isPast = answer.status == Status::kAnswered && !isError;
            if (!isPast && !isError && answer.status != Status::kUnreadable)
                sign = patient_.GetNext(beyond);
            if (isPast) end_.last = answer;
            return isPast;
        };
        const auto way = FirstOf(ways, isSilence, getsPast);
        if (!isAlive()) {
            end_.last = sign;
            return end_.at;
        }
        if (way == ways.end() && isAtEdge) end_.step = WalkStep::kEnd;
        end_.isLeast |= way == ways.end() || !IsInstance(*way) ||
                        std::any_of(ways.begin(), way, [this](auto& one) { return IsLikely(one); });
        if (way != ways.end()) return *way;
        end_.last = outside;  // nothing after the variable can be reached
        return beyond;
    }

    // The OID whose request leads to what follows the subtree.
    Oid Beyond() const {
        Oid beyond = root_;
        ++beyond.back();
        return WalkStart(beyond);
    }

    // Whether a request for what follows `oid` passes no more than one variable: it is the next
    // row, or within a standard object.
    bool IsInstance(const Oid& oid) const {
        const Oid* const object = StandardObjectOf(oid);
        const bool isNextRow = Head(oid, oid.size() - 1) == Head(end_.at, end_.at.size() - 1);
        return isNextRow || (object && oid.size() > object->size());
    }

    // Whether the device may well have it: a scalar; a row that other columns have; or any row, as
    // long as only one column was seen.
    bool IsLikely(const Oid& oid) const {
        const Oid* const object = StandardObjectOf(oid);
        if (!object || oid.size() == object->size()) return false;
        const Oid scalar = {0}, group = Head(*object, object->size() - 1);
        const Oid row = Tail(oid, object->size());
        bool isScalar = true, isOther = false;  // what was seen beside it
        for (auto one = std::lower_bound(seen_.begin(), seen_.end(), group);
             one != seen_.end() && IsWithin(*one, group); ++one) {
            if (Tail(*one, object->size()) == row) return true;
            isScalar &= Tail(*one, object->size()) == scalar;
            isOther |= !IsWithin(*one, *object);
        }
        return row == scalar ? isScalar : !isScalar && !isOther;
    }

    const Asker& asker_;
    PatientAsker patient_;
    const Oid& root_;
    std::vector<Oid> seen_;
    WalkEnd end_;
};

}  // namespace

WalkEnd WalkSubtree(const Asker& asker, const Oid& root,
                    const std::function<bool(const Answer&)>& onVariable,
                    const std::function<void(const Answer&)>& onSkipped) {
    return Walk(asker, root).Run(onVariable, onSkipped);
}

}  // namespace vndiscover::host
