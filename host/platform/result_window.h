// The window that receives a sweep's result messages; message-only, so it needs no desktop.
#pragma once

#include <vndiscover.h>

#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/messages.h"
#include "platform/owned.h"

namespace vndiscover::host {

// The sweep must run on the thread that created the window: no message loop is needed. A program
// with a user interface runs the sweep on a worker thread.
class ResultWindow {
  public:
    // The text is valid only during the call. Not called for the final message (0, 0).
    using OnResult = std::function<void(const char* address, const char* value)>;

    // Throws std::runtime_error if the window cannot be created.
    explicit ResultWindow(OnResult onResult) : onResult_(std::move(onResult)) {
        window_.Reset(MakeHiddenWindow(L"VnDiscoverResults", HWND_MESSAGE, this));
        if (!window_) throw std::runtime_error("the window for the results cannot be created");
    }
    ResultWindow(const ResultWindow&) = delete;
    ResultWindow& operator=(const ResultWindow&) = delete;

    HWND Handle() const { return window_.Get(); }
    // After the sweep, throws again what OnResult has thrown last. That result is lost.
    void Rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }
    static constexpr UINT kMessage = WM_APP;

    std::optional<LRESULT> OnMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != kMessage) return std::nullopt;
        const auto* address = reinterpret_cast<const char*>(wParam);
        const auto* value = reinterpret_cast<const char*>(lParam);
        if (address && value) onResult_(address, value);
        return 0;
    }
    void OnException() noexcept { failure_ = std::current_exception(); }

  private:
    OnResult onResult_;
    std::exception_ptr failure_;
    OwnedWindow window_;
};

}  // namespace vndiscover::host
