// Reads a fleet by several threads side by side, each with a reader of its own.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "device/ask_process.h"
#include "model/printer/fleet.h"

namespace vndiscover::host {

constexpr size_t kMaxReaders = 6;  // processes

class FleetReaders {
  public:
    using MayGoOn = std::function<bool()>;
    struct Work {
        std::function<std::unique_ptr<Reader>()> makeReader;
        // Executes a job, see ReadJob; blocks. `mayGoOn` must be called before each request.
        std::function<FleetDevice(const FleetDevice& job, Reader* reader, const MayGoOn& mayGoOn)>
            read;
        // Called under the lock after a job, which is done or could not be tried. May be empty.
        std::function<void(size_t index, bool isDone)> onEnd;
        // Called by the last thread when it ends; devices may be left. May be empty.
        std::function<void()> onIdle;
    };
    // `mutex` protects the fleet; both must outlive this.
    FleetReaders(Fleet& fleet, std::mutex& mutex, Work work)
        : fleet_(fleet), mutex_(mutex), work_(std::move(work)) {}
    ~FleetReaders();  // stops and waits

    // Call once. Starts at most `most` threads, each for two devices at least. Returns false if
    // none was started.
    bool Start(size_t most);
    // Executes one job on the calling thread. Returns false if there is none left for it.
    bool ReadNext(Reader* reader, const MayGoOn& mayGoOn);
    // Ends requests of readers that are processes; other readers finish theirs first.
    void Stop();
    bool IsStopped() const { return isStopped_; }
    bool HaveBegun() const;  // all readers were made
    bool HasEnded() const;   // all threads
    void Join();

  private:
    struct Worker {
        std::thread thread;
        std::unique_ptr<Reader> reader;  // protected by the lock
        bool hasBegun = false;           // made it, or could not; also protected
    };
    void Run(Worker& worker);

    Fleet& fleet_;
    std::mutex& mutex_;
    const Work work_;
    std::mutex startMutex_;  // while a reader is made; after Stop, none begins to be made
    std::condition_variable changed_;
    std::list<Worker> workers_;
    size_t running_ = 0;
    std::atomic<bool> isStopped_{false};
};

}  // namespace vndiscover::host
