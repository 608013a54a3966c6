// Sizes by the DPI of a window's screen, on systems with and without per-window DPI.
#pragma once

#include <windows.h>

#include "window/controls/owners.h"

namespace vndiscover::host {

int DpiOf(HWND window);
// A size in pixels at 96 DPI.
inline int Scaled(int pixels, int dpi) { return MulDiv(pixels, dpi, 96); }
// Of a vertical scroll bar.
int ScrollBarWidth(int dpi);
// The user's font for messages.
OwnedFont MakeMessageFont(int dpi);

}  // namespace vndiscover::host
