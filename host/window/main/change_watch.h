// Watches the list: searches again by itself, and shows what has changed.
#pragma once

#include <windows.h>

#include <string>

#include "window/main/scan_commands.h"
#include "window/main/window_state.h"
#include "window/pages/table_window.h"

namespace vndiscover::host {

class ChangeWatch {
  public:
    // Both must outlive it.
    ChangeWatch(WindowState& state, ScanCommands& scans)
        : state_(state), table_([&](const std::string& csv) { scans.SaveTable(csv); }) {}
    // From now on, the window gets WM_TIMER with kTimer as often as the settings say.
    void Restart();
    static constexpr UINT_PTR kTimer = 3;

    // Records what the rows show now. A change is marked, and the taskbar button flashes.
    void Record();
    void Open();  // the list of changes

  private:
    void Show();

    WindowState& state_;
    TableWindow table_;
};

}  // namespace vndiscover::host
