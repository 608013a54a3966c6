#include "window/controls/facts_list.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

namespace vndiscover::host {
namespace {

// A bar's cell has the colours of the other cells of its row.
TEST(Bars, ShowWhetherTheirRowIsSelectedAndTheListHasTheFocus) {
    InitCommonControls();
    const HWND list = CreateWindowW(WC_LISTVIEWW, L"", LVS_REPORT | LVS_SHOWSELALWAYS | WS_VISIBLE,
                                    0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr);
    const HWND other =
        CreateWindowW(L"BUTTON", L"", WS_VISIBLE, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
    LVITEMW item = {};
    ListView_InsertItem(list, &item);
    const HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, 100, 20);
    const HGDIOBJ old = SelectObject(dc, bitmap);
    const auto background = [&](HWND focused, UINT state) {
        SetFocus(focused);
        ListView_SetItemState(list, 0, state, LVIS_SELECTED);
        NMLVCUSTOMDRAW draw = {};
        draw.nmcd.hdr.hwndFrom = list;
        draw.nmcd.hdc = dc;
        DrawBar(draw, {0, 0, 100, 20}, 50, L"50 %", 96);
        return GetPixel(dc, 0, 0);
    };
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), background(list, 0));
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), background(list, LVIS_SELECTED));
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), background(other, LVIS_SELECTED));
    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    DestroyWindow(other);
    DestroyWindow(list);
}

}  // namespace
}  // namespace vndiscover::host
