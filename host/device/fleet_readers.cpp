#include "device/fleet_readers.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "values/ranges.h"

namespace vndiscover::host {

FleetReaders::~FleetReaders() {
    if (!workers_.empty()) Stop();
    Join();
}

bool FleetReaders::Start(size_t most) {
    const std::lock_guard<std::mutex> lock(mutex_);  // none ends before all have begun
    try {
        for (size_t left = std::min(most, fleet_.Devices().size() / 2); left > 0; --left) {
            Worker& worker = workers_.emplace_back();
            worker.thread = std::thread([this, &worker] { Run(worker); });
            ++running_;
        }
    } catch (const std::exception&) {  // no memory, or no thread: there are fewer
        if (!workers_.empty() && !workers_.back().thread.joinable()) workers_.pop_back();
    }
    return running_ != 0;
}

void FleetReaders::Run(Worker& worker) {
    try {
        {
            const std::lock_guard start(startMutex_);
            std::unique_ptr<Reader> reader = isStopped_ ? nullptr : work_.makeReader();
            const std::lock_guard lock(mutex_);
            worker.reader = std::move(reader);
            worker.hasBegun = true;
        }
        while (ReadNext(worker.reader.get(), [&] { return worker.reader->IsAlive(); })) continue;
    } catch (...) {  // no memory: what it has not read is left to others
    }
    std::unique_ptr<Reader> reader;  // its process is ended without the lock
    std::unique_lock<std::mutex> lock(mutex_);
    reader = std::move(worker.reader);
    worker.hasBegun = true;
    const bool isLast = --running_ == 0;
    changed_.notify_all();
    lock.unlock();
    if (!isLast || !work_.onIdle) return;
    try {
        work_.onIdle();
    } catch (...) {  // no memory even to report that
    }
}

bool FleetReaders::ReadNext(Reader* reader, const MayGoOn& mayGoOn) {
    constexpr auto kPoll = std::chrono::milliseconds(50);
    const auto maySend = [&] { return !isStopped_ && mayGoOn(); };
    if (!maySend()) return false;
    std::unique_lock<std::mutex> lock(mutex_);
    if (fleet_.IsOver()) return false;
    const auto job = fleet_.Next();
    if (!job) {
        changed_.wait_for(lock, kPoll);
        return true;
    }
    lock.unlock();
    try {
        FleetDevice result = work_.read(*job, reader, maySend);
        const bool isDone = maySend();
        lock.lock();
        if (isDone) {
            fleet_.Done(std::move(result));
        } else {
            fleet_.Return(job->index);
        }
        if (work_.onEnd) work_.onEnd(job->index, isDone);
        changed_.notify_all();
        return isDone;
    } catch (...) {
        if (!lock) lock.lock();
        fleet_.Return(job->index);
        throw;
    }
}

void FleetReaders::Stop() {
    isStopped_ = true;
    const std::lock_guard<std::mutex> lock(mutex_);
    for (Worker& worker : workers_) {
        if (worker.reader) worker.reader->End();
    }
    changed_.notify_all();
}

bool FleetReaders::HaveBegun() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return AllOf(workers_, [](const Worker& worker) { return worker.hasBegun; });
}

bool FleetReaders::HasEnded() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return running_ == 0;
}

void FleetReaders::Join() {
    for (Worker& worker : workers_) {
        if (worker.thread.joinable()) worker.thread.join();
    }
    workers_.clear();
}

}  // namespace vndiscover::host
