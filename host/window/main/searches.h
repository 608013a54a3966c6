// Starts and ends searches, and saves what that of the command line finds.
#pragma once

#include <string>

#include "window/main/scan_commands.h"
#include "window/main/search_bar.h"
#include "window/main/window_state.h"

namespace vndiscover::host {

class Searches {
  public:
    // All must outlive it.
    Searches(WindowState& state, SearchBar& bar, ScanCommands& scans)
        : state_(state), bar_(bar), scans_(scans) {}

    // Uses the options of the command line. Must be called before the first search.
    void ApplyOptions();
    void Start();
    // Repeats the last search without the user. Returns false if that is not possible now: there
    // was none, something is in progress, or a question would be needed.
    bool Repeat();
    // One of the search's sweeps has ended.
    void EndSweep(bool wasSent, const std::string& problem);
    // Whether devices are read after the search. For that of the command line, an option decides.
    bool ReadsFound() const {
        return isForStart_ ? state_.options.read : state_.settings.readsFound != 0;
    }
    // Whether all sweeps have ended. Then Finish must be called. It reports problems, and reads
    // what the search has found.
    bool IsOver() const { return isOver_; }
    void Finish();
    // Must be called when nothing is in progress any more: saves what the command line asks for.
    void EndReading();
    // Whether the running search is that of the command line, and a file will be written after it.
    bool WillSave() const;
    // Saves what it has found so far.
    void EndStartSearch();
    void AskForUser();

  private:
    bool FetchUser();
    bool MayStart();

    WindowState& state_;
    SearchBar& bar_;
    ScanCommands& scans_;
    std::wstring problem_;     // of the running search
    bool wasSent_ = false;     // one of its sweeps was sent
    bool isOver_ = false;      // see IsOver
    bool isForStart_ = false;  // the search of the command line, or its reading, is running
};

}  // namespace vndiscover::host
