#include "window/work/workers.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "platform/error_text.h"
#include "platform/this_process.h"

namespace vndiscover::host {
namespace {

std::string KeyOf(const char* task, const AskTarget& target) {
    return task + std::to_string(static_cast<int>(target.kind)) + target.address;
}

}  // namespace

void ResultQueue::Post(Closure closure) {
    bool wasEmpty = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        wasEmpty = closures_.empty();
        closures_.push_back(std::move(closure));
    }
    if (wasEmpty) onFilled_();
}

void ResultQueue::RunAll(Results& results) {
    std::vector<Closure> closures;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        closures.swap(closures_);
    }
    size_t next = 0;
    try {
        while (next < closures.size()) closures[next++](results);
    } catch (...) {
        // The others are not lost with the one that has thrown.
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            closures.erase(closures.begin(), closures.begin() + static_cast<std::ptrdiff_t>(next));
            closures.insert(closures.end(), std::make_move_iterator(closures_.begin()),
                            std::make_move_iterator(closures_.end()));
            closures_ = std::move(closures);
        }
        onFilled_();
        throw;
    }
}

Workers::Workers(Engine& engine, ResultQueue& queue) : engine_(engine), queue_(queue) {
    engine_.SetOnCall([this](Call call) {
        Post([call = std::move(call)](Results& results) mutable {
            results.OnCall(std::move(call));
        });
    });
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
        const WorkerId worker = step.kind == SweepKind::kWsd ? WorkerId::kWsd : WorkerId::kSnmp;
        Job job;
        job.fail = [this, worker](const std::string& problem) {
            Post([=](Results& results) { results.OnSweepEnded(worker, problem); });
        };
        job.drop = [fail = job.fail] { fail(""); };
        job.run = [this, worker, step, end = job.fail](const Stops&) {
            Post([=, time = UtcNow()](Results& results) {
                results.OnSweepBegan(worker, step, time);
            });
            engine_.Sweep(step, [&](const char* address, std::string_view bytes) {
                ScanAnswer answer;
                answer.time = UtcNow();
                answer.address = address;
                answer.answer = Received(bytes);
                Post([worker, answer = std::move(answer)](Results& results) mutable {
                    results.OnAnswer(worker, std::move(answer));
                });
            });
            end("");
        };
        Add(worker, std::move(job));
    }
}

