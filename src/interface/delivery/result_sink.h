// Reports devices to the host: a window message, then a line in the result file.
#pragma once

#include <cstddef>

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

constexpr size_t kPathSize = 260;  // characters of a path, with the terminator

struct ResultSink {
    HWND hWnd = nullptr;  // may be null: no messages
    UINT uMsg = 0;
    OwnedFile resultFile;  // may be empty: no lines

    // Opens the result file, emptied, in text mode; null or "": none. One that cannot be opened, or
    // a path of 260 characters and more, leaves the sink without a file.
    void OpenFile(const wchar_t* path);

    // address and value are valid for the host only during the message; both null: the sweep has
    // ended. A device without an address is sent to the window but not to the file.
    void SendResult(const char* address, const char* value);
};

}  // namespace vndiscover
