// What the parts of the main window share.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "model/asking/progress.h"
#include "window/work/session.h"
#include "window/work/workers.h"

namespace vndiscover::host {

// The command line's options.
struct StartOptions {
    bool sweep = false;
    std::string savePath;  // UTF-8; written when the sweep has ended
    bool exit = false;     // after that; no window is shown
    std::wstring profile;  // of the user for SNMPv3; empty: none
};

enum ExitCode { kFound = 0, kNone = 1, kFailed = 2 };  // kNone: or not saved

struct WindowState {
    StartOptions options;
    std::function<void()> showRows;       // shows what the session has now
    std::function<void()> handleResults;  // of the workers, that are waiting
    HWND window = nullptr;
    int exitCode = kFound;
    Session session;
    Progress progress{[] { return static_cast<int64_t>(GetTickCount64()); }};
    Credentials credentials;
    ResultQueue queue{[this] { PostMessageW(window, kResults, 0, 0); }};
    std::unique_ptr<Workers> workers;  // null while the window closes

    static constexpr UINT kResults = WM_APP + 1;  // the queue is no longer empty
    static constexpr UINT_PTR kStatusTimer = 2;

    // Shows a problem in a message, or to a script on the error output, and then as the status.
    // Returns false.
    bool ReportProblem(const std::wstring& text);
    // While something is in progress, the status changes by itself.
    void StartStatusTimer() const;
    // What is in progress, in words.
    std::wstring StatusText() const;
    // How to ask the selected device, with the credentials. Empty if none is selected, or if it
    // cannot be asked.
    std::optional<AskTarget> SelectedTarget() const;
};

}  // namespace vndiscover::host
