// The status of the main window: in words, and as a bar while devices are read.
#pragma once

#include <windows.h>

#include <string>

#include "window/main/window_state.h"

namespace vndiscover::host {

class StatusBar {
  public:
    // The state must outlive it.
    explicit StatusBar(const WindowState& state) : state_(state) {}
    // A child of the state's window, which destroys it.
    void Create();
    // Shows what is in progress now.
    void Show() const;
    // Moves it to the lower edge of the window.
    void Place(int dpi) const;

  private:
    std::wstring TextOf(const Progress::Status& status) const;

    const WindowState& state_;
    HWND bar_ = nullptr, reading_ = nullptr;
};

}  // namespace vndiscover::host
