// A host's window: it keeps a copy of every result message.
#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "helpers/bytes.h"
#include "support/win.h"

namespace vndiscover {

struct Result {
    std::string address;
    std::string value;  // up to its first zero byte, or the whole buffer where there is none
    Bytes buffer;       // the value's first bytes, where the window keeps buffers
    bool isEnd;         // both parameters were 0
};

class ResultWindow {
  public:
    static constexpr UINT kMessage = WM_APP + 161;

    // bufferSize: how much of every value's buffer to keep and to look through for its end
    // (WS-Discovery replies); 0: values are NUL-terminated text.
    explicit ResultWindow(size_t bufferSize = 0)
        : window_(CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                  nullptr)),
          bufferSize_(bufferSize) {
        SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(OnMessage));
    }
    ~ResultWindow() { DestroyWindow(window_); }
    ResultWindow(const ResultWindow&) = delete;
    ResultWindow& operator=(const ResultWindow&) = delete;

    HWND Handle() const { return window_; }
    // "address=value" each, the final message as "end".
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const Result& result : results) {
            texts.push_back(result.isEnd ? "end" : result.address + '=' + result.value);
        }
        return texts;
    }

    std::vector<Result> results;
    std::function<void(const Result&)> onResult;  // runs inside the message

  private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != kMessage) return DefWindowProcA(window, message, wParam, lParam);
        auto* self = reinterpret_cast<ResultWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        self->Take(reinterpret_cast<const char*>(wParam), reinterpret_cast<const char*>(lParam));
        return 0;
    }
    void Take(const char* address, const char* value) {
        Result result = {};
        result.isEnd = !address && !value;
        if (address) result.address = address;
        if (value) result.value.assign(value, strnlen(value, bufferSize_ ? bufferSize_ : SIZE_MAX));
        if (value) result.buffer.assign(value, value + bufferSize_);
        results.push_back(result);
        if (onResult) onResult(result);
    }

    HWND window_;
    size_t bufferSize_;
};

}  // namespace vndiscover
