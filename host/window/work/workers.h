// The threads that wait for the network instead of the window's.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "window/work/results.h"

namespace vndiscover::host {

// All methods must be called on the window's thread.
class Workers {
  public:
    // Both must outlive the workers.
    Workers(Engine& engine, ResultQueue& queue);
    ~Workers();  // stops everything and waits for it
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // WS-Discovery steps run on a separate worker; the others run one after the other.
    void Sweep(const std::vector<SweepStep>& steps);
    // `isUrgent`: before all waiting devices. A device that is already waiting is not asked twice.
    void Ask(const AskTarget& target, bool isUrgent);
    // Before the waiting devices that are not urgent. While it runs, urgent ones are asked between
    // two of its requests. Its results have the number `walk`.
    void Walk(const AskTarget& target, const Oid& root, unsigned walk);
    void StopWalk();
    // Finds out at which step a device does not answer, before all waiting devices.
    void Diagnose(const AskTarget& target);
    // Reports on this computer. Sends nothing, but may take a second. Runs on an idle worker, or
    // otherwise next on the directed one.
    void ReadAdapters();
    void MakeReport();
    // Ends sweeps, readings and diagnoses, and drops those that are waiting.
    void Stop();
    // Must be called until the sweeps have ended, since a stop that comes before the worker has
    // entered the module is lost.
    void RepeatStop();
    bool IsBusy() const;
    bool IsBusy(WorkerId worker) const;
    size_t Waiting() const;  // number of devices that are still to be asked

  private:
    // How often there had been a stop when a job began: it goes on until there are more.
    struct Stops {
        unsigned all = 0, walks = 0;
    };
    enum class Order { kUrgent, kWalk, kLater };
    struct Job {
        Order order = Order::kLater;
        std::string key;  // a waiting job with the same one is replaced; empty: none
        std::function<void(const Stops& before)> run;
        std::function<void(const std::string& problem)> fail;  // reports that `run` has thrown
        std::function<void()> drop;  // reports that it will not begin; may be empty
    };
    struct Line {
        std::deque<Job> jobs;
        bool isRunning = false;
        std::thread thread;
    };
    void Add(WorkerId worker, Job job);
    void AddUrgent(Job job);
    std::deque<Job>::iterator PlaceFor(Order order, std::deque<Job>& jobs) const;
    Job RemoveFirst(Line& line, Stops& before) const;
    void Run(WorkerId worker);
    static void Execute(const Job& job, const Stops& before);
    bool ExecuteUrgentJob();
    void DropJobs(Line& line, bool areOnlyWalks) const;
    void Post(ResultQueue::Closure closure) { queue_.Post(std::move(closure)); }

    Engine& engine_;
    ResultQueue& queue_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Line, kWorkerCount> lines_;
    std::atomic<unsigned> stops_{0}, walkStops_{0};
    bool isStopReported_ = true;  // as a call, once per run
    bool isEnding_ = false;
};

}  // namespace vndiscover::host
