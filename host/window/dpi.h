// Sizes by the dots per inch of a window's screen, on systems that know them per window and others.
#ifndef VNDISCOVER_HOST_WINDOW_DPI_H
#define VNDISCOVER_HOST_WINDOW_DPI_H

#include <windows.h>

namespace vndiscover::host {

int DpiOf(HWND window);
// The font of the user's messages; the caller deletes it.
HFONT MakeMessageFont(int dpi);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_DPI_H
