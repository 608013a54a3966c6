// What a program is doing, since when, and how far it has come; the words are its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vndiscover::host {

class Progress {
  public:
    // In milliseconds, from any start. `nowMs` must not go backwards.
    explicit Progress(std::function<int64_t()> nowMs) : nowMs_(std::move(nowMs)) {}

    // A search: several sweeps, some at the same time.
    void BeginSearch(size_t sweeps);
    // The user stops what is in progress; it ends later, see SetIdle.
    void Stop();
    void SetIdle() {
        isStopping_ = false;
        asked_.clear();  // one that failed has no end of its own
    }
    bool EndSweep();  // returns true if it was the last one
    void CountAnswer() { ++answers_; }
    void ForgetSearch() { last_ = {}; }
    bool IsSearching() const { return isSearching_; }
    bool IsStopping() const { return isStopping_; }
    bool IsWalking() const { return !walked_.address.empty(); }
    bool HasSearched() const { return last_.kind != Kind::kReady; }
    bool WasStopped() const { return last_.kind == Kind::kStopped; }
    size_t Answers() const { return answers_; }                  // to the last search
    void SetNetworks(size_t networks) { networks_ = networks; }  // that sweeps reach

    // One device is asked for its details or for why it is silent. An urgent one is asked between
    // two requests to another one.
    void BeginAsking(const std::string& address) {
        asked_.push_back({address, nowMs_()});
        EndStop();
    }
    void EndAsking(const std::string& address);

    // All devices are read, each for the list.
    void BeginReadingAll() {
        readMs_ = nowMs_();
        EndStop();
    }
    struct Read {
        size_t done = 0, unread = 0, total = 0;  // unread: those of the done that gave no value
        bool isOfStates = false;                 // which are read first
    };
    void EndReadingAll(const Read& read) {
        if (nowMs_() - noteMs_ >= kNoteMs) note_.clear();
        last_ = {Kind::kRead, SecondsSince(readMs_), 0, "", 0, read};
    }

    void BeginWalk(const std::string& address) {
        walked_ = {address, nowMs_()};
        values_ = 0;
        EndStop();
    }
    void CountValue() { ++values_; }
    void EndWalk() { walked_ = {}; }

    // What the user's last action led to. Shown for kNoteMs, and then while nothing is in progress.
    void SetNote(std::wstring note) {
        note_ = std::move(note);
        noteMs_ = nowMs_();
    }
    void ClearNote() { note_.clear(); }
    const std::wstring& Note() const { return note_; }
    static constexpr int64_t kNoteMs = 4000;
    // No request takes longer; a stop waits for the one that is being answered.
    static constexpr int64_t kMaxRequestMs = 12000;
    // A wait for an answer is shown once it is this long.
    static constexpr int64_t kWaitMs = 2000;

    enum class Kind {
        kReady,       // nothing has been sent yet
        kSearching,   // seconds, count: of networks
        kReadingAll,  // read; see address
        kAsking,      // address, seconds, count: of devices still to be asked
        kWalking,     // address, seconds, count: of values
        kStopping,    // seconds: at most until it has stopped
        kDone,        // seconds
        kStopped,     // the same
        kRead,        // all devices: seconds, read
        kNote,        // see Note
    };
    struct Status {
        Kind kind = Kind::kReady;
        int64_t seconds = 0;
        size_t count = 0;
        // Of the request that has waited longest for its answer; empty if it came within kWaitMs.
        std::string address{};
        int64_t waitSeconds = 0;
        Read read{};
    };
    struct Work {
        size_t waiting = 0;   // devices that are still to be asked
        Read read;            // of all devices; none in total: they are not being read
        std::string address;  // of the request that has waited longest
        int64_t waitMs = 0;
    };
    Status Now(const Work& work) const;

  private:
    // A stop does not concern work that begins later. A search continues to stop.
    void EndStop() { isStopping_ = isStopping_ && isSearching_; }
    int64_t SecondsSince(int64_t startMs) const { return (nowMs_() - startMs) / 1000; }

    std::function<int64_t()> nowMs_;
    bool isSearching_ = false, isStopping_ = false;
    Status last_;  // kReady; or kDone, kStopped or kRead: how the last search or reading ended
    size_t sweepsLeft_ = 0, answers_ = 0, networks_ = 0;
    int64_t searchMs_ = 0, readMs_ = 0, stopMs_ = 0;
    struct Device {
        std::string address;  // empty: none
        int64_t startMs = 0;
    } walked_;
    std::vector<Device> asked_;  // the one that is asked now is the last
    size_t values_ = 0;
    std::wstring note_;
    int64_t noteMs_ = 0;
};

}  // namespace vndiscover::host
