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
    std::string savePath;  // UTF-8; written when the sweep has ended
    bool exit = false;     // after that; no window is shown
    std::string profile;   // UTF-8; of the user for SNMPv3; empty: none
    bool read = false;     // then reads every device; a window's switch decides otherwise
    std::string csvPath;   // UTF-8; the rows, written likewise
    std::vector<std::string> communities;  // empty: those of the settings
    std::optional<unsigned> lookFor;       // a preset
};

struct WindowState {
    StartOptions options;
    std::function<void()> showRows;       // shows what the session has now
    std::function<void()> handleResults;  // of the workers, that are waiting
    std::function<void()> onSelected;     // by the user: another device
    std::function<void()> onSelection;    // by the user: other devices, or more or fewer of them
    HWND window = nullptr;
    Settings settings;
    int exitCode = kFound;
    bool isSessionEnding = false;  // nothing may wait for the user
    bool isUnsent = false;         // the last search ended, not by a stop, before anything was sent
    std::wstring refusal;          // of an SNMPv3 user, since the last search began; empty: none
    std::wstring file;  // "monday.json, scan of 23 November 09:12"; empty: the list is of no file
    Credentials credentials;
    Session session{credentials};
    ChangeLog changes;
    Progress progress{[] { return static_cast<int64_t>(GetTickCount64()); }};
    ResultQueue queue{[this] { PostMessageW(window, kResults, 0, 0); }};
    std::unique_ptr<Workers> workers;  // null while the window closes

    static constexpr UINT kResults = WM_APP + 1;  // the queue is no longer empty

    // Shows a problem in a message, or to a script on the error output, and then as the status.
    // Returns false.
    bool ReportProblem(const std::wstring& text);
    // Whether anything is searched, read or walked.
    bool IsBusy() const { return progress.IsSearching() || (workers && workers->IsSending()); }
    // The string that says what runs, and how to stop it; 0: nothing does.
    unsigned Obstacle() const;
    // How to ask the selected device. Empty if none is selected, or if it cannot be asked.
    std::optional<AskTarget> SelectedTarget() const;
};

// Opens a file or a web page with the user's program for it, or with the given one. Reports a
// failure.
void OpenElsewhere(WindowState& state, const std::wstring& target,
                   const wchar_t* program = nullptr);
// The page of the documents about this program.
void ShowHelp(WindowState& state);
// The versions of the program, the module and Windows.
void ShowAbout(HWND owner);

}  // namespace vndiscover::host
