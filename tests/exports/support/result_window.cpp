#include "exports/support/result_window.h"

#include <cstring>

namespace vndiscover {
namespace {

constexpr char kClassName[] = "VnDiscoverResultWindow";

}  // namespace

ResultWindow::ResultWindow(size_t bufferSize) : bufferSize_(bufferSize) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = OnMessage;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);  // fails from the second window on
    window_ = CreateWindowExA(0, kClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                              windowClass.hInstance, nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ResultWindow::~ResultWindow() { DestroyWindow(window_); }

std::vector<std::string> ResultWindow::Texts() const {
    std::vector<std::string> texts;
    for (const Result& result : results) {
        texts.push_back(result.isEnd ? "end" : result.address + '=' + result.value);
    }
    return texts;
}

LRESULT CALLBACK ResultWindow::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kMessage) return DefWindowProcA(window, message, wParam, lParam);
    auto* self = reinterpret_cast<ResultWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    self->Take(reinterpret_cast<const char*>(wParam), reinterpret_cast<const char*>(lParam));
    return 0;
}

void ResultWindow::Take(const char* address, const char* value) {
    Result result = {};
    result.isEnd = !address && !value;
    if (address) result.address = address;
    if (value && bufferSize_ == 0) result.value = value;
    if (value && bufferSize_ != 0) {
        result.value.assign(value, strnlen(value, bufferSize_));
        result.buffer.assign(value, value + bufferSize_);
    }
    results.push_back(result);
    if (onResult) onResult(result);
}

}  // namespace vndiscover
