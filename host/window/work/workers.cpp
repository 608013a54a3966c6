#include "window/work/workers.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/this_computer.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

std::string KeyOf(const char* task, const AskTarget& target) {
    return task + std::to_string(static_cast<int>(target.Kind())) + target.address;
}

bool IsSilent(const PrinterAnswers& answers) {
    return answers.values.empty() && answers.lastStatus == Status::kNoAnswer;
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

void ResultQueue::RunAll(Results& results, size_t most) {
    std::unique_lock<std::mutex> lock(mutex_);
    std::exception_ptr failure;
    size_t left = std::min(closures_.size(), most);
    for (; left > 0 && !closures_.empty() && !failure; --left) {
        const Closure next = std::move(closures_.front());
        closures_.pop_front();
        lock.unlock();
        try {
            next(results);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
    }
    const bool isFilled = !closures_.empty();
    lock.unlock();
    if (isFilled) onFilled_();
    if (failure) std::rethrow_exception(failure);
}

Workers::Workers(Engine& engine, ResultQueue& queue) : engine_(engine), queue_(queue) {
    engine_.SetOnCall([this](Call call) { Report(&Results::OnCall, std::move(call)); });
}

Workers::~Workers() {
    constexpr auto kRepeat = std::chrono::milliseconds(50);
    Stop();
    if (run_) run_->readers->Join();  // so that none of its threads is its last owner
    run_.reset();
    {
        std::unique_lock<std::mutex> lock(mutex_);
        isEnding_ = true;
        changed_.notify_all();
        const auto isRunning = [](const Worker& worker) { return worker.isRunning; };
        do {
            lock.unlock();
            Stop();
            lock.lock();
        } while (!changed_.wait_for(lock, kRepeat, [&] { return !AnyOf(workers_, isRunning); }));
    }
    for (Worker& worker : workers_) {
        if (worker.thread.joinable()) worker.thread.join();
    }
    engine_.SetOnCall(nullptr);
}

void Workers::Sweep(const std::vector<SweepStep>& steps) {
    for (const SweepStep& step : steps) {
        const WorkerId worker = step.kind == SweepKind::kWsd ? WorkerId::kWsd : WorkerId::kSnmp;
        const auto fail = [this, worker](const std::string& problem) {
            Report(&Results::OnSweepEnded, worker, true, problem);
        };
        const auto run = [this, worker, step](const Stops&) {
            Report(&Results::OnSweepBegan, worker, step, UtcNow());
            const bool wasSent =
                engine_.Sweep(step, [&](const char* address, std::string_view bytes) {
                    Report(&Results::OnAnswer, worker,
                           ScanAnswer{0, UtcNow(), address, Received(bytes)});
                });
            Report(&Results::OnSweepEnded, worker, wasSent, std::string());
        };
        Add(worker, {Order::kLater, "", run, fail, [fail] { fail(""); }});
    }
}

void Workers::Read(const AskTarget& target, bool isUrgent, bool isSelected) {
    const auto end = [this](const AskTarget& asked, PrinterAnswers answers, bool isLate = false) {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            reading_.clear();
        }
        Report(&Results::OnRead, Results::Read{asked, UtcNow(), std::move(answers), false, isLate});
    };
    const auto fail = [end, target](const std::string& problem) {
        PrinterAnswers none;
        none.lastStatus = Status::kSendFailed;
        none.lastProblem = problem;
        none.gaps.push_back({"details", "", problem});
        end(target, std::move(none));
    };
    const auto order = isUrgent ? Order::kUrgent : Order::kLater;
    const auto run = [this, target, isSelected, order, end](const Stops& before) {
        Report(&Results::OnReadingBegan, target.address, false);
        AskTarget asked = target;
        PrinterAnswers answers;
        bool isLate = false;
        const auto watched = Watched(target.address, before, order);
        const auto mayGoOn = [&, start = std::chrono::steady_clock::now()] {
            isLate = isSelected && stops_ == before.all && IsSelectionWaiting() &&
                     std::chrono::steady_clock::now() - start > std::chrono::seconds(3);
            return !isLate && watched();
        };
        do {
            answers = engine_.Read(asked, mayGoOn);
        } while (!isLate && IsSilent(answers) && asked.UseNextCommunity());
        end(asked, std::move(answers), isLate);
        if (isLate && stops_ == before.all) Read(asked, false);
    };
    Job job = {order, KeyOf("read", target), run, fail};
    job.isReading = true;
    job.isSelected = isSelected;
    Add(WorkerId::kDirected, std::move(job));
}

// Whether a device that was selected later is waiting.
bool Workers::IsSelectionWaiting() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return AnyOf(WorkerAt(WorkerId::kDirected).jobs, [](const Job& job) { return job.isSelected; });
}

