// The menus of the windows.
#ifndef VNDISCOVER_HOST_WINDOW_MENU_H
#define VNDISCOVER_HOST_WINDOW_MENU_H

#include <windows.h>

#include <string>
#include <vector>

namespace vndiscover::host {

// The caller owns the menus until a window does. Each command's text is the string with its number,
// or the heading of its column.
HMENU MakeMenu();        // the bar of the main window
HMENU MakeDeviceMenu();  // of a row of the device list
// Of a row of any other list.
HMENU MakeCopyMenu(const std::vector<std::wstring>& headings);

// The columns to show; part of the bar.
HMENU ViewMenuOf(HMENU bar);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_MENU_H
