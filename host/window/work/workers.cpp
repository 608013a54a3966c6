#include "window/work/workers.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>

#include "platform/this_process.h"

namespace vndiscover::host {

void EventQueue::Push(Event event) {
    bool wasEmpty = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        wasEmpty = events_.empty();
        events_.push_back(std::move(event));
    }
    if (wasEmpty) onFilled_();
}

std::vector<Event> EventQueue::Drain() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(events_, {});
}

Workers::Workers(Engine& engine, EventQueue& events) : engine_(engine), events_(events) {
    engine_.SetOnCall([this](Call call) { Tell(std::move(call)); });
}

// Of a job that is a sweep.
void Workers::TellEnd(const Job& job, const std::string& problem) {
    if (job.task != Task::kSweep) return;
    Event event;
    event.kind = Event::kSweepEnded;
    event.worker = job.step.kind == SweepKind::kWsd ? WorkerId::kWsd : WorkerId::kSnmp;
    event.step = job.step;
    event.problem = problem;
    events_.Push(std::move(event));
}

void Workers::Tell(Call call) {
    Event event;
    event.kind = Event::kCalled;
    event.call = std::move(call);
    events_.Push(std::move(event));
}

Workers::~Workers() {
    constexpr auto kRepeat = std::chrono::milliseconds(50);
    {
        std::unique_lock<std::mutex> lock(mutex_);
        isEnding_ = true;
        changed_.notify_all();
        const auto isRunning = [](const Line& line) { return line.isRunning; };
        do {
            lock.unlock();
            Stop();
            lock.lock();
        } while (!changed_.wait_for(
            lock, kRepeat, [&] { return std::none_of(lines_.begin(), lines_.end(), isRunning); }));
    }
    for (Line& line : lines_) {
        if (line.thread.joinable()) line.thread.join();
    }
    engine_.SetOnCall(nullptr);
}

void Workers::Sweep(const std::vector<SweepStep>& steps) {
    for (const SweepStep& step : steps) {
        Job job;
        job.task = Task::kSweep;
        job.step = step;
        Add(step.kind == SweepKind::kWsd ? WorkerId::kWsd : WorkerId::kSnmp, std::move(job));
    }
}

void Workers::Ask(const AskTarget& target, bool isUrgent) {
    Job job;
    job.step.kind = target.kind;
    job.target = target;
    job.isUrgent = isUrgent;
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::Diagnose(const AskTarget& target) {
    Job job;
    job.task = Task::kDiagnosis;
    job.target = target;
    job.isUrgent = true;
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::Look(Task task) {
    WorkerId free = WorkerId::kDirected;
    for (const WorkerId worker : {WorkerId::kDirected, WorkerId::kWsd, WorkerId::kSnmp}) {
        if (IsBusy(worker)) continue;
        free = worker;
        break;
    }
    Job job;
    job.task = task;
    job.isUrgent = true;
    Add(free, std::move(job));
}

void Workers::Walk(const AskTarget& target, const Oid& root, unsigned walk) {
    Job job;
    job.task = Task::kWalk;
    job.target = target;
    job.root = root;
    job.walk = walk;
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::StopWalk() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++walkStops_;
    DropWalks();
}

// Must be called with the lock.
void Workers::DropWalks() {
    std::deque<Job>& jobs = lines_[static_cast<size_t>(WorkerId::kDirected)].jobs;
    const auto dropped = std::stable_partition(
        jobs.begin(), jobs.end(), [](const Job& job) { return job.task != Task::kWalk; });
    for (auto job = dropped; job != jobs.end(); ++job) {
        Event event;
        event.kind = Event::kWalked;
        event.worker = WorkerId::kDirected;
        event.walk = job->walk;
        event.walkEnd.isStopped = true;
        events_.Push(std::move(event));
    }
    jobs.erase(dropped, jobs.end());
}

void Workers::Add(WorkerId worker, Job job) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Line& line = lines_[static_cast<size_t>(worker)];
    if (worker == WorkerId::kDirected) {
        const auto isSame = [&](const Job& other) {
            return other.task == job.task && other.target.kind == job.target.kind &&
                   other.target.address == job.target.address;
        };
        const auto known = std::find_if(line.jobs.begin(), line.jobs.end(), isSame);
        if (known != line.jobs.end()) {
            if (!job.isUrgent) return;
            line.jobs.erase(known);
        }
    }
    isStopTold_ = false;
    auto place = job.isUrgent ? line.jobs.begin() : line.jobs.end();
    if (job.task == Task::kWalk)
        place = std::find_if(line.jobs.begin(), line.jobs.end(),
                             [](const Job& other) { return !other.isUrgent; });
    line.jobs.insert(place, std::move(job));
    if (!line.thread.joinable()) line.thread = std::thread([this, worker] { Run(worker); });
    changed_.notify_all();
}

void Workers::Stop() {
    bool wasTold = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++stops_;
        wasTold = std::exchange(isStopTold_, true);
        DropWalks();
        for (Line& line : lines_) {
            for (const Job& job : line.jobs) TellEnd(job);
            line.jobs.clear();
        }
    }
    Call call;
    call.time = UtcNow();
    call.result = "0";
    for (const char* name : {"StopDiscoverSnmp", "StopDiscoverSoap"}) {
        call.name = name;
        if (!wasTold) Tell(call);  // before the sweeps that they end
    }
    RepeatStop();
}

