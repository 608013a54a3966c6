// Menus made of commands.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace vndiscover::host {

using Commands = std::vector<unsigned>;
constexpr unsigned kMenuLine = 0;  // a separator

// The caller owns the menu until a window does. The text of a command is the string with its number
// unless `textOf` gives another. `cells`: what IDS_MENU_CELLS offers to copy from a row.
HMENU MakePopup(const Commands& commands, const std::vector<std::wstring>& cells,
                std::wstring (*textOf)(unsigned command) = nullptr);

}  // namespace vndiscover::host
