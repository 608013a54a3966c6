// What the workers report, and the queue that brings it to the window's thread.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "model/asking/progress.h"
#include "window/work/engine.h"

namespace vndiscover::host {

// The module supports one call of each of the first three kinds at a time. kNames looks up names.
enum class WorkerId { kSnmp, kWsd, kDirected, kNames };
constexpr size_t kWorkerCount = 4;

// A bound is needed since the device decides how long a walk is.
constexpr size_t kMaxWalkVariables = 100000;

// Called on the window's thread. `problem`: why something failed; empty: it did not.
// NOLINTBEGIN(performance-unnecessary-value-param): overriding methods move from the value.
class Results {
  public:
    virtual ~Results() = default;
    virtual void OnSweepBegan(WorkerId, const SweepStep&, const std::string& /*time*/) {}
    virtual void OnAnswer(WorkerId, ScanAnswer) {}  // without the index of its sweep
    // Also called for a sweep that was dropped before it began. `wasSent`: see Engine::Sweep.
    virtual void OnSweepEnded(WorkerId, bool /*wasSent*/, const std::string& /*problem*/) {}

    // One device is read for its details, or in one of two rounds for the list.
    virtual void OnReadingBegan(const std::string& /*address*/, bool /*isForList*/) {}
    struct Read {
        AskTarget target;
        std::string time;
        PrinterAnswers answers;
        bool isForList = false;
        // The result does not count: the device is slow or silent and is read again later, or the
        // reading was stopped.
        bool isPostponed = false;
        bool isStateOnly = false;  // the second round reads the rest
    };
    virtual void OnRead(Read) {}
    // The reading for the list has ended or was stopped.
    virtual void OnReadAll(const Progress::Read&) {}

    virtual void OnWalkBegan(unsigned /*walk*/, const std::string& /*address*/) {}
    virtual void OnVariable(unsigned /*walk*/, Answer) {}
    // `hasBegun`: false if the walk was dropped before it began.
    virtual void OnWalked(unsigned /*walk*/, bool /*hasBegun*/, const WalkEnd&,
                          const std::string& /*problem*/) {}

    virtual void OnDiagnosisBegan(const std::string& /*address*/) {}
    virtual void OnDiagnosed(const std::string& /*address*/, const HostDiagnosis&,
                             const AdapterList&) {}

    // Numeric addresses with the names that they were found for; and names without an address.
    using Addresses = std::vector<std::pair<std::string, std::string>>;
    virtual void OnResolved(const Addresses&, std::vector<std::string> /*unknown*/) {}

    virtual void OnAdapters(const AdapterList&) {}
    virtual void OnReport(const ComputerReport&) {}
    virtual void OnJobFailed(const std::string& /*problem*/) {}  // of a job that sends nothing
    virtual void OnCall(Call) {}
};
// NOLINTEND(performance-unnecessary-value-param)

// Closures for the window's thread. They run in the order in which they were posted.
class ResultQueue {
  public:
    using Closure = std::function<void(Results& results)>;
    // `onFilled` is called on the posting thread when the queue was empty.
    explicit ResultQueue(std::function<void()> onFilled) : onFilled_(std::move(onFilled)) {}
    void Post(Closure closure);
    // Runs and removes the closures posted so far, at most `most`. If one throws, those after it
    // remain. `onFilled` is called for those that remain.
    void RunAll(Results& results, size_t most = SIZE_MAX);
    bool IsEmpty() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return closures_.empty();
    }

  private:
    std::function<void()> onFilled_;
    mutable std::mutex mutex_;
    std::deque<Closure> closures_;
};

}  // namespace vndiscover::host
