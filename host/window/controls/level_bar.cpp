#include "window/controls/level_bar.h"

#include <algorithm>

#include "model/printer/report.h"
#include "window/controls/placement.h"

namespace vndiscover::host {

bool IsHighContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

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

// The inside of a bar. A frame shows how far a supply's colour goes, which may be the background's.
void FillLevel(HDC dc, RECT inside, const LevelBar& level, const BarColours& colours) {
    const bool isColoured = level.colour != CLR_NONE && !IsHighContrast();
    if (isColoured) FillRect(dc, &inside, GetSysColorBrush(COLOR_WINDOW));
    inside.right = inside.left + MulDiv(inside.right - inside.left, level.percent, 100);
    if (!isColoured) return void(FillRect(dc, &inside, GetSysColorBrush(colours.level)));
    FillRect(dc, &inside, OwnedBrush(CreateSolidBrush(level.colour)).Get());
    FrameRect(dc, &inside, GetSysColorBrush(COLOR_WINDOWTEXT));
}

}  // namespace

LevelBar BarOf(int percent, const std::string& words) {
    const SupplyColour* colour = FindSupplyColour(words);
    if (!colour) return {percent, CLR_NONE};
    return {percent, RGB(colour->rgb >> 16, colour->rgb >> 8 & 0xFF, colour->rgb & 0xFF)};
}

void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, const LevelBar& level,
             const std::wstring& text, int dpi) {
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
        RECT inside = bar;
        InflateRect(&inside, -2, -2);
        FillLevel(dc, inside, level, colours);
    }
    RECT place = {bar.right + inset + 2, cell.top, cell.right - 2, cell.bottom};
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(colours.text));
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
              DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

}  // namespace vndiscover::host
