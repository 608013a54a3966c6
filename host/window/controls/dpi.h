// Sizes by the DPI of a window's screen, on systems with and without per-window DPI.
#pragma once

#include <windows.h>

namespace vndiscover::host {

int DpiOf(HWND window);
// The user's message font, which the caller must delete.
HFONT MakeMessageFont(int dpi);

}  // namespace vndiscover::host