// Returns what a job calls before each request. That runs urgent jobs unless this one is urgent,
// and records when the request begins.
Workers::MayGoOn Workers::Watched(const std::string& address, const Stops& before, Order order) {
    return [this, address, before, order] {
        while (order != Order::kUrgent && stops_ == before.all && ExecuteUrgentJob()) continue;
        const bool mayGoOn =
            stops_ == before.all && (order != Order::kWalk || walkStops_ == before.walks);
        RecordWait(mayGoOn ? address : "");
        return mayGoOn;
    };
}

// Records that this thread waits for an answer of the address from now on; an empty one: for none.
void Workers::RecordWait(const std::string& address) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto thread = std::this_thread::get_id();
    if (address.empty()) {
        waits_.erase(thread);
    } else {
        waits_[thread] = {address, std::chrono::steady_clock::now()};
    }
}

void Workers::ReadAll(const std::vector<AskTarget>& targets) {
    StopRun();
    if (run_) run_->readers->Join();
    const auto next = std::make_shared<FleetRun>();
    FleetRun& run = *next;
    run.targets = targets;
    for (const AskTarget& target : targets) {
        Login login = target.login;
        run.fleet.Add(target.address, IndexOrAppend(run.logins, login), {});
        for (const std::string& community : target.otherCommunities) {
            login.community = community;
            IndexOrAppend(run.logins, login);  // readers get all logins when they start
        }
    }
    FleetReaders::Work work;
    work.makeReader = [this, &run] { return engine_.MakeReader(run.logins); };
    work.read = [this, &run](const FleetDevice& job, Reader* reader, const MayGoOn& mayGoOn) {
        return ReadForList(run, job, reader, mayGoOn);
    };
    work.onEnd = [this, &run](size_t index, bool isDone) { EndReading(run, index, isDone); };
    work.onIdle = [this, weak = std::weak_ptr<FleetRun>(next)] {
        const auto shared = weak.lock();
        if (!shared) return;
        try {
            ReadLeft(shared);
        } catch (...) {  // no thread for it: the rest is not read
            EndRun(*shared);
        }
    };
    run.readers.emplace(run.fleet, mutex_, std::move(work));
    run_ = next;
    if (!run.readers->Start(engine_.MaxReaders())) ReadLeft(run_);
}

// For a silent device. Returns false if there is no other community to try.
bool Workers::FleetRun::TryNextCommunity(AskTarget target) {
    if (!target.UseNextCommunity()) return false;
    fleet.Add(target.address, IndexOrAppend(logins, target.login), {});
    targets.push_back(std::move(target));
    ++retries;
    return true;
}

// Counts each device once.
Progress::Read Workers::FleetRun::Count() const {
    Progress::Read read = {fleet.CountRead() - retries, unread, targets.size() - retries};
    // With retries, states are no longer read in a round of their own.
    const auto states = retries == 0 ? fleet.CountStates() : std::nullopt;
    read.isOfStates = states.has_value();
    read.done = states.value_or(read.done);
    return read;
}

// An exception becomes a failed reading.
FleetDevice Workers::ReadForList(FleetRun& run, const FleetDevice& job, Reader* reader,
                                 const MayGoOn& mayGoOn) {
    AskTarget target;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        target = run.targets[job.index];
    }
    Report(&Results::OnReadingBegan, job.address, true);
    FleetDevice result = job;
    try {
        result = engine_.ReadForList(target, job, reader, [&] {
            const bool isAllowed = mayGoOn();
            RecordWait(isAllowed ? job.address : "");
            return isAllowed;
        });
    } catch (...) {
        result.answers.lastStatus = Status::kSendFailed;
        result.answers.lastProblem = ExceptionText();
    }
    RecordWait("");
    return result;
}

// The caller must have locked the mutex.
void Workers::EndReading(FleetRun& run, size_t index, bool isDone) {
    const FleetDevice device = run.fleet.Devices()[index];
    const PrinterAnswers& answers = device.answers;
    const bool hasAnswered = answers.lastStatus == Status::kAnswered;
    Results::Read read = {run.targets[index], UtcNow(), answers, true, !isDone};
    if (isDone && device.isRead) {
        read.isPostponed = IsSilent(answers) && run.TryNextCommunity(read.target);
        run.unread += !hasAnswered && answers.values.empty() && !read.isPostponed;
    } else if (isDone) {
        read.isPostponed = !hasAnswered;
        read.isStateOnly = true;
    }
    Report(&Results::OnRead, std::move(read));
}

