#include "window/main/menu.h"

#include <vector>

#include "window/controls/popup_menu.h"
#include "window/main/device_columns.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr unsigned kLine = kMenuLine;
constexpr int kView = 2;  // place in the bar

const Commands kDevice = {IDM_ASK, IDM_ASK_ALL, IDM_DIAGNOSE, IDM_WALK, kLine, IDM_SPLIT, IDM_WEB};
const Commands kColumns = {IDM_COLUMN,     IDM_COLUMN + 1, IDM_COLUMN + 2, IDM_COLUMN + 3,
                           IDM_COLUMN + 4, IDM_COLUMN + 5, IDM_COLUMN + 6, IDM_COLUMN + 7,
                           IDM_COLUMN + 8, IDM_COLUMN + 9};

const struct {
    unsigned title;
    Commands commands;
} kPopups[] = {
    {IDS_MENU_FILE, {IDM_OPEN, IDM_SAVE, IDM_COMPARE, kLine, IDM_CSV, IDM_JSON, kLine, IDM_EXIT}},
    {IDS_MENU_EDIT,
     {IDM_COPY_ROW, IDM_COPY_CELL, IDS_MENU_CELLS, IDM_COPY_TABLE, kLine, IDM_FILTER, IDM_CLEAR}},
    {IDS_MENU_VIEW, kColumns},
    {IDS_MENU_DEVICE, kDevice},
    {IDS_MENU_TOOLS, {IDM_SNMP, IDM_DOCTOR, IDM_CALLS}}};

std::wstring TextOf(unsigned command) {
    if (command >= IDM_COLUMN && command < IDM_COLUMN + kColumnCount)
        return ColumnName(static_cast<Column>(command - IDM_COLUMN));
    return Text(command);
}

std::vector<std::wstring> ColumnNames() {
    std::vector<std::wstring> names;
    for (size_t index = 0; index < kColumnCount; ++index)
        names.push_back(ColumnName(static_cast<Column>(index)));
    return names;
}

OwnedMenu MakeCommands(const Commands& commands) {
    return MakePopup(commands, ColumnNames(), TextOf);
}

}  // namespace

// A MENU resource would duplicate the texts.
OwnedMenu MakeMenu() {
    OwnedMenu bar(CreateMenu());
    for (const auto& popup : kPopups)
        AddPopup(bar.Get(), MakeCommands(popup.commands), Text(popup.title));
    return bar;
}

HMENU ViewMenuOf(HMENU bar) { return GetSubMenu(bar, kView); }

OwnedMenu MakeDeviceMenu() {
    Commands commands = {IDM_COPY_CELL, IDS_MENU_CELLS, IDM_COPY_ROW, kLine};
    commands.insert(commands.end(), kDevice.begin(), kDevice.end());
    return MakeCommands(commands);
}

}  // namespace vndiscover::host
