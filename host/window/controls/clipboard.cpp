#include "window/controls/clipboard.h"

#include <algorithm>

#include "window/controls/owners.h"

namespace vndiscover::host {
namespace {

// Programs that watch the clipboard open it for a moment.
OpenedClipboard OpenSoon(HWND owner) {
    constexpr int kTries = 5;
    constexpr DWORD kPauseMs = 20;
    for (int tries = 0; tries < kTries; ++tries) {
        if (OpenClipboard(owner)) return OpenedClipboard(true);
        Sleep(kPauseMs);
    }
    return OpenedClipboard();
}

OwnedMemory MemoryWith(const std::wstring& text) {
    const size_t length = text.size() + 1;
    OwnedMemory memory(GlobalAlloc(GMEM_MOVEABLE, length * sizeof(wchar_t)));
    const LockedMemory place(memory ? GlobalLock(memory.Get()) : nullptr);
    if (!place) return OwnedMemory();
    std::copy_n(text.c_str(), length, static_cast<wchar_t*>(place.Get()));
    return memory;
}

bool Replace(HWND owner, const std::wstring& text) {
    OwnedMemory memory = MemoryWith(text);
    const OpenedClipboard opened = OpenSoon(owner);
    if (!memory || !opened) return false;
    EmptyClipboard();
    if (!SetClipboardData(CF_UNICODETEXT, memory.Get())) return false;
    memory.Release();  // the system owns it from now on
    return true;
}

}  // namespace

bool CopyText(HWND owner, const std::wstring& text) {
    const bool isCopied = Replace(owner, text);
    SendMessageW(GetAncestor(owner, GA_ROOTOWNER), kCopied, isCopied, 0);
    return isCopied;
}

}  // namespace vndiscover::host
