#include "window/controls/level_bar.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include "window/controls/owners.h"

namespace vndiscover::host {
namespace {

// A bar's cell has the colours of the other cells of its row.
TEST(Bars, HaveTheColoursOfTheirRow) {
    InitCommonControls();
    const HWND list = CreateWindowW(WC_LISTVIEWW, L"", LVS_REPORT | LVS_SHOWSELALWAYS | WS_VISIBLE,
                                    0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr);
    const HWND other =
        CreateWindowW(L"BUTTON", L"", WS_VISIBLE, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
    LVITEMW item = {};
    ListView_InsertItem(list, &item);
    const WindowDc screen(nullptr);
    const OwnedMemoryDc dc(CreateCompatibleDC(screen.Get()));
    const OwnedBitmap bitmap(CreateCompatibleBitmap(screen.Get(), 100, 20));
    const SelectedObject drawing(dc.Get(), bitmap.Get());
    NMLVCUSTOMDRAW draw = {};
    draw.nmcd.hdr.hwndFrom = list;
    draw.nmcd.hdc = dc.Get();
    const auto background = [&](HWND focused, UINT state) {
        SetFocus(focused);
        ListView_SetItemState(list, 0, state, LVIS_SELECTED);
        DrawBar(draw, {0, 0, 100, 20}, {0}, L"0 %", 96, false);
        EXPECT_EQ(GetSysColor(COLOR_WINDOW), GetPixel(dc.Get(), 4 + 10, 10));  // not a full bar
        return GetPixel(dc.Get(), 0, 0);
    };
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), background(list, 0));
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), background(list, LVIS_SELECTED));
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), background(other, LVIS_SELECTED));
    // That of the supply has a frame.
    DrawBar(draw, {0, 0, 100, 20}, {50, RGB(0, 160, 216)}, L"50 %", 96, false);
    const int end = 4 + 2 + 32 / 2;  // the inset, the frame, and half of the inside
    EXPECT_EQ(RGB(0, 160, 216), GetPixel(dc.Get(), end - 1, 10));
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), GetPixel(dc.Get(), end, 10));
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), GetPixel(dc.Get(), end - 9, 3 + 1));
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), GetPixel(dc.Get(), end + 1, 10));
    DrawBar(draw, {0, 0, 100, 20}, {2, RGB(0, 160, 216)}, L"2 %", 96, false);
    EXPECT_EQ(RGB(0, 160, 216), GetPixel(dc.Get(), 4 + 2, 10));  // seen although it is low
    DrawBar(draw, {0, 0, 100, 20}, {kNoLevel}, L"", 96, true);
    EXPECT_NE(GetSysColor(COLOR_WINDOWTEXT), GetPixel(dc.Get(), 4, 10)) << "its frame";
    DestroyWindow(other);
    DestroyWindow(list);
}

}  // namespace
}  // namespace vndiscover::host
