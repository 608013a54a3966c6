#include "window/controls/clipboard.h"

#include <algorithm>

#include "window/controls/owners.h"

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

OwnedMemory MemoryWith(const std::wstring& text) {
    const size_t length = text.size() + 1;
    OwnedMemory memory(GlobalAlloc(GMEM_MOVEABLE, length * sizeof(wchar_t)));
    void* const place = memory ? GlobalLock(memory.Get()) : nullptr;
    if (!place) return OwnedMemory();
    std::copy_n(text.c_str(), length, static_cast<wchar_t*>(place));
    GlobalUnlock(memory.Get());
    return memory;
}

bool Replace(HWND owner, const std::wstring& text) {
    OwnedMemory memory = MemoryWith(text);
    if (!memory || !OpenSoon(owner)) return false;
    EmptyClipboard();
    const bool isReplaced = SetClipboardData(CF_UNICODETEXT, memory.Get()) != nullptr;
    CloseClipboard();
    if (isReplaced) memory.Release();  // the system owns it from now on
    return isReplaced;
}

}  // namespace

bool CopyText(HWND owner, const std::wstring& text) {
    const bool isCopied = Replace(owner, text);
    SendMessageW(GetAncestor(owner, GA_ROOTOWNER), kCopied, isCopied, 0);
    return isCopied;
}

}  // namespace vndiscover::host
