// Menus made of commands.
#pragma once

#include <string>
#include <vector>

#include "window/controls/owners.h"

namespace vndiscover::host {

using Commands = std::vector<unsigned>;
constexpr unsigned kMenuLine = 0;  // a separator

// The text of a command is the string with its number. `cells`: the headings of what IDS_MENU_CELLS
// offers to copy from a row.
OwnedMenu MakePopup(const Commands& commands, const std::vector<std::wstring>& cells);

// Adds a submenu to a menu, which owns it from now on.
void AddPopup(HMENU menu, OwnedMenu popup, const std::wstring& text);

}  // namespace vndiscover::host
