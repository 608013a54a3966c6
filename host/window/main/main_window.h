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
    // Handles one message of the queue. It may be the key of a command.
    void Dispatch(MSG& message);

    // See platform/messages.h.
    std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnException() noexcept;

    // The parts of the window, for the commands.
    WindowState state;
    Panes panes{state};
    ScanCommands scans{state, panes.list};
    Searches searches{state, panes.bar, scans};
    WalkWindow walk{state.workers};
    DoctorWindow doctor;
    CallsWindow calls;
    void StopAll();                       // has no effect if nothing is in progress
    void RestartTimer(unsigned minutes);  // the timer that searches again; 0: never

  private:
    // Makes the window without controls. If making those fails, the destructor then destroys it.
    explicit MainWindow(StartOptions options);
    const Apartment apartment_;  // the thread needs it for dialogs of the shell
    struct Message;
    struct MessageRow;
    static const MessageRow kMessages[];
    void OnSessionEnd(LPARAM how);
    void OnSelected();  // the user has selected another device
    void ShowStatus();
    void OnCommand(int id, int code);
    void OnResults();
    void OnTimer(UINT_PTR timer);
    bool MayClose();
    void OnClose();
    void EndWorkers();
    void EndEarly();

    HWND focus_ = nullptr;    // the control that had the focus last; null: none
    bool isTicking_ = false;  // the timer of the status runs
    OwnedAccelerators keys_;
};

}  // namespace vndiscover::host
