// Starts, stops and ends searches, also that of the command line.
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

    // Those of the command line, before the first search.
    void ApplyOptions();
    void Start();
    // The same again without the user, who may be away: returns false if there was none, if
    // something would be asked, or is in progress.
    bool Repeat();
    // One of the search's sweeps has ended.
    void EndSweep(bool wasSent, const std::string& problem);
    // Whether what is found is then read: the command line says so of its search.
    bool ReadsFound() const {
        return isForStart_ ? state_.options.read : state_.settings.readsFound != 0;
    }
    // Whether the last one has; then the search must be finished: its problems are reported, and
    // what it has found is read.
    bool IsOver() const { return isOver_; }
    void Finish();
    // Nothing is in progress: if the command line's search was, what it wants is saved.
    void EndReading();
    // Whether the running search is that of the command line, whose answers are saved.
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
    bool wasSent_ = false;     // by any of its sweeps
    bool isOver_ = false;      // and not yet finished
    bool isForStart_ = false;  // the search of the command line, or its reading, is running
};

}  // namespace vndiscover::host
