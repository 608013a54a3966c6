#include "window/clipboard.h"

#include <algorithm>

#include "platform/wide_text.h"
#include "values/csv_cell.h"

namespace vndiscover::host {
namespace {

// Programs that watch the clipboard open it for a moment.
bool OpenSoon(HWND owner) {
    constexpr int kTries = 5;
    constexpr DWORD kPauseMs = 20;
    for (int tries = 0; tries < kTries; ++tries) {
        if (OpenClipboard(owner)) return true;
        Sleep(kPauseMs);
    }
    return false;
}

bool Put(HWND owner, const std::wstring& text) {
    if (!OpenSoon(owner)) return false;
    EmptyClipboard();
    const size_t size = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    bool isDone = false;
    if (void* place = memory ? GlobalLock(memory) : nullptr) {
        std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(place));
        GlobalUnlock(memory);
        isDone = SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
    }
    // The system owns it from now on, unless the call fails.
    if (!isDone) GlobalFree(memory);
    CloseClipboard();
    return isDone;
}

}  // namespace

bool CopyText(HWND owner, const std::wstring& text) {
    const bool isDone = Put(owner, text);
    SendMessageW(GetAncestor(owner, GA_ROOTOWNER), kCopied, isDone, 0);
    return isDone;
}

std::wstring RowCell(const std::wstring& text) { return ToWide(HarmlessCell(ToUtf8(text))); }

}  // namespace vndiscover::host
