// The window that receives a sweep's result messages; message-only, so it needs no desktop.
#pragma once

#include <vndiscover.h>

#include <exception>
#include <functional>
#include <optional>

namespace vndiscover::host {

// The sweep must run on the thread that created the window: no message loop is needed. A program
// with a user interface runs the sweep on a worker thread.
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
    // After the sweep, throws again what OnResult has thrown last: its result is lost.
    void Rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }
    static constexpr UINT kMessage = WM_APP;

    std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnException() noexcept { failure_ = std::current_exception(); }

  private:
    OnResult onResult_;
    std::exception_ptr failure_;
    HWND window_ = nullptr;
};

}  // namespace vndiscover::host
