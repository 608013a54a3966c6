// Owners of what windows and drawing need from the system.
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

// Selects an object into a device context; on destruction, the former one again.
class SelectedObject {
  public:
    SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), former_(SelectObject(dc, object)) {}
    ~SelectedObject() { SelectObject(dc_, former_); }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

  private:
    HDC dc_;
    HGDIOBJ former_;
};

}  // namespace vndiscover::host
