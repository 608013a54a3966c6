// Owners of the handles that windows and drawing need.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "platform/owned.h"

namespace vndiscover::host {

using OwnedFont = Owned<ClosedBy<HFONT, DeleteObject>>;
using OwnedBitmap = Owned<ClosedBy<HBITMAP, DeleteObject>>;
using OwnedBrush = Owned<ClosedBy<HBRUSH, DeleteObject>>;
using OwnedMenu = Owned<ClosedBy<HMENU, DestroyMenu>>;
using OwnedAccelerators = Owned<ClosedBy<HACCEL, DestroyAcceleratorTable>>;
using OwnedImages = Owned<ClosedBy<HIMAGELIST, ImageList_Destroy>>;
using OwnedMemory = Owned<ClosedBy<HGLOBAL, GlobalFree>>;
using OwnedLock = Owned<ClosedBy<HGLOBAL, GlobalUnlock>>;  // of such memory
using OwnedMemoryDc = Owned<ClosedBy<HDC, DeleteDC>>;

// A device context of a window, or of the screen.
struct WindowDcTraits {
    struct Value {
        HWND window;
        HDC dc;
        bool operator!=(const Value& other) const { return dc != other.dc; }
    };
    static Value Empty() noexcept { return {nullptr, nullptr}; }
    static void Close(const Value& value) noexcept { ReleaseDC(value.window, value.dc); }
};
class WindowDc {
  public:
    explicit WindowDc(HWND window) : owned_({window, GetDC(window)}) {}
    HDC Get() const { return owned_.Get().dc; }

  private:
    Owned<WindowDcTraits> owned_;
};

// An object that is selected into a device context; the one before returns afterwards.
struct SelectionTraits {
    struct Value {
        HDC dc;
        HGDIOBJ before;
        bool operator!=(const Value& other) const { return before != other.before; }
    };
    static Value Empty() noexcept { return {nullptr, nullptr}; }
    static void Close(const Value& value) noexcept { SelectObject(value.dc, value.before); }
};
class Selection {
  public:
    Selection(HDC dc, HGDIOBJ object) : owned_({dc, SelectObject(dc, object)}) {}

  private:
    Owned<SelectionTraits> owned_;
};

// The clipboard, while this program has it open.
struct ClipboardTraits {
    using Value = bool;
    static Value Empty() noexcept { return false; }
    static void Close(Value) noexcept { CloseClipboard(); }
};
using OwnedClipboard = Owned<ClipboardTraits>;

}  // namespace vndiscover::host
