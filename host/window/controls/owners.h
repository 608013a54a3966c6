// Owners of the handles that windows and drawing need.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "platform/owned.h"

namespace vndiscover::host {

inline void UnlockMemory(void* locked) noexcept { GlobalUnlock(GlobalHandle(locked)); }
inline void CloseOpened(bool) noexcept { CloseClipboard(); }

using OwnedFont = Owned<ClosedBy<HFONT, DeleteObject>>;
using OwnedBitmap = Owned<ClosedBy<HBITMAP, DeleteObject>>;
using OwnedBrush = Owned<ClosedBy<HBRUSH, DeleteObject>>;
using OwnedMenu = Owned<ClosedBy<HMENU, DestroyMenu>>;
using OwnedAccelerators = Owned<ClosedBy<HACCEL, DestroyAcceleratorTable>>;
using OwnedImages = Owned<ClosedBy<HIMAGELIST, ImageList_Destroy>>;
using OwnedMemory = Owned<ClosedBy<HGLOBAL, GlobalFree>>;
using LockedMemory = Owned<ClosedBy<void*, UnlockMemory>>;
using OpenedClipboard = Owned<ClosedBy<bool, CloseOpened, false>>;
using OwnedMemoryDc = Owned<ClosedBy<HDC, DeleteDC>>;

// A device context of a window, or of the screen.
class WindowDc {
  public:
    explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
    ~WindowDc() { ReleaseDC(window_, dc_); }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    HDC Get() const { return dc_; }

  private:
    HWND window_;
    HDC dc_;
};

// An object that is selected into a device context; the one before returns afterwards.
class Selection {
  public:
    Selection(HDC dc, HGDIOBJ object) : dc_(dc), before_(SelectObject(dc, object)) {}
    ~Selection() { SelectObject(dc_, before_); }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;

  private:
    HDC dc_;
    HGDIOBJ before_;
};

}  // namespace vndiscover::host
