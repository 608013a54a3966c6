// The commands of the main window: their texts, keys and menus, when they are enabled, and what
// they do.
#pragma once

#include <windows.h>

#include "window/controls/owners.h"

namespace vndiscover::host {

class MainWindow;

// Returns false if there is no such command. If it cannot run now, the status says why.
bool RunCommand(MainWindow& window, unsigned id);

// The keys of all commands.
OwnedAccelerators MakeKeys();
// The menu bar of the main window, and the menu for a row of the device list.
OwnedMenu MakeMenu();
OwnedMenu MakeDeviceMenu();
// The menu of the columns, which is part of the bar.
HMENU ViewMenuOf(HMENU bar);
// For WM_INITMENUPOPUP: greys the commands that cannot run now.
void EnableCommands(const MainWindow& window, HMENU menu);

}  // namespace vndiscover::host
