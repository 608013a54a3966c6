#include "platform/result_window.h"

#include <mutex>
#include <stdexcept>

namespace vndiscover::host {

ResultWindow::ResultWindow(OnResult onResult) : onResult_(std::move(onResult)) {
    constexpr wchar_t kClass[] = L"VnDiscoverResults";
    WNDCLASSW description = {};
    description.lpfnWndProc = Procedure;
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
    // Without it a sweep would find nothing.
    if (!window_) throw std::runtime_error("the window for the results cannot be created");
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ResultWindow::~ResultWindow() { DestroyWindow(window_); }

LRESULT CALLBACK ResultWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<ResultWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != kMessage || !self) return DefWindowProcW(window, message, wParam, lParam);
    const auto* address = reinterpret_cast<const char*>(wParam);
    const auto* value = reinterpret_cast<const char*>(lParam);
    try {
        if (address && value) self->onResult_(address, value);
    } catch (...) {
        // Out of memory: the row is lost. An exception must not pass through the module.
    }
    return 0;
}

}  // namespace vndiscover::host
