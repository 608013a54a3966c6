// What the parts of the main window share.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/asking/progress.h"
#include "model/scan/compare.h"
#include "values/exit_code.h"
#include "window/store/settings.h"
#include "window/work/session.h"
#include "window/work/workers.h"

namespace vndiscover::host {

// The command line's options.
struct StartOptions {
    bool sweep = false;
    std::string savePath;  // UTF-8; the scan is written there after the sweep; empty: nowhere
    bool exit = false;     // ends the program after that; no window is shown
    std::string profile;   // UTF-8; of the SNMPv3 user; empty: none
    bool read = false;     // reads every device after the sweep
    std::string csvPath;   // UTF-8; like savePath, for the rows
    std::vector<std::string> communities;  // empty: those of the settings
    std::optional<unsigned> lookFor;       // a preset
};

struct WindowState {
    StartOptions options;
    std::function<void()> showRows;       // shows what the session has now
    std::function<void()> handleResults;  // handles the workers' results that are in the queue
    std::function<void()> onSelected;     // the user has selected another device
    std::function<void()> onSelection;    // the user has changed which devices are selected
    HWND window = nullptr;
    Settings settings;
    int exitCode = kFound;
    bool isSessionEnding = false;  // that of Windows: nothing may wait for the user
    bool isUnsent = false;         // the last search could not send anything
    std::wstring refusal;          // of the SNMPv3 user since the last search began; empty: none
    std::wstring file;  // "monday.json, scan of 23 November 09:12"; empty: the list is of no file
    Credentials credentials;
    Session session{credentials};
    ChangeLog changes;
    Progress progress{[] { return static_cast<int64_t>(GetTickCount64()); }};
    ResultQueue queue{[this] { PostMessageW(window, kResults, 0, 0); }};
    std::unique_ptr<Workers> workers;  // null while the window closes

    static constexpr UINT kResults = WM_APP + 1;  // the queue is no longer empty

    // Shows a problem in a message, or to a script on the error output, and in the status. Returns
    // false.
    bool ReportProblem(const std::wstring& text);
    // Whether a search, a reading, a walk or a diagnosis is in progress.
    bool IsBusy() const { return progress.IsSearching() || (workers && workers->IsSending()); }
    // The number of the string that says what runs and how to stop it; 0: nothing runs.
    unsigned Obstacle() const;
    // How to ask the selected device. Returns nothing if there is none or it cannot be asked.
    std::optional<AskTarget> SelectedTarget() const;
};

// Opens a file or a web page with the given program or, without one, with the user's program for
// it. Reports a failure.
void OpenElsewhere(WindowState& state, const std::wstring& target,
                   const wchar_t* program = nullptr);
// Shows the page of the documents about this program.
void ShowHelp(WindowState& state);
// Shows the versions of the program, the module and Windows.
void ShowAbout(HWND owner);

}  // namespace vndiscover::host
