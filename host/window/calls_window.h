// The calls of the module that the window has made, each as text to copy.
#ifndef VNDISCOVER_HOST_WINDOW_CALLS_WINDOW_H
#define VNDISCOVER_HOST_WINDOW_CALLS_WINDOW_H

#include <windows.h>

#include <deque>
#include <string>

#include "model/call_text.h"

namespace vndiscover::host {

class CallsWindow {
  public:
    CallsWindow() = default;
    ~CallsWindow();
    CallsWindow(const CallsWindow&) = delete;
    CallsWindow& operator=(const CallsWindow&) = delete;

    // Only the last thousand are kept. Calls of one walk that come one after the other are one row.
    void Add(Call call);
    // Shows the calls that were added since the last time.
    void Refresh();
    void Open(HWND owner);
    HWND Handle() const { return dialog_; }  // null if it is not open

  private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void Begin(HWND dialog);
    void OnCommand(int id, int code);
    void FillCell(LPARAM info) const;
    void ShowText();
    const Call* Selected() const;

    std::deque<Call> calls_;  // the newest first, as in the list
    size_t added_ = 0;        // since Refresh
    bool isFolded_ = false;   // likewise, a call is in the row of another
    HWND dialog_ = nullptr;
    HFONT font_ = nullptr;  // of the text, while the dialog is open
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_CALLS_WINDOW_H
