// The colours of a list's cells, and levels in them.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

namespace vndiscover::host {

// The system's numbers of colours.
struct RowColours {
    int background, text;
};
// Those of a row: a list without the focus shows its selection faintly.
RowColours ColoursOf(HWND list, int row);
// Of a row that is grey: the system's own grey may be too faint to read.
COLORREF GreyText();

constexpr int kNoLevel = -1;
struct LevelBar {
    int percent;                 // kNoLevel: no bar, but the place of one
    COLORREF colour = CLR_NONE;  // of the supply; otherwise grey
    bool operator==(const LevelBar& other) const {
        return percent == other.percent && colour == other.colour;
    }
};

// Whether a level is the room in a container, whose bar would look like what is in it.
inline bool IsRoom(const std::string& level) { return level.rfind("room left", 0) == 0; }

// `words`: the supply's colour in the device's words.
LevelBar BarOf(int percent, const std::string& words);

// Draws a level and its text into a cell of the list that `draw` is about. High contrast has only
// the user's colours. `isGrey`: the text, if its row is not selected.
void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, const LevelBar& level,
             const std::wstring& text, int dpi, bool isGrey);

}  // namespace vndiscover::host
