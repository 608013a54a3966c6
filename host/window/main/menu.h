// The menus of the windows.
#pragma once

#include <windows.h>

namespace vndiscover::host {

// The caller owns the menus until a window does. Each command's text is the string with its number,
// or the heading of its column.
HMENU MakeMenu();        // the bar of the main window
HMENU MakeDeviceMenu();  // of a row of the device list

// The columns to show; part of the bar.
HMENU ViewMenuOf(HMENU bar);

}  // namespace vndiscover::host
