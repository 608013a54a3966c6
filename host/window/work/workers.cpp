#include "window/work/workers.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "platform/error_text.h"
#include "platform/this_computer.h"
#include "values/ip_address.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

std::string KeyOf(const char* task, const AskTarget& target) {
    return task + std::to_string(static_cast<int>(target.kind)) + target.address;
}

// An exception is a failed reading.
FleetDevice ReadOne(Engine& engine, const AskTarget& target, const FleetDevice& job, Reader* reader,
                    const std::function<bool()>& mayGoOn) try {
    return engine.ReadForList(target, job, reader, mayGoOn);
} catch (...) {
    FleetDevice result = job;
    result.answers.lastStatus = Status::kSendFailed;
    result.answers.lastProblem = ExceptionText();
    return result;
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
    std::unique_lock<std::mutex> lock(mutex_);
    std::exception_ptr failure;
    for (size_t left = closures_.size(); left > 0 && !closures_.empty() && !failure; --left) {
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
    for (Side& side : sides_) side.thread.join();
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

void Workers::Ask(const AskTarget& target, bool isUrgent, bool isSelected) {
    Job job;
    job.order = isUrgent ? Order::kUrgent : Order::kLater;
    job.key = KeyOf("read", target);
    job.isReading = true;
    job.isSelected = isSelected;
    const auto end = [this](const AskTarget& asked, PrinterAnswers answers) {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            reading_.clear();
        }
        Results::Read read;
        read.target = asked;
        read.time = UtcNow();
        read.answers = std::move(answers);
        Post([read = std::move(read)](Results& results) mutable {
            results.OnRead(std::move(read));
        });
    };
    job.fail = [end, target](const std::string& problem) {
        PrinterAnswers none;
        none.lastStatus = Status::kSendFailed;
        none.lastProblem = problem;
        none.gaps.push_back({"details", "", problem});
        end(target, std::move(none));
    };
    job.run = [this, target, end](const Stops& before) {
        Post([address = target.address](Results& results) {
            results.OnReadingBegan(address, false);
        });
        AskTarget asked = target;
        PrinterAnswers answers = engine_.Read(
            asked, Watched(wait_, target.address, [&] { return stops_ == before.all; }));
        end(asked, std::move(answers));
    };
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::Begin(Wait& wait, const std::string& address) {
    const std::lock_guard<std::mutex> lock(mutex_);
    wait = {address, std::chrono::steady_clock::now()};
}

// Called before each request, it notes when that began.
std::function<bool()> Workers::Watched(Wait& wait, const std::string& address,
                                       std::function<bool()> mayGoOn) {
    return [this, &wait, address, mayGoOn = std::move(mayGoOn)] {
        const bool isAllowed = mayGoOn();
        Begin(wait, isAllowed ? address : "");
        return isAllowed;
    };
}

void Workers::ReadAll(const std::vector<AskTarget>& targets) {
    StopRun();
    for (Side& side : sides_) side.thread.join();
    sides_.clear();
    auto run = std::make_shared<FleetRun>();
    run->targets = targets;
    for (const AskTarget& target : targets) {
        Login login = LoginOf(target);
        run->fleet.Add(target.address, run->NumberOf(login), {});
        for (const std::string& community : target.otherCommunities) {
            login.community = community;
            run->NumberOf(login);  // before the readers are told
        }
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        run_ = run;
    }
    run->sides = std::min(engine_.MaxReaders(), targets.size() / 2);
    if (run->sides == 0) return ReadFleetHere(run);
    for (size_t count = run->sides; count > 0; --count) {
        Side& side = sides_.emplace_back();
        side.thread = std::thread([this, run, &side] { RunSide(run, side); });
    }
}

size_t Workers::FleetRun::NumberOf(const Login& login) {
    const auto known = std::find_if(logins.begin(), logins.end(), [&](const Login& other) {
        return other.community == login.community && other.security == login.security;
    });
    const auto number = static_cast<size_t>(known - logins.begin());
    if (known == logins.end()) logins.push_back(login);
    return number;
}

// Of a device that was silent, if it is not known by which community it answers.
bool Workers::FleetRun::TryNextCommunity(AskTarget target) {
    if (target.otherCommunities.empty()) return false;
    target.credentials.community = target.otherCommunities.front();
    target.otherCommunities.erase(target.otherCommunities.begin());
    fleet.Add(target.address, NumberOf(LoginOf(target)), {});
    targets.push_back(std::move(target));
    return true;
}

void Workers::RunSide(const std::shared_ptr<FleetRun>& run, Side& side) {
    const auto use = [&](Reader* reader) {
        const std::lock_guard<std::mutex> lock(mutex_);
        side.reader = reader;
    };
    std::unique_ptr<Reader> reader;
    try {
        reader = engine_.MakeReader(run->logins);
        use(reader.get());
        while (ReadNext(run, reader.get(), side.wait, [&] { return reader->IsAlive(); })) continue;
    } catch (...) {  // no memory: what it has not read is left to others
    }
    use(nullptr);
    bool isLast = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        side.wait = {};
        isLast = --run->sides == 0;
    }
    if (isLast) ReadFleetHere(run);  // if processes could not be started, or have ended
}

// What is left, one after the other. While it runs, urgent jobs are executed between two requests.
void Workers::ReadFleetHere(const std::shared_ptr<FleetRun>& run) {
    bool isOver = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isOver = run->isStopped || run->fleet.IsOver();
    }
    if (isOver) return EndRun(run);
    Job job;
    job.order = Order::kLater;
    job.fail = [this, run](const std::string&) { EndRun(run); };
    job.drop = [] {};  // StopRun reports it
    job.run = [this, run](const Stops& before) {
        const auto mayGoOn = [&] {
            while (stops_ == before.all && ExecuteUrgentJob()) continue;
            return stops_ == before.all;
        };
        while (ReadNext(run, nullptr, wait_, mayGoOn)) continue;
        EndRun(run);
    };
    Add(WorkerId::kDirected, std::move(job));
}

