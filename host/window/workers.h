// The threads that wait for the network, so that the window never does.
#ifndef VNDISCOVER_HOST_WINDOW_WORKERS_H
#define VNDISCOVER_HOST_WINDOW_WORKERS_H

#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "window/engine.h"

namespace vndiscover::host {

// As many as the module allows.
enum class WorkerId { kSnmp, kWsd, kDirected };
constexpr size_t kWorkerCount = 3;

struct Event {
    enum Kind {
        kSweepBegan,  // step
        kAnswer,      // address, bytes
        kAskBegan,    // step.kind, address
        kAsked,       // step.kind, address, read
        kAdapters,    // adapters
        kReport,      // report
        kCalled,      // call
        kIdle,        // the worker has nothing left to do
    };
    Kind kind = kIdle;
    WorkerId worker = WorkerId::kSnmp;
    std::string time;
    SweepStep step;
    std::string address, bytes;
    PrinterAnswers read;
    AdapterList adapters;
    ComputerReport report;
    Call call;
};

// Between the workers and the window.
class EventQueue {
  public:
    // `onFilled` is called on a worker's thread when the empty queue gets an event.
    explicit EventQueue(std::function<void()> onFilled) : onFilled_(std::move(onFilled)) {}
    void Push(Event event);
    std::vector<Event> Drain();

  private:
    std::function<void()> onFilled_;
    std::mutex mutex_;
    std::vector<Event> events_;
};

// All methods are for the window's thread.
class Workers {
  public:
    // Both outlive the workers.
    Workers(Engine& engine, EventQueue& events);
    ~Workers();  // stops everything and waits for it
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // Steps of WS-Discovery go to a worker of their own; the others run one after the other.
    void Sweep(const std::vector<SweepStep>& steps);
    // `isUrgent`: before all that is waiting. A device that is waiting already is not asked twice.
    void Ask(const AskTarget& target, bool isUrgent);
    // What this computer has, as kAdapters and kReport. These send nothing, but the system may take
    // a second. A worker does them that has nothing else to do, or the directed one next.
    void LookAtAdapters() { Look(Task::kAdapters); }
    void MakeReport() { Look(Task::kReport); }
    // Ends sweeps and questions, and drops what is waiting.
    void Stop();
    // To be called until the sweeps have ended: a request is lost that comes before the worker has
    // entered the module.
    void RepeatStop();
    bool IsBusy() const;
    bool IsBusy(WorkerId worker) const;
    size_t Waiting() const;  // devices that are to be asked

  private:
    enum class Task { kNetwork, kAdapters, kReport };
    struct Job {
        SweepStep step;
        AskTarget target;
        Task task = Task::kNetwork;
        unsigned stops = 0;  // when it began: it goes on until there are more
    };
    struct Line {
        std::deque<Job> jobs;
        bool isRunning = false;
        std::thread thread;
    };
    void Look(Task task);
    void Add(WorkerId worker, Job job, bool isUrgent);
    void Run(WorkerId worker);
    void Do(WorkerId worker, const Job& job);
    void DoLook(Task task, Event event);
    void Tell(Call call);

    Engine& engine_;
    EventQueue& events_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Line, kWorkerCount> lines_;
    std::atomic<unsigned> stops_{0};
    bool isStopTold_ = true;  // as a call, once for what runs
    bool isEnding_ = false;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_WORKERS_H
