// A level in a cell of a list.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

namespace vndiscover::host {

// Draws a level and its text into a cell of the list that `draw` is about, in the user's colours.
void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, int percent, const std::wstring& text,
             int dpi);

}  // namespace vndiscover::host
