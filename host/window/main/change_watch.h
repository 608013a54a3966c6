// Watches the list: searches again by itself, and shows what has changed.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "window/main/window_state.h"
#include "window/pages/table_window.h"

namespace vndiscover::host {

class ChangeWatch {
  public:
    // The state must outlive it. `save` asks for a file and saves the text of a CSV document.
    ChangeWatch(WindowState& state, std::function<void(const std::string& csv)> save)
        : state_(state), table_(std::move(save)) {}
    // The window gets WM_TIMER with kTimer that often, as the settings say from now on. 0: never.
    void RefreshEvery(unsigned minutes);
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
