// Where the focus was, when a window is active again. Windows would give it to the window itself,
// where keys do nothing.
#pragma once

#include <windows.h>

namespace vndiscover::host {

class SavedFocus {
  public:
    // For WM_ACTIVATE and WM_SETFOCUS, which the system must handle too. `first`: the child to use
    // if none had the focus.
    void OnMessage(HWND window, UINT message, WPARAM wParam, HWND first) {
        if (message == WM_ACTIVATE && LOWORD(wParam) == WA_INACTIVE && IsChild(window, GetFocus()))
            child_ = GetFocus();
        if (message == WM_SETFOCUS) SetFocus(IsChild(window, child_) ? child_ : first);
    }

  private:
    HWND child_ = nullptr;
};

}  // namespace vndiscover::host
