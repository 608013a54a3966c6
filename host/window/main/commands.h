// The commands of the main window: their texts, keys and menus, when they are enabled, and what
// they do.
#pragma once

#include <windows.h>

#include "window/controls/owners.h"

namespace vndiscover::host {

class MainWindow;

// Returns false if there is no such command. If it cannot run now, the status says why. Columns and
// cells have the commands IDM_COLUMN and IDM_CELL plus their Column.
bool RunCommand(MainWindow& window, unsigned id);

// The keys of the table.
OwnedAccelerators MakeKeys();
// The bar of the main window, and the menu of a row of the device list.
OwnedMenu MakeMenu();
OwnedMenu MakeDeviceMenu();
// The columns to show; part of the bar.
HMENU ViewMenuOf(HMENU bar);
// Greys what cannot be executed now, for WM_INITMENUPOPUP.
void EnableCommands(const MainWindow& window, HMENU menu);

}  // namespace vndiscover::host
