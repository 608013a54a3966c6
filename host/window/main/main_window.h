// The window of VnBrowser.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "window/controls/kept_focus.h"
#include "window/controls/owners.h"
#include "window/main/device_commands.h"
#include "window/main/device_list.h"
#include "window/main/result_handler.h"
#include "window/main/scan_commands.h"
#include "window/main/search_bar.h"
#include "window/main/searches.h"
#include "window/main/window_state.h"
#include "window/pages/calls_window.h"
#include "window/pages/details_pane.h"

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
    SearchBar bar;
    DeviceList list;  // after the state, whose changes it marks
    DetailsPane details{state.session};
    ScanCommands scans{state, list.Columns()};
    Searches searches{state, bar, scans, [this] { return ReadsFound() && devices.ReadFound(); }};
    DeviceCommands devices{state, list};
    CallsWindow calls;
    TableWindow changes{[this](const std::string& csv) { scans.SaveTable(csv); }};
    void ToggleColumn(Column column);
    bool ReadsFound() const {
        return searches.IsForStart() ? state.options.read : settings_.readsFound != 0;
    }
    void ToggleReadsFound() { settings_.readsFound ^= 1; }
    void FindOrStop();
    void RefreshEvery(unsigned minutes);  // 0: not by itself
    unsigned RefreshMinutes() const { return settings_.refreshMinutes; }
    void OpenChanges();
    void StopAll();  // if something is in progress

  private:
    struct Message;
    struct MessageRow;
    static const MessageRow kMessages[];
    void CreateControls();
    void SetDpi(int dpi);
    void RestoreSettings();
    void ApplyOptions();
    void PlaceWindow();
    void StoreSettings();
    void ShowColumns();
    void Place();
    void ShowRows();
    void ShowDetails();
    void ShowStatus();
    void ShowReadBar(const Progress::Status& status) const;
    void OnCommand(int id, int code);
    void OnResults();
    void TakeChanges();
    void Refresh();
    std::vector<TableWindow::Row> ChangeRows() const;
    void OnTimer(UINT_PTR timer);
    bool MayClose();
    void OnClose();
    void EndEarly();

    ResultHandler handler_{state, searches, devices, calls};
    Settings settings_;
    KeptFocus focus_;
    OwnedFont font_;
    OwnedAccelerators keys_;
    int dpi_ = 96;
};

}  // namespace vndiscover::host
