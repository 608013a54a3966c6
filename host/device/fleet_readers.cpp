#include "device/fleet_readers.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace vndiscover::host {

FleetReaders::~FleetReaders() {
    if (!sides_.empty()) Stop();
    Join();
}

bool FleetReaders::Start(size_t most) {
    const std::lock_guard<std::mutex> lock(mutex_);  // none ends before all have begun
    try {
        for (size_t left = std::min(most, fleet_.Devices().size() / 2); left > 0; --left) {
            Side& side = sides_.emplace_back();
            side.thread = std::thread([this, &side] { Run(side); });
            ++running_;
        }
    } catch (const std::exception&) {  // no memory, or no thread: there are fewer
        if (!sides_.empty() && !sides_.back().thread.joinable()) sides_.pop_back();
    }
    return running_ != 0;
}

void FleetReaders::Run(Side& side) {
    try {
        {
            const std::lock_guard making(making_);
            std::unique_ptr<Reader> reader = isStopped_ ? nullptr : work_.makeReader();
            const std::lock_guard lock(mutex_);
            side.reader = std::move(reader);
            side.hasBegun = true;
        }
        while (ReadNext(side.reader.get(), [&] { return side.reader->IsAlive(); })) continue;
    } catch (...) {  // no memory: what it has not read is left to others
    }
    std::unique_ptr<Reader> reader;  // its process is ended without the lock
    std::unique_lock<std::mutex> lock(mutex_);
    reader = std::move(side.reader);
    side.hasBegun = true;
    const bool isLast = --running_ == 0;
    changed_.notify_all();
    lock.unlock();
    if (!isLast || !work_.onIdle) return;
    try {
        work_.onIdle();
    } catch (...) {  // no memory even to tell that
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
    for (Side& side : sides_) {
        if (side.reader) side.reader->End();
    }
    changed_.notify_all();
}

bool FleetReaders::HaveBegun() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::all_of(sides_.begin(), sides_.end(),
                       [](const Side& side) { return side.hasBegun; });
}

bool FleetReaders::HasEnded() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return running_ == 0;
}

void FleetReaders::Join() {
    for (Side& side : sides_) {
        if (side.thread.joinable()) side.thread.join();
    }
    sides_.clear();
}

}  // namespace vndiscover::host