void Workers::Ask(const AskTarget& target, bool isUrgent) {
    Job job;
    job.order = isUrgent ? Order::kUrgent : Order::kLater;
    job.key = KeyOf("read", target);
    const auto end = [this, target](PrinterAnswers answers) {
        Results::Read read = {target.address, target.kind, UtcNow(), std::move(answers)};
        Post([read = std::move(read)](Results& results) mutable {
            results.OnRead(std::move(read));
        });
    };
    job.fail = [end](const std::string& problem) {
        PrinterAnswers none;
        none.lastStatus = Status::kSendFailed;
        none.lastProblem = problem;
        none.gaps.push_back({"details", "", problem});
        end(std::move(none));
    };
    job.run = [this, target, end](const Stops& before) {
        Post([address = target.address](Results& results) { results.OnReadingBegan(address); });
        end(engine_.Read(target, [&] { return stops_ == before.all; }));
    };
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::Walk(const AskTarget& target, const Oid& root, unsigned walk) {
    Job job;
    job.order = Order::kWalk;
    job.key = KeyOf("walk", target);
    const auto end = [this, walk](bool hasBegun, const WalkEnd& last, const std::string& problem) {
        Post([=](Results& results) { results.OnWalked(walk, hasBegun, last, problem); });
    };
    job.fail = [end](const std::string& problem) { end(true, {}, problem); };
    job.drop = [end] {
        WalkEnd dropped;
        dropped.isStopped = true;
        end(false, dropped, "");
    };
    job.run = [this, target, root, walk, end](const Stops& before) {
        Post([=, address = target.address](Results& results) {
            results.OnWalkBegan(walk, address);
        });
        const auto mayGoOn = [&] {
            while (stops_ == before.all && ExecuteUrgentJob()) continue;
            return stops_ == before.all && walkStops_ == before.walks;
        };
        size_t variables = 0;
        const auto onVariable = [&](const Answer& variable) {
            Post([walk, variable](Results& results) mutable {
                results.OnVariable(walk, std::move(variable));
            });
            return ++variables < kMaxWalkVariables;
        };
        end(true, engine_.Walk(target, root, mayGoOn, onVariable), "");
    };
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::Diagnose(const AskTarget& target) {
    Job job;
    job.order = Order::kUrgent;
    job.key = KeyOf("diagnose", target);
    const auto end = [this, target](const HostDiagnosis& diagnosis, const AdapterList& adapters) {
        Post([=, address = target.address](Results& results) {
            results.OnDiagnosed(address, diagnosis, adapters);
        });
    };
    job.fail = [end](const std::string& problem) {
        HostDiagnosis none;
        none.problem = problem;
        end(none, {});
    };
    job.run = [this, target, end](const Stops& before) {
        Post([address = target.address](Results& results) { results.OnDiagnosisBegan(address); });
        const HostDiagnosis diagnosis =
            engine_.Diagnose(target, [&] { return stops_ == before.all; });
        end(diagnosis, engine_.IPv4());
    };
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::ReadAdapters() {
    Job job;
    job.key = "adapters";
    // Without them, devices are only shown without their networks.
    job.fail = [](const std::string&) {};
    job.run = [this](const Stops&) {
        Post([adapters = engine_.IPv4()](Results& results) { results.OnAdapters(adapters); });
    };
    AddUrgent(std::move(job));
}

void Workers::MakeReport() {
    Job job;
    job.key = "report";
    job.fail = [this](const std::string& problem) {
        Post([=](Results& results) { results.OnReportFailed(problem); });
    };
    job.run = [this](const Stops&) {
        Post([report = engine_.Report()](Results& results) { results.OnReport(report); });
    };
    AddUrgent(std::move(job));
}

// To an idle worker, or otherwise the directed one.
void Workers::AddUrgent(Job job) {
    WorkerId free = WorkerId::kDirected;
    for (const WorkerId worker : {WorkerId::kDirected, WorkerId::kWsd, WorkerId::kSnmp}) {
        if (IsBusy(worker)) continue;
        free = worker;
        break;
    }
    job.order = Order::kUrgent;
    Add(free, std::move(job));
}

void Workers::StopWalk() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++walkStops_;
    DropJobs(lines_[static_cast<size_t>(WorkerId::kDirected)], true);
}

// Must be called with the lock.
void Workers::DropJobs(Line& line, bool areOnlyWalks) const {
    const auto dropped = std::stable_partition(
        line.jobs.begin(), line.jobs.end(),
        [&](const Job& job) { return areOnlyWalks && job.order != Order::kWalk; });
    for (auto job = dropped; job != line.jobs.end(); ++job) {
        if (job->drop) job->drop();
    }
    line.jobs.erase(dropped, line.jobs.end());
}

// The latest urgent job comes first; walks come after all urgent ones.
std::deque<Workers::Job>::iterator Workers::PlaceFor(Order order, std::deque<Job>& jobs) const {
    if (order == Order::kUrgent) return jobs.begin();
    if (order == Order::kLater) return jobs.end();
    return std::find_if(jobs.begin(), jobs.end(),
                        [](const Job& other) { return other.order != Order::kUrgent; });
}

void Workers::Add(WorkerId worker, Job job) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Line& line = lines_[static_cast<size_t>(worker)];
    const auto known = std::find_if(line.jobs.begin(), line.jobs.end(), [&](const Job& other) {
        return !job.key.empty() && other.key == job.key;
    });
    if (known != line.jobs.end()) {
        if (job.order != Order::kUrgent) return;
        line.jobs.erase(known);
    }
    isStopReported_ = false;
    line.jobs.insert(PlaceFor(job.order, line.jobs), std::move(job));
    if (!line.thread.joinable()) line.thread = std::thread([this, worker] { Run(worker); });
    changed_.notify_all();
}

void Workers::Stop() {
    bool wasReported = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++stops_;
        wasReported = std::exchange(isStopReported_, true);
        for (Line& line : lines_) DropJobs(line, false);
    }
    for (const char* name : {"StopDiscoverSnmp", "StopDiscoverSoap"}) {
        if (wasReported) break;
        Call call;
        call.name = name;
        call.time = UtcNow();
        call.result = "0";
        Post([=](Results& results) { results.OnCall(call); });  // before the sweeps that it ends
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
Workers::Job Workers::RemoveFirst(Line& line, Stops& before) const {
    Job job = std::move(line.jobs.front());
    line.jobs.pop_front();
    before = {stops_, walkStops_};
    return job;
}

void Workers::Run(WorkerId worker) {
    Line& line = lines_[static_cast<size_t>(worker)];
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
        changed_.wait(lock, [&] { return isEnding_ || !line.jobs.empty(); });
        if (isEnding_) return;
        Stops before;
        const Job job = RemoveFirst(line, before);
        line.isRunning = true;
        lock.unlock();
        Execute(job, before);
        lock.lock();
        line.isRunning = false;
        const bool isIdle = line.jobs.empty();
        changed_.notify_all();
        if (!isIdle) continue;
        lock.unlock();
        Post([](Results&) {});  // so that the window sees that it is idle
        lock.lock();
    }
}

void Workers::Execute(const Job& job, const Stops& before) {
    try {
        job.run(before);
    } catch (...) {
        job.fail(ExceptionText());  // results so far are kept
    }
}

// Returns false if none is waiting.
bool Workers::ExecuteUrgentJob() {
    Job job;
    Stops before;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        Line& line = lines_[static_cast<size_t>(WorkerId::kDirected)];
        if (line.jobs.empty() || line.jobs.front().order != Order::kUrgent) return false;
        job = RemoveFirst(line, before);
    }
    Execute(job, before);
    return true;
}

}  // namespace vndiscover::host