// The directed worker reads what the readers have left, one device after the other. Urgent jobs run
// between two requests.
void Workers::ReadLeft(const std::shared_ptr<FleetRun>& run) {
    bool isOver = run->readers->IsStopped();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isOver |= run->fleet.IsOver();
    }
    if (isOver) return EndRun(*run);
    const auto read = [this, run](const Stops& before) {
        while (run->readers->ReadNext(nullptr, Watched("", before, Order::kLater))) continue;
        EndRun(*run);
    };
    // If the job is dropped, StopRun reports the end.
    Add(WorkerId::kDirected,
        {Order::kLater, "", read, [this, run](const std::string&) { EndRun(*run); }});
}

void Workers::EndRun(FleetRun& run) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!std::exchange(run.isReported, true)) Report(&Results::OnReadAll, run.Count());
}

void Workers::StopRun() {
    if (!run_) return;
    run_->readers->Stop();
    EndRun(*run_);
}

void Workers::Walk(const AskTarget& target, const Oid& root, unsigned walk) {
    const auto end = [this, walk](bool hasBegun, const WalkEnd& last, const std::string& problem) {
        Report(&Results::OnWalked, walk, hasBegun, last, problem);
    };
    const auto fail = [end](const std::string& problem) { end(true, {}, problem); };
    const auto drop = [end] {
        WalkEnd dropped;
        dropped.isStopped = true;
        end(false, dropped, "");
    };
    const auto run = [this, target, root, walk, end](const Stops& before) {
        Report(&Results::OnWalkBegan, walk, target.address);
        size_t variables = 0;
        const auto onVariable = [&](const Answer& variable) {
            Report(&Results::OnVariable, walk, variable);
            return ++variables < kMaxWalkVariables;
        };
        const auto mayGoOn = Watched(target.address, before, Order::kWalk);
        end(true, engine_.Walk(target, root, mayGoOn, onVariable), "");
    };
    Add(WorkerId::kDirected, {Order::kWalk, KeyOf("walk", target), run, fail, drop});
}

void Workers::Diagnose(const AskTarget& target) {
    const auto fail = [this, address = target.address](const std::string& problem) {
        HostDiagnosis none;
        none.problem = problem;
        Report(&Results::OnDiagnosed, address, none, AdapterList());
    };
    const auto run = [this, target](const Stops& before) {
        Report(&Results::OnDiagnosisBegan, target.address);
        const HostDiagnosis diagnosis =
            engine_.Diagnose(target, Watched(target.address, before, Order::kUrgent));
        Report(&Results::OnDiagnosed, target.address, diagnosis, engine_.IPv4());
    };
    Add(WorkerId::kDirected, {Order::kUrgent, KeyOf("diagnose", target), run, fail});
}

void Workers::ReadAdapters() {
    // A failure is not reported: devices are only shown without their networks.
    AddUrgent(
        "adapters", [this] { Report(&Results::OnAdapters, engine_.IPv4()); }, false);
}

void Workers::MakeReport() {
    AddUrgent("report", [this] { Report(&Results::OnReport, engine_.Report()); });
}

void Workers::Resolve(const std::vector<std::string>& hosts) {
    const auto run = [this, hosts](const Stops& before) {
        Results::Addresses addresses;
        std::vector<std::string> unknown;
        for (const std::string& host : hosts) {
            if (stops_ != before.all) return;  // reports nothing, like a dropped job
            const auto known = ParseIpAddress(NumericHost(host));
            if (known && known->IsUnicast()) {
                addresses.emplace_back(IpText(known->bytes), host);  // as sweeps write it
            } else {
                unknown.push_back(host);
            }
        }
        if (stops_ == before.all) Report(&Results::OnResolved, addresses, unknown);
    };
    const auto fail = [this](const std::string& problem) {
        Report(&Results::OnJobFailed, problem);
    };
    Job job = {Order::kLater, "", run, fail};
    job.isSending = false;
    Add(WorkerId::kNames, std::move(job));
}

// Adds the job to an idle worker or, if none is idle, to the directed one.
void Workers::AddUrgent(const char* key, const std::function<void()>& run, bool isFailureReported) {
    const auto fail = [this, isFailureReported](const std::string& problem) {
        if (isFailureReported) Report(&Results::OnJobFailed, problem);
    };
    Job job = {Order::kUrgent, key, [run](const Stops&) { run(); }, fail};
    job.isSending = false;
    const auto isIdle = [this](WorkerId id) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return !WorkerAt(id).IsBusy();
    };
    const auto workers = {WorkerId::kDirected, WorkerId::kWsd, WorkerId::kSnmp};
    const auto* const idle = FindIf(workers, isIdle);
    Add(idle ? *idle : WorkerId::kDirected, std::move(job));
}

