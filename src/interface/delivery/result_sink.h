// Reports devices to the host: a window message, then a line in the result file.
#pragma once

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

struct ResultSink {
    HWND hWnd = nullptr;  // may be null: no messages
    UINT uMsg = 0;
    OwnedFile resultFile;  // may be empty: no lines

    // address and value are valid for the host only during the message; both null: the sweep has
    // ended. A device without an address is sent to the window but not to the file.
    void SendResult(const char* address, const char* value);
};

}  // namespace vndiscover
