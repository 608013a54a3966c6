// The window that receives a sweep's result messages; message-only, so it needs no desktop.
#pragma once

#include <vndiscover.h>

#include <functional>

namespace vndiscover::host {

// The sweep must run on the thread that created the window: SendMessageA then calls the window
// procedure directly, and no message loop is needed. A program with a user interface runs the sweep
// on a worker thread instead and keeps pumping messages.
class ResultWindow {
  public:
    // The text is valid only during the call. Not called for the final message (0, 0).
    using OnResult = std::function<void(const char* address, const char* value)>;

    // Throws std::runtime_error if the window cannot be created.
    explicit ResultWindow(OnResult onResult);
    ~ResultWindow();
    ResultWindow(const ResultWindow&) = delete;
    ResultWindow& operator=(const ResultWindow&) = delete;

    HWND Handle() const { return window_; }
    static constexpr UINT kMessage = WM_APP;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    OnResult onResult_;
    HWND window_ = nullptr;
};

}  // namespace vndiscover::host
