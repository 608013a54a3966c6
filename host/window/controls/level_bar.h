// The colours of a list's cells, and levels in them.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

namespace vndiscover::host {

// Indexes of system colours, for GetSysColor.
struct RowColours {
    int background, text;
};
// The colours of a row. A list without the focus shows its selection faintly.
RowColours ColoursOf(HWND list, int row);
// The text colour of a grey row. The system's own grey may be too faint to read.
COLORREF GreyText();

constexpr int kNoLevel = -1;
struct LevelBar {
    int percent;                 // kNoLevel: the place of the bar stays empty
    COLORREF colour = CLR_NONE;  // of the supply; CLR_NONE: grey
    bool operator==(const LevelBar& other) const {
        return percent == other.percent && colour == other.colour;
    }
};

// Whether a level is the room left in a container. A bar would look like the container's content.
inline bool IsRoom(const std::string& level) { return level.rfind("room left", 0) == 0; }

// `words`: the supply's colour in the device's words.
LevelBar BarOf(int percent, const std::string& words);

// Draws a level and its text into a cell of the list that `draw` is about. In high contrast, only
// the user's colours are used. `isGrey`: the text is grey unless its row is selected.
void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, const LevelBar& level,
             const std::wstring& text, int dpi, bool isGrey);

}  // namespace vndiscover::host
