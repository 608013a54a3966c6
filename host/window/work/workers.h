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

#include "window/work/engine.h"

namespace vndiscover::host {

// As many as the module supports.
enum class WorkerId { kSnmp, kWsd, kDirected };
constexpr size_t kWorkerCount = 3;

// Bounds walks, whose length the device decides.
constexpr size_t kMaxWalkVariables = 100000;

struct Event {
    enum Kind {
        kSweepBegan,      // step
        kAnswer,          // address, bytes
        kSweepEnded,      // step, problem; also for one that was dropped before it began
        kAskBegan,        // step.kind, address
        kAsked,           // step.kind, address, read
        kWalkBegan,       // walk, address
        kWalkStep,        // walk, variable
        kWalked,          // walk, walkEnd; address if it had begun
        kDiagnosisBegan,  // address
        kDiagnosed,       // address, diagnosis, adapters
        kAdapters,        // adapters
        kReport,          // report
        kCalled,          // call
        kIdle,            // the worker has finished
    };
    Kind kind = kIdle;
    WorkerId worker = WorkerId::kSnmp;
    std::string time;
    SweepStep step;
    std::string address, bytes;
    std::string problem;  // why it failed; empty: it did not
    PrinterAnswers read;
    unsigned walk = 0;
    Answer variable;
    WalkEnd walkEnd;
    HostDiagnosis diagnosis;
    AdapterList adapters;
    ComputerReport report;
    Call call;
};

// Between the workers and the window.
class EventQueue {
  public:
    // `onFilled` is called on a worker's thread when an event is added to the empty queue.
    explicit EventQueue(std::function<void()> onFilled) : onFilled_(std::move(onFilled)) {}
    void Push(Event event);
    std::vector<Event> Drain();

  private:
    std::function<void()> onFilled_;
    std::mutex mutex_;
    std::vector<Event> events_;
};

// All methods must be called on the window's thread.
class Workers {
  public:
    // Both must outlive the workers.
    Workers(Engine& engine, EventQueue& events);
    ~Workers();  // stops everything and waits for it
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // WS-Discovery steps run on a separate worker; the others run one after the other.
    void Sweep(const std::vector<SweepStep>& steps);
    // `isUrgent`: before all waiting devices. A device that is already waiting is not asked twice.
    void Ask(const AskTarget& target, bool isUrgent);
    // Before the waiting devices that are not urgent. While it runs, urgent ones are asked between
    // two of its requests. Its events have the number `walk`.
    void Walk(const AskTarget& target, const Oid& root, unsigned walk);
    void StopWalk();
    // Finds out at which step a device does not answer, as kDiagnosed, before all waiting devices.
    void Diagnose(const AskTarget& target);
    // Reports on this computer, as kAdapters and kReport. Sends nothing, but may take a second.
    // Runs on an idle worker, or otherwise next on the directed one.
    void LookAtAdapters() { Look(Task::kAdapters); }
    void MakeReport() { Look(Task::kReport); }
    // Ends sweeps, readings and diagnoses, and drops those that are waiting.
    void Stop();
    // Must be called until the sweeps have ended, since a stop that comes before the worker has
    // entered the module is lost.
    void RepeatStop();
    bool IsBusy() const;
    bool IsBusy(WorkerId worker) const;
    size_t Waiting() const;  // number of devices that are still to be asked

  private:
    enum class Task { kReading, kSweep, kWalk, kDiagnosis, kAdapters, kReport };
    struct Job {
        SweepStep step;
        AskTarget target;
        Task task = Task::kReading;
        bool isUrgent = false;
        Oid root;                           // for kWalk
        unsigned walk = 0;                  // likewise
        unsigned stops = 0, walkStops = 0;  // when it began: it goes on until there are more
    };
    struct Line {
        std::deque<Job> jobs;
        bool isRunning = false;
        std::thread thread;
    };
    void Look(Task task);
    void Add(WorkerId worker, Job job);
    Job TakeFirst(Line& line);
    void Run(WorkerId worker);
    void Do(WorkerId worker, const Job& job);
    void DoLook(Task task, Event event);
    void DoWalk(const Job& job, Event event);
    bool DoUrgentJob();
    void DropWalks();
    void DoDiagnosis(const Job& job, Event event);
    void Tell(Call call);
    void TellEnd(const Job& job, const std::string& problem = "");

    Engine& engine_;
    EventQueue& events_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Line, kWorkerCount> lines_;
    std::atomic<unsigned> stops_{0};
    std::atomic<unsigned> walkStops_{0};
    bool isStopTold_ = true;  // reported as a call, once per run
    bool isEnding_ = false;
};

}  // namespace vndiscover::host
