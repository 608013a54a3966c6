// The threads that wait for the network, so that the window's thread does not.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "device/fleet_readers.h"
#include "window/work/results.h"

namespace vndiscover::host {

// All methods must be called on the window's thread.
class Workers {
  public:
    // Both must outlive the workers.
    Workers(Engine& engine, ResultQueue& queue);
    ~Workers();  // stops all jobs and waits until they end
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // WS-Discovery steps run on a separate worker; the others run one after the other.
    void Sweep(const std::vector<SweepStep>& steps);
    // Reads a device for its details. `isUrgent`: before all waiting devices. A device that is
    // waiting or being read is not read twice. `isSelected`: it is read because the user has
    // selected it. It then replaces a waiting device that was selected before.
    void Read(const AskTarget& target, bool isUrgent, bool isSelected = false);
    // Reads devices for the list, in two rounds, several at a time. Ends an earlier such reading.
    void ReadAll(const std::vector<AskTarget>& targets);
    // Reads a subtree, before waiting devices that are not urgent. Urgent ones are asked between
    // two requests of the walk. Its results have the number `walk`.
    void Walk(const AskTarget& target, const Oid& root, unsigned walk);
    void StopWalk();
    // Finds out why a device does not answer, before all waiting devices.
    void Diagnose(const AskTarget& target);
    // About this computer; these send nothing. They run on an idle worker, or next on the directed
    // one: between two requests of a job that is not urgent.
    void ReadAdapters();
    void MakeReport();
    // Finds the addresses of names. May take long if a name server does not answer.
    void Resolve(const std::vector<std::string>& hosts);
    // Ends what is running, and drops the waiting jobs.
    void Stop();
    // Must be called until the sweeps end: a stop has no effect before the module's call has begun.
    void RepeatStop() { engine_.StopSweeps(); }
    bool IsBusy() const;
    // Whether a job is running or waiting that sends something.
    bool IsSending() const;
    Progress::Work Now() const;

  private:
    // The numbers of stops when a job began. When they have grown, the job must end.
    struct Stops {
        unsigned all = 0, walks = 0;
    };
    enum class Order { kUrgent, kWalk, kLater };
    struct Job {
        Order order = Order::kLater;
        // Of one waiting job only: an urgent new one replaces it, any other is dropped. Empty:
        // none.
        std::string key;
        std::function<void(const Stops& before)> run;
        std::function<void(const std::string& problem)> fail;  // called if `run` throws
        std::function<void()> drop{};  // called if the job will not begin; may be empty
        bool isSending = true;
        bool isReading = false, isSelected = false;  // see Read
    };
    // A thread waits for an answer of this address.
    struct Wait {
        std::string address;
        std::chrono::steady_clock::time_point start;
    };
    struct Worker {
        std::deque<Job> jobs;
        bool isRunning = false, isSending = false;
        std::thread thread;
        bool IsBusy() const { return isRunning || !jobs.empty(); }
    };
    struct FleetRun {
        Fleet fleet;
        std::vector<AskTarget> targets;
        std::vector<Login> logins;
        size_t retries = 0;       // of silent devices, each with another community
        size_t unread = 0;        // devices that were silent or refused to answer
        bool isReported = false;  // the window knows that it is over
        std::optional<FleetReaders> readers;

        bool TryNextCommunity(AskTarget target);
        Progress::Read Count() const;
    };
    using MayGoOn = FleetReaders::MayGoOn;
    FleetDevice ReadForList(FleetRun& run, const FleetDevice& job, Reader* reader,
                            const MayGoOn& mayGoOn);
    void EndReading(FleetRun& run, size_t index, bool isDone);
    void ReadLeft(const std::shared_ptr<FleetRun>& run);
    void EndRun(FleetRun& run);
    void StopRun();
    bool IsReadingAll() const { return run_ && !run_->isReported; }
    bool IsSelectionWaiting();
    void RecordWait(const std::string& address);
    MayGoOn Watched(const std::string& address, const Stops& before, Order order);
    Worker& WorkerAt(WorkerId id) { return workers_[static_cast<size_t>(id)]; }
    void Add(WorkerId id, Job job);
    void AddUrgent(const char* key, const std::function<void()>& run,
                   bool isFailureReported = true);
    Job RemoveFirst(Worker& worker, Stops& before);
    void Run(Worker& worker);
    static void Execute(const Job& job, const Stops& before);
    bool ExecuteUrgentJob();
    static void DropJobs(Worker& worker, bool areOnlyWalks);
    // Posts a call of the method with these values.
    template <class... Parameters, class... Values>
    void Report(void (Results::*method)(Parameters...), Values... values) {
        queue_.Post(
            [method, all = std::make_tuple(std::move(values)...)](Results& results) mutable {
                std::apply([&](auto&... each) { (results.*method)(std::move(each)...); }, all);
            });
    }

    Engine& engine_;
    ResultQueue& queue_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Worker, kWorkerCount> workers_;
    std::map<std::thread::id, Wait> waits_;
    std::string reading_;            // the key of the running Read; empty: none, or it was stopped
    std::shared_ptr<FleetRun> run_;  // of the last ReadAll; null: none
    std::atomic<unsigned> stops_{0}, walkStops_{0};
    bool isStopReported_ = true;  // since the last job was added
    bool isEnding_ = false;
};

}  // namespace vndiscover::host
