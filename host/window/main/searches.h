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

    void Start();
    // Stops sweeps and requests.
    void Stop();
    // One of the search's sweeps has ended.
    void EndSweep(const std::string& problem);
    // Whether the last one has; then the search must be finished: its problems are reported, and
    // what that of the command line has found is saved.
    bool IsOver() const { return isOver_; }
    void Finish();
    // Whether the running search is that of the command line, whose answers are saved.
    bool WillSave() const;
    // Saves the answers so far if WillSave.
    void EndEarly();
    void AskForUser();

  private:
    bool FetchUser();
    void EndStartSearch();

    WindowState& state_;
    SearchBar& bar_;
    ScanCommands& scans_;
    std::wstring problem_;  // of the running search
    bool isOver_ = false;   // and not yet finished
};

}  // namespace vndiscover::host
