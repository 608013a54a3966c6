#include "platform/result_window.h"

#include <mutex>
#include <stdexcept>

#include "platform/messages.h"

namespace vndiscover::host {

ResultWindow::ResultWindow(OnResult onResult) : onResult_(std::move(onResult)) {
    constexpr wchar_t kClass[] = L"VnDiscoverResults";
    WNDCLASSW description = {};
    description.lpfnWndProc = WindowProcedure<ResultWindow>;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = kClass;
    {
        // Fails harmlessly if it is already registered. Under Wine it may fail before another
        // thread's registration is complete; that thread's window could be created, this one's not.
        static std::mutex registering;
        const std::lock_guard<std::mutex> lock(registering);
        RegisterClassW(&description);
    }
    window_ = CreateWindowExW(0, kClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                              description.hInstance, nullptr);
    if (!window_) throw std::runtime_error("the window for the results cannot be created");
    Attach(window_, this);
}

ResultWindow::~ResultWindow() { DestroyWindow(window_); }

std::optional<LRESULT> ResultWindow::OnMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kMessage) return std::nullopt;
    const auto* address = reinterpret_cast<const char*>(wParam);
    const auto* value = reinterpret_cast<const char*>(lParam);
    if (address && value) onResult_(address, value);
    return 0;
}

}  // namespace vndiscover::host
