// What the workers report to the window, and how it gets from their threads to the window's.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "model/asking/progress.h"
#include "window/work/engine.h"

namespace vndiscover::host {

// As many as the module supports.
enum class WorkerId { kSnmp, kWsd, kDirected, kNames };  // kNames: looks up names
constexpr size_t kWorkerCount = 4;

// Bounds walks, whose length the device decides.
constexpr size_t kMaxWalkVariables = 100000;

// Called on the window's thread. `problem`: why something did not run to its end; empty: it did.
// NOLINTBEGIN(performance-unnecessary-value-param): who overrides a method keeps the value.
class Results {
  public:
    virtual ~Results() = default;
    virtual void OnSweepBegan(WorkerId, const SweepStep&, const std::string& /*time*/) {}
    virtual void OnAnswer(WorkerId, ScanAnswer) {}  // its sweep is not set
    // Or was dropped. `wasSent`: see Engine::Sweep.
    virtual void OnSweepEnded(WorkerId, bool /*wasSent*/, const std::string& /*problem*/) {}

    // Of the details of one device, or a round of it for the list.
    virtual void OnReadingBegan(const std::string& /*address*/, bool /*isForList*/) {}
    struct Read {
        AskTarget target;
        std::string time;
        PrinterAnswers answers;
        bool isForList = false;
        bool isPostponed = false;  // it is slow, and is read after all others
        bool isStateOnly = false;  // a second round reads the rest
    };
    virtual void OnRead(Read) {}
    // All devices have been read for the list, or it was stopped.
    virtual void OnReadAll(const Progress::Read&) {}

    virtual void OnWalkBegan(unsigned /*walk*/, const std::string& /*address*/) {}
    virtual void OnVariable(unsigned /*walk*/, Answer) {}
    // `hasBegun` is false if it was dropped before.
    virtual void OnWalked(unsigned /*walk*/, bool /*hasBegun*/, const WalkEnd&,
                          const std::string& /*problem*/) {}

    virtual void OnDiagnosisBegan(const std::string& /*address*/) {}
    virtual void OnDiagnosed(const std::string& /*address*/, const HostDiagnosis&,
                             const AdapterList&) {}

    // Numeric addresses with what they were resolved from, and names that have none.
    using Addresses = std::vector<std::pair<std::string, std::string>>;
    virtual void OnResolved(const Addresses&, const std::string& /*unknown*/) {}

    virtual void OnAdapters(const AdapterList&) {}
    virtual void OnReport(const ComputerReport&) {}
    virtual void OnJobFailed(const std::string& /*problem*/) {}  // of one that sends nothing
    virtual void OnCall(Call) {}
};
// NOLINTEND(performance-unnecessary-value-param)

// Closures for the window's thread, in the order in which they were posted.
class ResultQueue {
  public:
    using Closure = std::function<void(Results& results)>;
    // `onFilled` is called on the posting thread when the queue was empty.
    explicit ResultQueue(std::function<void()> onFilled) : onFilled_(std::move(onFilled)) {}
    void Post(Closure closure);
    // Runs and removes those that were posted until now. If one throws, those after it remain.
    void RunAll(Results& results);
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