// Sets what is known of the device then. Returns true if it is to be asked again.
bool Workers::FleetRun::Save(FleetDevice job, PrinterAnswers& known) {
    const size_t index = job.index;
    fleet.Done(std::move(job));
    const FleetDevice& device = fleet.Devices()[index];
    known = device.answers;
    const bool isSilent = known.lastStatus == Status::kNoAnswer && known.values.empty();
    return device.isRead ? isSilent && TryNextCommunity(targets[index])
                         : known.lastStatus != Status::kAnswered;
}

// Executes one job of the run. Returns false if there are none left for this thread.
bool Workers::ReadNext(const std::shared_ptr<FleetRun>& run, Reader* reader, Wait& wait,
                       const std::function<bool()>& mayGoOn) {
    constexpr auto kPoll = std::chrono::milliseconds(50);
    const auto maySend = [&] {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (run->isStopped) return false;
        }
        return mayGoOn();
    };
    if (!maySend()) return false;
    std::unique_lock<std::mutex> lock(mutex_);
    if (run->isStopped || run->fleet.IsOver()) return false;
    const auto job = run->fleet.Next();
    if (!job) {
        changed_.wait_for(lock, kPoll);
        return true;
    }
    Results::Read read;
    read.target = run->targets[job->index];
    lock.unlock();
    read.isForList = true;
    Post([address = job->address](Results& results) { results.OnReadingBegan(address, true); });
    FleetDevice result =
        ReadOne(engine_, read.target, *job, reader, Watched(wait, job->address, maySend));
    Begin(wait, "");
    const bool isTried = maySend();
    lock.lock();
    if (isTried) {
        read.isPostponed = run->Save(std::move(result), read.answers);
    } else {
        run->fleet.Return(job->index);
        read.isPostponed = true;
    }
    changed_.notify_all();
    lock.unlock();
    read.time = UtcNow();
    Post([read = std::move(read)](Results& results) mutable { results.OnRead(std::move(read)); });
    return isTried;
}

void Workers::EndRun(const std::shared_ptr<FleetRun>& run) {
    size_t read = 0;
    bool isStopped = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (run_ != run) return;  // another one has begun, or it has been reported
        read = run->fleet.CountRead();
        isStopped = !run->fleet.IsOver();
        run_ = nullptr;
    }
    Post([read, total = run->targets.size(), isStopped](Results& results) {
        results.OnReadAll(read, total, isStopped);
    });
}

