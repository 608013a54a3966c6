#include "window/controls/level_bar.h"

#include <algorithm>

#include "window/controls/dpi.h"

namespace vndiscover::host {
namespace {

constexpr int kBarWidth = 60;

// The system's numbers of colours.
struct BarColours {
    int background, text, level;
};

// Those of the row's other cells: a list without the focus shows its selection faintly.
BarColours ColoursOf(HWND list, int row) {
    if (ListView_GetItemState(list, row, LVIS_SELECTED) == 0)
        return {COLOR_WINDOW, COLOR_WINDOWTEXT, COLOR_HIGHLIGHT};
    if (GetFocus() != list) return {COLOR_BTNFACE, COLOR_BTNTEXT, COLOR_HIGHLIGHT};
    return {COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHTTEXT};
}

}  // namespace

void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, int percent, const std::wstring& text,
             int dpi) {
    const HDC dc = draw.nmcd.hdc;
    const BarColours colours =
        ColoursOf(draw.nmcd.hdr.hwndFrom, static_cast<int>(draw.nmcd.dwItemSpec));
    FillRect(dc, &cell, GetSysColorBrush(colours.background));
    const int inset = Scaled(4, dpi);
    const int rim = Scaled(3, dpi);
    RECT bar = {cell.left + inset, cell.top + rim, cell.left + inset + Scaled(kBarWidth, dpi),
                cell.bottom - rim};
    bar.right = std::min(bar.right, cell.right - inset);
    if (bar.right > bar.left) {
        FrameRect(dc, &bar, GetSysColorBrush(colours.text));
        RECT full = bar;
        InflateRect(&full, -2, -2);
        full.right = full.left + MulDiv(full.right - full.left, percent, 100);
        FillRect(dc, &full, GetSysColorBrush(colours.level));
    }
    RECT place = {bar.right + inset + 2, cell.top, cell.right - 2, cell.bottom};
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(colours.text));
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
              DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

}  // namespace vndiscover::host
