// The threads that wait for the network instead of the window's.
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
    ~Workers();  // stops everything and waits for it
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // WS-Discovery steps run on a separate worker; the others run one after the other.
    void Sweep(const std::vector<SweepStep>& steps);
    // `isUrgent`: before all waiting devices. A device that is waiting or being read is not asked
    // twice. One that is selected meanwhile takes the place of one that waits because it was.
    void Read(const AskTarget& target, bool isUrgent, bool isSelected = false);
    // Reads devices for the list, in two rounds, side by side; ends an earlier such reading.
    void ReadAll(const std::vector<AskTarget>& targets);
    // Before the waiting devices that are not urgent. While it runs, urgent ones are asked between
    // two of its requests. Its results have the number `walk`.
    void Walk(const AskTarget& target, const Oid& root, unsigned walk);
    void StopWalk();
    // Finds out at which step a device does not answer, before all waiting devices.
    void Diagnose(const AskTarget& target);
    // Reports on this computer. Sends nothing. Runs on an idle worker, or next on the directed one.
    void ReadAdapters();
    void MakeReport();
    // Finds the addresses of names, which may take as long as a name server does.
    void Resolve(const std::vector<std::string>& hosts);
    // Ends sweeps, readings and diagnoses, and drops those that are waiting.
    void Stop();
    // Must be called until the sweeps end: a stop before the worker is in the module is lost.
    void RepeatStop() { engine_.StopSweeps(); }
    bool IsBusy() const;
    // Whether anything is sent, or waits for being sent.
    bool IsSending() const;
    Progress::Work Now() const;

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
        std::function<void()> drop{};  // reports that it will not begin; may be empty
        bool isSending = true;
        bool isReading = false, isSelected = false;  // see Read
    };
    // The request that a thread waits for; the address is empty if there is none.
    struct Wait {
        std::string address;
        std::chrono::steady_clock::time_point start;
    };
    struct Line {
        std::deque<Job> jobs;
        bool isRunning = false, isSending = false;
        std::thread thread;
        bool IsBusy() const { return isRunning || !jobs.empty(); }
    };
    struct FleetRun {
        Fleet fleet;
        std::vector<AskTarget> targets;
        std::vector<Login> logins;
        size_t retries = 0;       // of silent devices, with another community
        size_t unread = 0;        // devices that gave no value: silent, or refused
        bool isReported = false;  // to the window: it is over
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
    Line& LineOf(WorkerId worker) { return lines_[static_cast<size_t>(worker)]; }
    void Add(WorkerId worker, Job job);
    void AddUrgent(const char* key, const std::function<void()>& run,
                   bool isFailureReported = true);
    Job RemoveFirst(Line& line, Stops& before);
    void Run(WorkerId worker);
    static void Execute(const Job& job, const Stops& before);
    bool ExecuteUrgentJob();
    void DropJobs(Line& line, bool areOnlyWalks) const;
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
    std::array<Line, kWorkerCount> lines_;
    std::map<std::thread::id, Wait> waits_;
    std::string reading_;  // the key of the directed worker's; empty: none, or it was stopped
    std::shared_ptr<FleetRun> run_;  // the last one; null: none
    std::atomic<unsigned> stops_{0}, walkStops_{0};
    bool isStopReported_ = true;  // as a call, once per run
    bool isEnding_ = false;
};

}  // namespace vndiscover::host
