// Reports devices to the host with a window message and a line in the result file.
#pragma once

#include <cstddef>

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

constexpr size_t kPathSize = 260;  // characters of a path, including the terminator

struct ResultSink {
    HWND hWnd = nullptr;  // if null, no messages are sent
    UINT uMsg = 0;
    OwnedFile resultFile;  // if empty, no lines are written

    // Opens the result file in text mode and empties it. There is no file if path is null or "",
    // has 260 characters or more, or cannot be opened.
    void OpenFile(const wchar_t* path);

    // address and value are valid for the host only during the message. Both are null at the end of
    // the sweep. A device without an address is reported to the window, but not in the file.
    void SendResult(const char* address, const char* value);
};

}  // namespace vndiscover
