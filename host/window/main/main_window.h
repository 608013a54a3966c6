// The window of VnBrowser.
#pragma once

#include <windows.h>

#include <optional>

#include "platform/com.h"
#include "window/controls/owners.h"
#include "window/main/panes.h"
#include "window/main/scan_commands.h"
#include "window/main/searches.h"
#include "window/main/window_state.h"
#include "window/pages/calls_window.h"
#include "window/pages/report_window.h"
#include "window/pages/walk_window.h"

namespace vndiscover::host {

class MainWindow {
  public:
    // The engine must outlive the window. Throws std::runtime_error if it cannot be created.
    MainWindow(Engine& engine, StartOptions options);
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    HWND Handle() const { return state.window; }
    // Runs until the window is closed, and returns the process's exit code.
    int Run();
    // Handles one message of the queue, keys of commands included.
    void Dispatch(MSG& message);

    // See platform/messages.h.
    std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnException() noexcept;

    // Its parts, for the commands.
    WindowState state;
    Panes panes{state};
    ScanCommands scans{state, panes.list};
    Searches searches{state, panes.bar, scans};
    WalkWindow walk{state.workers};
    DoctorWindow doctor;
    CallsWindow calls;
    void StopAll();                       // if something is in progress
    void RestartTimer(unsigned minutes);  // which searches again; 0: never

  private:
    // Without what is in the window, whose failure destroys it.
    explicit MainWindow(StartOptions options);
    const Apartment apartment_;  // of the thread: dialogs of the shell need it
    struct Message;
    struct MessageRow;
    static const MessageRow kMessages[];
    void OnSessionEnd(LPARAM how);
    void OnSelected();  // another device, by the user
    void ShowStatus();
    void OnCommand(int id, int code);
    void OnResults();
    void OnTimer(UINT_PTR timer);
    bool MayClose();
    void OnClose();
    void EndWorkers();
    void EndEarly();

    HWND focus_ = nullptr;    // had it last; null: none
    bool isTicking_ = false;  // the timer of the status
    OwnedAccelerators keys_;
};

}  // namespace vndiscover::host