void Workers::StopRun() {
    std::shared_ptr<FleetRun> run;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        run = run_;
        if (run) run->isStopped = true;
        for (Side& side : sides_) {
            if (side.reader) side.reader->End();
        }
        changed_.notify_all();
    }
    if (run) EndRun(run);
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
        const auto mayGoOn = Watched(wait_, target.address, [&] {
            while (stops_ == before.all && ExecuteUrgentJob()) continue;
            return stops_ == before.all && walkStops_ == before.walks;
        });
        size_t variables = 0;
        const auto onVariable = [&](const Answer& variable) {
            Post([walk, copy = Answer(variable)](Results& results) mutable {
                results.OnVariable(walk, std::move(copy));
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
        const HostDiagnosis diagnosis = engine_.Diagnose(
            target, Watched(wait_, target.address, [&] { return stops_ == before.all; }));
        end(diagnosis, engine_.IPv4());
    };
    Add(WorkerId::kDirected, std::move(job));
}

void Workers::ReadAdapters() {
    AddUrgent(
        "adapters",
        [this](const Stops&) {
            Post([adapters = engine_.IPv4()](Results& results) { results.OnAdapters(adapters); });
        },
        // Without them, devices are only shown without their networks.
        [](const std::string&) {});
}

void Workers::MakeReport() {
    AddUrgent(
        "report",
        [this](const Stops&) {
            Post([report = engine_.Report()](Results& results) { results.OnReport(report); });
        },
        [this](const std::string& problem) {
            Post([=](Results& results) { results.OnReportFailed(problem); });
        });
}

void Workers::Resolve(const std::vector<std::string>& hosts) {
    const auto run = [this, hosts](const Stops&) {
        Results::Addresses addresses;
        std::string unknown;
        for (const std::string& host : hosts) {
            const std::string address = NumericHost(host);
            if (ParseIpAddress(address)) {
                addresses.emplace_back(address, host);
            } else {
                unknown = Joined({unknown, host});
            }
        }
        Post([=](Results& results) { results.OnResolved(addresses, unknown); });
    };
    AddUrgent("", run, [this](const std::string& problem) {
        Post([=](Results& results) { results.OnResolved({}, problem); });
    });
}

// To an idle worker, or otherwise the directed one.
void Workers::AddUrgent(std::string key, std::function<void(const Stops&)> run,
                        std::function<void(const std::string&)> fail) {
    Job job;
    job.key = std::move(key);
    job.run = std::move(run);
    job.fail = std::move(fail);
    WorkerId free = WorkerId::kDirected;
    for (const WorkerId worker : {WorkerId::kDirected, WorkerId::kWsd, WorkerId::kSnmp}) {
        if (IsBusy(worker)) continue;
        free = worker;
        break;
    }
    job.order = Order::kUrgent;
    job.isSending = false;
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
        return (job.isSelected && other.isSelected) || (!job.key.empty() && other.key == job.key);
    });
    if (known != line.jobs.end()) {
        if (job.order != Order::kUrgent) return;
        line.jobs.erase(known);
    }
    if (job.isReading && job.key == reading_) return;
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
        reading_.clear();
        for (Line& line : lines_) DropJobs(line, false);
    }
    StopRun();
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
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (run_) return true;
    }
    return IsBusy(WorkerId::kSnmp) || IsBusy(WorkerId::kWsd) || IsBusy(WorkerId::kDirected);
}

bool Workers::IsSending() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto isSending = [](const Line& line) {
        return line.isSending || std::any_of(line.jobs.begin(), line.jobs.end(),
                                             [](const Job& job) { return job.isSending; });
    };
    return run_ || std::any_of(lines_.begin(), lines_.end(), isSending);
}

Progress::Work Workers::Now() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    Progress::Work work;
    work.waiting = lines_[static_cast<size_t>(WorkerId::kDirected)].jobs.size();
    if (run_) {
        work.toRead = run_->fleet.Devices().size();
        work.read = run_->fleet.CountRead();
    }
    const auto note = [&work, now = std::chrono::steady_clock::now()](const Wait& wait) {
        using std::chrono::milliseconds;
        const int64_t ms = std::chrono::duration_cast<milliseconds>(now - wait.start).count();
        if (wait.address.empty() || ms <= work.waitMs) return;
        work.address = wait.address;
        work.waitMs = ms;
    };
    note(wait_);
    for (const Side& side : sides_) note(side.wait);
    return work;
}

// Must be called with the lock.
Workers::Job Workers::RemoveFirst(Line& line, Stops& before) {
    Job job = std::move(line.jobs.front());
    line.jobs.pop_front();
    if (job.isReading) reading_ = job.key;
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
        line.isSending = job.isSending;
        lock.unlock();
        Execute(job, before);
        lock.lock();
        line.isRunning = line.isSending = false;
        if (worker == WorkerId::kDirected) wait_ = {};
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