void Workers::RepeatStop() {
    engine_.StopSnmp();
    engine_.StopWsd();
}

bool Workers::IsBusy(WorkerId worker) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const Line& line = lines_[static_cast<size_t>(worker)];
    return line.isRunning || !line.jobs.empty();
}

bool Workers::IsBusy() const {
    return IsBusy(WorkerId::kSnmp) || IsBusy(WorkerId::kWsd) || IsBusy(WorkerId::kDirected);
}

size_t Workers::Waiting() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return lines_[static_cast<size_t>(WorkerId::kDirected)].jobs.size();
}

// Must be called with the lock.
Workers::Job Workers::TakeFirst(Line& line) {
    Job job = std::move(line.jobs.front());
    line.jobs.pop_front();
    job.stops = stops_;
    job.walkStops = walkStops_;
    return job;
}

void Workers::Run(WorkerId worker) {
    Line& line = lines_[static_cast<size_t>(worker)];
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
        changed_.wait(lock, [&] { return isEnding_ || !line.jobs.empty(); });
        if (isEnding_) return;
        Job job = TakeFirst(line);
        line.isRunning = true;
        lock.unlock();
        std::string problem;
        try {
            Do(worker, job);
        } catch (const std::bad_alloc&) {
            problem = "out of memory";  // the answers received so far are kept
        } catch (const std::exception& error) {
            problem = error.what();
        }
        TellEnd(job, problem);
        lock.lock();
        line.isRunning = false;
        const bool isIdle = line.jobs.empty();
        changed_.notify_all();
        if (!isIdle) continue;
        lock.unlock();
        Event event;
        event.worker = worker;
        event.time = UtcNow();
        events_.Push(std::move(event));
        lock.lock();
    }
}

void Workers::Do(WorkerId worker, const Job& job) {
    Event event;
    event.worker = worker;
    event.step = job.step;
    event.time = UtcNow();
    if (job.task == Task::kWalk) return DoWalk(job, std::move(event));
    if (job.task == Task::kDiagnosis) return DoDiagnosis(job, std::move(event));
    if (job.task == Task::kReading) {
        event.address = job.target.address;
        event.kind = Event::kAskBegan;
        events_.Push(event);
        event.read = engine_.Read(job.target, [this, &job] { return stops_ == job.stops; });
        event.kind = Event::kAsked;
        event.time = UtcNow();
        events_.Push(std::move(event));
        return;
    }
    if (job.task != Task::kSweep) return DoLook(job.task, std::move(event));
    event.kind = Event::kSweepBegan;
    events_.Push(event);
    engine_.Sweep(job.step, [&](const char* address, std::string_view bytes) {
        Event answer;
        answer.kind = Event::kAnswer;
        answer.worker = worker;
        answer.time = UtcNow();
        answer.address = address;
        answer.bytes = bytes;
        events_.Push(std::move(answer));
    });
}

void Workers::DoWalk(const Job& job, Event event) {
    event.kind = Event::kWalkBegan;
    event.address = job.target.address;
    event.walk = job.walk;
    events_.Push(event);
    event.kind = Event::kWalkStep;
    const auto mayGoOn = [&] {
        while (stops_ == job.stops && DoUrgentJob()) continue;
        return stops_ == job.stops && walkStops_ == job.walkStops;
    };
    size_t variables = 0;
    const WalkEnd end = engine_.Walk(job.target, job.root, mayGoOn, [&](const Answer& variable) {
        event.variable = variable;
        events_.Push(event);
        return ++variables < kMaxWalkVariables;
    });
    event.kind = Event::kWalked;
    event.walkEnd = end;
    events_.Push(std::move(event));
}

// False if none is waiting.
bool Workers::DoUrgentJob() {
    Job job;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        Line& line = lines_[static_cast<size_t>(WorkerId::kDirected)];
        if (line.jobs.empty() || !line.jobs.front().isUrgent) return false;
        job = TakeFirst(line);
    }
    Do(WorkerId::kDirected, job);
    return true;
}

void Workers::DoDiagnosis(const Job& job, Event event) {
    event.address = job.target.address;
    event.kind = Event::kDiagnosisBegan;
    events_.Push(event);
    event.diagnosis = engine_.Diagnose(job.target, [this, &job] { return stops_ == job.stops; });
    event.adapters = engine_.IPv4();
    event.kind = Event::kDiagnosed;
    events_.Push(std::move(event));
}

void Workers::DoLook(Task task, Event event) {
    if (task == Task::kAdapters) {
        event.kind = Event::kAdapters;
        event.adapters = engine_.IPv4();
    } else {
        event.kind = Event::kReport;
        event.report = engine_.Report();
    }
    events_.Push(std::move(event));
}

}  // namespace vndiscover::host
