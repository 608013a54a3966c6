// What a program with a user interface is doing, since when, and how far it has come. Kinds and
// numbers; the words are the user interface's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace vndiscover::host {

class Progress {
  public:
    // In milliseconds, from any start. `nowMs` must not go backwards.
    explicit Progress(std::function<int64_t()> nowMs) : nowMs_(std::move(nowMs)) {}

    // A search: several sweeps, some at the same time.
    void BeginSearch(size_t sweeps);
    // The user stops it; it ends later.
    void StopSearch() { isStopping_ |= isSearching_; }
    bool EndSweep();  // returns true if it was the last one
    void CountAnswer() { ++answers_; }
    void ForgetSearch() { hasSearched_ = false; }
    bool IsSearching() const { return isSearching_; }
    bool IsStopping() const { return isSearching_ && isStopping_; }
    bool HasSearched() const { return hasSearched_; }
    size_t Answers() const { return answers_; }  // to the last search
    // The number of this computer's addresses, from each of which a sweep is sent.
    void SetAddresses(size_t addresses) { addresses_ = addresses; }

    // One device at a time is asked, for its details or for why it is silent.
    void BeginReading(const std::string& address) { BeginAsking(address, true); }
    void BeginDiagnosis(const std::string& address) { BeginAsking(address, false); }
    void EndAsking() { asked_.clear(); }
    bool IsAsking() const { return !asked_.empty(); }
    bool IsReading(const std::string& address) const { return isReading_ && asked_ == address; }

    void BeginWalk(const std::string& address);
    void CountValue() { ++values_; }
    void EndWalk() { walked_.clear(); }

    // What the user's last action led to. It is shown instead of progress for kNoteMs, and then
    // while nothing is in progress.
    void SetNote(std::wstring note);
    void ClearNote() { note_.clear(); }
    const std::wstring& Note() const { return note_; }
    static constexpr int64_t kNoteMs = 4000;

    enum class Kind {
        kReady,      // nothing has been sent yet
        kSearching,  // seconds, count: of answers, addresses
        kAsking,     // address, seconds, count: of devices still to be asked
        kWalking,    // address, seconds, count: of values
        kDone,       // seconds, count: of answers
        kStopped,    // the same
        kNote,       // see Note
    };
    struct Status {
        Kind kind = Kind::kReady;
        int64_t seconds = 0;
        size_t count = 0;
        size_t addresses = 0;
        std::string address;
    };
    // What to show now. `waiting`: the number of devices that are still to be asked.
    Status Now(size_t waiting) const;

  private:
    void BeginAsking(const std::string& address, bool isReading);

    std::function<int64_t()> nowMs_;
    bool isSearching_ = false, isStopping_ = false, hasSearched_ = false;
    size_t sweepsLeft_ = 0, answers_ = 0, addresses_ = 0;
    int64_t searchMs_ = 0, searchEndMs_ = 0;
    std::string asked_, walked_;  // addresses; empty: none
    bool isReading_ = false;      // asked_, for its details
    int64_t askMs_ = 0, walkMs_ = 0;
    size_t values_ = 0;
    std::wstring note_;
    int64_t noteMs_ = 0;
};

}  // namespace vndiscover::host
