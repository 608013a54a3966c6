#include "window/controls/popup_menu.h"

#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void AddPopup(HMENU menu, OwnedMenu popup, const std::wstring& text) {
    if (AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popup.Get()), text.c_str()))
        popup.Release();
}

OwnedMenu MakePopup(const Commands& commands, const std::vector<std::wstring>& cells) {
    OwnedMenu menu(CreatePopupMenu());
    for (const unsigned command : commands) {
        if (command == kMenuLine) {
            AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
        } else if (command == IDS_MENU_CELLS) {
            OwnedMenu popup(CreatePopupMenu());
            for (size_t cell = 0; cell < cells.size(); ++cell) {
                const bool hasKey = cells[cell].find(L'&') != std::wstring::npos;
                const std::wstring number = L"&" + std::to_wstring(cell + 1) + L" ";
                AppendMenuW(popup.Get(), MF_STRING, IDM_CELL + cell,
                            (hasKey ? cells[cell] : number + cells[cell]).c_str());
            }
            AddPopup(menu.Get(), std::move(popup), Text(command));
        } else {
            AppendMenuW(menu.Get(), MF_STRING, command, Text(command).c_str());
        }
    }
    return menu;
}

}  // namespace vndiscover::host
