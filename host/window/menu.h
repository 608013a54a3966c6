// The menu bar of the main window.
#ifndef VNDISCOVER_HOST_WINDOW_MENU_H
#define VNDISCOVER_HOST_WINDOW_MENU_H

#include <windows.h>

namespace vndiscover::host {

// The caller owns it until a window does. Each command's text is the string with its number.
HMENU MakeMenu();

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_MENU_H
