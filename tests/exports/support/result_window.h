// A host's window: it keeps a copy of every result message.
#pragma once

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
    explicit ResultWindow(size_t bufferSize = 0);
    ~ResultWindow();
    ResultWindow(const ResultWindow&) = delete;
    ResultWindow& operator=(const ResultWindow&) = delete;

    HWND Handle() const { return window_; }
    // "address=value" each, the final message as "end".
    std::vector<std::string> Texts() const;

    std::vector<Result> results;
    std::function<void(const Result&)> onResult;  // runs inside the message

  private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Take(const char* address, const char* value);

    HWND window_;
    size_t bufferSize_;
};

}  // namespace vndiscover
