#include "window/menu.h"

#include <vector>

#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr unsigned kLine = 0;

struct Popup {
    unsigned title;
    std::vector<unsigned> commands;
};

const Popup kPopups[] = {
    {IDS_MENU_FILE, {IDM_OPEN, IDM_SAVE, IDM_COMPARE, kLine, IDM_CSV, IDM_JSON, kLine, IDM_EXIT}},
    {IDS_MENU_EDIT, {IDM_COPY_ROW, IDM_COPY_CELL, IDM_COPY_TABLE, kLine, IDM_FILTER, IDM_CLEAR}},
    {IDS_MENU_DEVICE, {IDM_ASK, IDM_ASK_ALL, kLine, IDM_SPLIT, IDM_WEB}},
    {IDS_MENU_TOOLS, {IDM_SNMP, IDM_DOCTOR, IDM_CALLS}}};

}  // namespace

// A MENU resource would duplicate the texts.
HMENU MakeMenu() {
    const HMENU bar = CreateMenu();
    for (const Popup& popup : kPopups) {
        const HMENU menu = CreatePopupMenu();
        for (const unsigned command : popup.commands) {
            if (command == kLine) {
                AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
            } else {
                AppendMenuW(menu, MF_STRING, command, Text(command).c_str());
            }
        }
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), Text(popup.title).c_str());
    }
    return bar;
}

}  // namespace vndiscover::host
