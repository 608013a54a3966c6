// The menus of the windows.
#pragma once

#include "window/controls/owners.h"

namespace vndiscover::host {

// Each command's text is the string with its number, or the heading of its column.
OwnedMenu MakeMenu();        // the bar of the main window
OwnedMenu MakeDeviceMenu();  // of a row of the device list

// The columns to show; part of the bar.
HMENU ViewMenuOf(HMENU bar);

}  // namespace vndiscover::host