void Workers::StopWalk() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++walkStops_;
    DropJobs(WorkerAt(WorkerId::kDirected), true);
}

// The caller must have locked the mutex.
void Workers::DropJobs(Worker& worker, bool areOnlyWalks) {
    const auto dropped = std::stable_partition(
        worker.jobs.begin(), worker.jobs.end(),
        [&](const Job& job) { return areOnlyWalks && job.order != Order::kWalk; });
    for (auto job = dropped; job != worker.jobs.end(); ++job) {
        if (job->drop) job->drop();
    }
    worker.jobs.erase(dropped, worker.jobs.end());
}

void Workers::Add(WorkerId id, Job job) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Worker& worker = WorkerAt(id);
    const auto isSame = [&](const Job& other) { return !job.key.empty() && other.key == job.key; };
    const Job* const known = FindIf(worker.jobs, isSame);
    if (known && job.order != Order::kUrgent) return;
    const bool isOnlySelected = job.isSelected && (!known || known->isSelected);
    EraseIf(worker.jobs, [&](const Job& other) {
        return isSame(other) || (job.isSelected && other.isSelected);
    });
    job.isSelected = isOnlySelected;  // a device that the user asked for must not be replaced
    if (job.isReading && job.key == reading_) return;
    isStopReported_ = false;
    // The latest urgent job comes first. Walks come after all urgent ones.
    const auto place = std::find_if(worker.jobs.begin(), worker.jobs.end(), [&](const Job& other) {
        return job.order != Order::kLater && other.order >= job.order;
    });
    worker.jobs.insert(place, std::move(job));
    if (!worker.thread.joinable()) worker.thread = std::thread([this, &worker] { Run(worker); });
    changed_.notify_all();
}

void Workers::Stop() {
    bool wasReported = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++stops_;
        wasReported = std::exchange(isStopReported_, true);
        reading_.clear();
        for (Worker& worker : workers_) DropJobs(worker, false);
    }
    StopRun();
    for (const char* name : {"StopDiscoverSnmp", "StopDiscoverSoap"}) {
        Call call;
        call.name = name;
        call.time = UtcNow();
        call.result = "0";
        if (!wasReported) Report(&Results::OnCall, call);  // before the calls that it ends
    }
    RepeatStop();
}

bool Workers::IsBusy() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return IsReadingAll() || AnyOf(workers_, [](const Worker& worker) { return worker.IsBusy(); });
}

bool Workers::IsSending() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto isSending = [](const Worker& worker) {
        return worker.isSending || AnyOf(worker.jobs, [](const Job& job) { return job.isSending; });
    };
    return IsReadingAll() || AnyOf(workers_, isSending);
}

Progress::Work Workers::Now() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    Progress::Work work;
    work.waiting = workers_[static_cast<size_t>(WorkerId::kDirected)].jobs.size();
    if (IsReadingAll()) work.read = run_->Count();
    for (const auto& [thread, wait] : waits_) {
        using std::chrono::milliseconds;
        const auto waited = std::chrono::steady_clock::now() - wait.start;
        const int64_t ms = std::chrono::duration_cast<milliseconds>(waited).count();
        if (ms <= work.waitMs) continue;
        work.address = wait.address;
        work.waitMs = ms;
    }
    return work;
}

// The caller must have locked the mutex.
Workers::Job Workers::RemoveFirst(Worker& worker, Stops& before) {
    Job job = std::move(worker.jobs.front());
    worker.jobs.pop_front();
    if (job.isReading) reading_ = job.key;
    before = {stops_, walkStops_};
    return job;
}

void Workers::Run(Worker& worker) {
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
        changed_.wait(lock, [&] { return isEnding_ || !worker.jobs.empty(); });
        if (isEnding_) return;
        Stops before;
        const Job job = RemoveFirst(worker, before);
        worker.isRunning = true;
        worker.isSending = job.isSending;
        lock.unlock();
        Execute(job, before);
        lock.lock();
        worker.isRunning = worker.isSending = false;
        waits_.erase(std::this_thread::get_id());
        changed_.notify_all();
        if (worker.jobs.empty())
            queue_.Post([](Results&) {});  // the window sees that the worker is idle
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
        Worker& worker = WorkerAt(WorkerId::kDirected);
        if (worker.jobs.empty() || worker.jobs.front().order != Order::kUrgent) return false;
        job = RemoveFirst(worker, before);
    }
    Execute(job, before);
    return true;
}

}  // namespace vndiscover::host
