#include "window/clipboard.h"

#include <algorithm>

namespace vndiscover::host {

void CopyText(HWND owner, const std::wstring& text) {
    if (!OpenClipboard(owner)) return;
    EmptyClipboard();
    const size_t size = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    if (void* place = memory ? GlobalLock(memory) : nullptr) {
        std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(place));
        GlobalUnlock(memory);
        // The system owns it from now on, unless the call fails.
        if (!SetClipboardData(CF_UNICODETEXT, memory)) GlobalFree(memory);
    }
    CloseClipboard();
}

}  // namespace vndiscover::host
