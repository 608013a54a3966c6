// Sizes by the DPI of a window's screen, on systems with and without per-window DPI.
#ifndef VNDISCOVER_HOST_WINDOW_DPI_H
#define VNDISCOVER_HOST_WINDOW_DPI_H

#include <windows.h>

namespace vndiscover::host {

int DpiOf(HWND window);
// The user's message font, which the caller must delete.
HFONT MakeMessageFont(int dpi);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_DPI_H
