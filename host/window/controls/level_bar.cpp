#include "window/controls/level_bar.h"

#include <algorithm>
#include <cstdlib>

#include "model/printer/report.h"
#include "window/controls/placement.h"

namespace vndiscover::host {

namespace {

constexpr int kBarWidth = 36;

// Whether the user has chosen colours of high contrast for all programs.
bool IsHighContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool AreNear(COLORREF one, COLORREF other) {
    const auto isNear = [](int left, int right) { return std::abs(left - right) < 48; };
    return isNear(GetRValue(one), GetRValue(other)) && isNear(GetGValue(one), GetGValue(other)) &&
           isNear(GetBValue(one), GetBValue(other));
}

// A level in the colour of the background is drawn grey, since it would be invisible. The frame is
// drawn around the level, so that it covers none of it.
void FillLevel(HDC dc, RECT level, const LevelBar& bar) {
    level.right = level.left + MulDiv(level.right - level.left, bar.percent, 100);
    if (IsRectEmpty(&level)) return;
    const bool isOfUser = IsHighContrast();
    const bool isGrey = bar.colour == CLR_NONE || AreNear(bar.colour, GetSysColor(COLOR_WINDOW));
    const COLORREF colour = isOfUser ? GetSysColor(COLOR_HIGHLIGHT)
                            : isGrey ? GreyText()
                                     : bar.colour;
    FillRect(dc, &level, OwnedBrush(CreateSolidBrush(colour)).Get());
    if (isOfUser) return;
    InflateRect(&level, 1, 1);
    FrameRect(dc, &level, GetSysColorBrush(COLOR_WINDOWTEXT));
}

}  // namespace

RowColours ColoursOf(HWND list, int row) {
    if (ListView_GetItemState(list, row, LVIS_SELECTED) == 0)
        return {COLOR_WINDOW, COLOR_WINDOWTEXT};
    if (GetFocus() != list) return {COLOR_BTNFACE, COLOR_BTNTEXT};
    return {COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT};
}

COLORREF GreyText() {
    if (IsHighContrast()) return GetSysColor(COLOR_GRAYTEXT);
    const COLORREF text = GetSysColor(COLOR_WINDOWTEXT), ground = GetSysColor(COLOR_WINDOW);
    const auto mixed = [](int one, int other) { return (3 * one + 2 * other) / 5; };
    return RGB(mixed(GetRValue(text), GetRValue(ground)), mixed(GetGValue(text), GetGValue(ground)),
               mixed(GetBValue(text), GetBValue(ground)));
}

LevelBar BarOf(int percent, const std::string& words) {
    const SupplyColour* colour = FindSupplyColour(words);
    if (!colour) return {percent, CLR_NONE};
    return {percent, RGB(colour->rgb >> 16, colour->rgb >> 8 & 0xFF, colour->rgb & 0xFF)};
}

void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, const LevelBar& level,
             const std::wstring& text, int dpi, bool isGrey) {
    const HDC dc = draw.nmcd.hdc;
    const RowColours colours =
        ColoursOf(draw.nmcd.hdr.hwndFrom, static_cast<int>(draw.nmcd.dwItemSpec));
    FillRect(dc, &cell, GetSysColorBrush(colours.background));
    const int inset = Scaled(4, dpi);
    const int rim = Scaled(3, dpi);
    RECT bar = {cell.left + inset, cell.top + rim, cell.left + inset + Scaled(kBarWidth, dpi),
                cell.bottom - rim};
    bar.right = std::min(bar.right, cell.right - inset);
    if (bar.right > bar.left && level.percent >= 0) {
        // Also in a selected row: with its colours, the level could look like the empty part.
        FillRect(dc, &bar, GetSysColorBrush(COLOR_WINDOW));
        FrameRect(dc, &bar, GetSysColorBrush(COLOR_WINDOWTEXT));
        RECT inside = bar;
        InflateRect(&inside, -2, -2);
        FillLevel(dc, inside, level);
    }
    RECT place = {bar.right + inset + 2, cell.top, cell.right - 2, cell.bottom};
    SetBkMode(dc, TRANSPARENT);
    const bool isFaint = isGrey && colours.text == COLOR_WINDOWTEXT;
    SetTextColor(dc, isFaint ? GreyText() : GetSysColor(colours.text));
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
              DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

}  // namespace vndiscover::host
