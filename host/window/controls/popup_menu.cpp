#include "window/controls/popup_menu.h"

#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

HMENU MakePopup(const Commands& commands, const std::vector<std::wstring>& cells,
                std::wstring (*textOf)(unsigned command)) {
    const HMENU menu = CreatePopupMenu();
    for (const unsigned command : commands) {
        if (command == kMenuLine) {
            AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
        } else if (command == IDS_MENU_CELLS) {
            const HMENU popup = CreatePopupMenu();
            for (size_t cell = 0; cell < cells.size(); ++cell)
                AppendMenuW(popup, MF_STRING, IDM_CELL + cell, cells[cell].c_str());
            AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), Text(command).c_str());
        } else {
            const std::wstring text = textOf ? textOf(command) : Text(command);
            AppendMenuW(menu, MF_STRING, command, text.c_str());
        }
    }
    return menu;
}

}  // namespace vndiscover::host
