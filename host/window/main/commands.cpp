#include "window/main/commands.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "window/controls/popup_menu.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

using Window = MainWindow;
constexpr unsigned kMaxColumns = 32;

struct Command {
    unsigned id;  // also that of its text
    struct Key {
        BYTE modifiers;  // FCONTROL, FSHIFT
        WORD code;       // a virtual key; 0: none of its own
    } key;
    unsigned menu;                            // the string of the menu that it is in; 0: none
    bool startsGroup;                         // in the menu, after a line
    bool (*isEnabled)(const Window& window);  // null: always
    void (*run)(Window& window);              // null: it is a menu
    bool (*isChecked)(const Window& window) = nullptr;  // null: it has no check mark
};

bool HasSelection(const Window& window) { return window.state.session.view.SelectedRow(); }
bool HasTarget(const Window& window) { return window.state.SelectedTarget().has_value(); }
bool HasRows(const Window& window) { return window.state.session.view.Count() != 0; }
bool HasScan(const Window& window) { return window.scans.HasScan(); }
bool HasWebAddress(const Window& window) { return !window.devices.WebAddress().empty(); }
bool CanSplit(const Window& window) {
    return HasSelection(window) &&
           window.state.session.CanSplit(*window.state.session.view.SelectedRow());
}

template <unsigned id, unsigned minutes>
constexpr Command RefreshEvery(bool startsGroup = false) {
    return {id,
            {},
            IDS_MENU_DEVICE,
            startsGroup,
            nullptr,
            [](Window& window) { window.watch.RefreshEvery(minutes); },
            [](const Window& window) { return window.watch.Minutes() == minutes; }};
}

constexpr Command kTable[] = {
    {IDC_FIND, {0, VK_F5}, 0, false, nullptr, [](Window& w) { w.FindOrStop(); }},
    {IDCANCEL, {}, 0, false, nullptr, [](Window& w) { w.StopAll(); }},  // Esc, in any control
    {IDM_NEXT_PAGE,
     {FCONTROL, VK_TAB},
     0,
     false,
     nullptr,
     [](Window& w) { w.panes.details.Turn(1); }},
    {IDM_PREVIOUS_PAGE,
     {FCONTROL | FSHIFT, VK_TAB},
     0,
     false,
     nullptr,
     [](Window& w) { w.panes.details.Turn(-1); }},

    {IDM_OPEN, {FCONTROL, 'O'}, IDS_MENU_FILE, false, nullptr, [](Window& w) { w.scans.Open(); }},
    {IDM_SAVE, {FCONTROL, 'S'}, IDS_MENU_FILE, false, HasScan, [](Window& w) { w.scans.Save(); }},
    {IDM_COMPARE, {}, IDS_MENU_FILE, false, nullptr, [](Window& w) { w.scans.Compare(); }},
    {IDM_CSV, {}, IDS_MENU_FILE, true, HasRows, [](Window& w) { w.scans.SaveCsv(); }},
    {IDM_JSON, {}, IDS_MENU_FILE, false, HasRows, [](Window& w) { w.scans.SaveJson(); }},
    {IDM_EXIT,
     {},
     IDS_MENU_FILE,
     true,
     nullptr,
     [](Window& w) { PostMessageW(w.Handle(), WM_CLOSE, 0, 0); }},

    {IDM_COPY_ROW, {}, IDS_MENU_EDIT, false, HasSelection, [](Window& w) { w.devices.CopyRow(); }},
    {IDM_COPY_CELL,
     {FCONTROL | FSHIFT, 'C'},
     IDS_MENU_EDIT,
     false,
     HasSelection,
     [](Window& w) { w.devices.CopyCell(w.panes.list.ChosenColumn()); }},
    {IDS_MENU_CELLS, {}, IDS_MENU_EDIT, false, HasSelection, nullptr},
    {IDM_COPY_TABLE,
     {FCONTROL | FSHIFT, 'T'},
     IDS_MENU_EDIT,
     false,
     HasRows,
     [](Window& w) { w.devices.CopyTable(); }},
    {IDM_FILTER,
     {FCONTROL, 'F'},
     IDS_MENU_EDIT,
     true,
     nullptr,
     [](Window& w) { w.panes.bar.FocusFilter(); }},
    {IDM_CLEAR, {}, IDS_MENU_EDIT, false, HasScan, [](Window& w) { w.scans.Clear(); }},

    {IDM_ASK,
     {FCONTROL, 'R'},
     IDS_MENU_DEVICE,
     false,
     HasTarget,
     [](Window& w) { w.devices.Ask(true); }},
    {IDM_ASK_ALL,
     {FCONTROL | FSHIFT, 'R'},
     IDS_MENU_DEVICE,
     false,
     HasRows,
     [](Window& w) { w.devices.ReadShown(); }},
    {IDM_READ_FOUND,
     {},
     IDS_MENU_DEVICE,
     false,
     nullptr,
     [](Window& w) { w.ToggleReadsFound(); },
     [](const Window& w) { return w.ReadsFound(); }},
    {IDM_DIAGNOSE, {}, IDS_MENU_DEVICE, false, HasTarget, [](Window& w) { w.devices.Diagnose(); }},
    {IDM_WALK, {}, IDS_MENU_DEVICE, false, HasTarget, [](Window& w) { w.devices.Walk(); }},
    {IDM_ADD, {}, IDS_MENU_DEVICE, false, nullptr, [](Window& w) { w.devices.AddByHand(); }},
    {IDM_SPLIT, {}, IDS_MENU_DEVICE, true, CanSplit, [](Window& w) { w.devices.Split(); }},
    {IDM_WEB,
     {},
     IDS_MENU_DEVICE,
     false,
     HasWebAddress,
     [](Window& w) { w.devices.OpenWebPage(); }},

    RefreshEvery<IDM_REFRESH_NEVER, 0>(true),
    RefreshEvery<IDM_REFRESH_1, 1>(),
    RefreshEvery<IDM_REFRESH_5, 5>(),
    RefreshEvery<IDM_REFRESH_15, 15>(),
    RefreshEvery<IDM_REFRESH_60, 60>(),

    {IDM_SNMP, {}, IDS_MENU_TOOLS, false, nullptr, [](Window& w) { w.searches.AskForUser(); }},
    {IDM_DOCTOR,
     {},
     IDS_MENU_TOOLS,
     false,
     nullptr,
     [](Window& w) { w.devices.DiagnoseComputer(); }},
    {IDM_CHANGES, {}, IDS_MENU_TOOLS, false, nullptr, [](Window& w) { w.watch.Open(); }},
    {IDM_CALLS, {}, IDS_MENU_TOOLS, false, nullptr, [](Window& w) { w.calls.Open(w.Handle()); }},
};

// In the order of the bar. The columns are commands of IDS_MENU_VIEW.
constexpr unsigned kMenus[] = {IDS_MENU_FILE, IDS_MENU_EDIT, IDS_MENU_VIEW, IDS_MENU_DEVICE,
                               IDS_MENU_TOOLS};
constexpr int kView = 2;  // place in the bar

constexpr bool IsRange(unsigned id) {
    return (id >= IDM_COLUMN && id < IDM_COLUMN + kMaxColumns) ||
           (id >= IDM_CELL && id < IDM_CELL + kMaxColumns);
}
constexpr bool AreDistinct() {
    for (size_t index = 0; index < std::size(kTable); ++index) {
        if (IsRange(kTable[index].id)) return false;
        for (size_t other = 0; other < index; ++other) {
            if (kTable[other].id == kTable[index].id) return false;
        }
    }
    return IDM_COLUMN + kMaxColumns <= IDM_CELL;
}
static_assert(AreDistinct(), "two commands have one number");
static_assert(kColumnCount <= kMaxColumns);

const Command* Find(unsigned id) {
    const auto* found = std::find_if(std::begin(kTable), std::end(kTable),
                                     [id](const Command& command) { return command.id == id; });
    return found == std::end(kTable) ? nullptr : found;
}

std::vector<std::wstring> ColumnNames() {
    std::vector<std::wstring> names;
    for (unsigned index = 0; index < kColumnCount; ++index)
        names.push_back(ColumnName(static_cast<Column>(index)));
    return names;
}

std::wstring TextOf(unsigned command) {
    return IsRange(command) ? ColumnName(static_cast<Column>(command - IDM_COLUMN)) : Text(command);
}

Commands CommandsOf(unsigned menu) {
    Commands commands;
    for (const Command& command : kTable) {
        if (command.menu != menu) continue;
        if (command.startsGroup) commands.push_back(kMenuLine);
        commands.push_back(command.id);
    }
    for (unsigned index = 0; menu == IDS_MENU_VIEW && index < kColumnCount; ++index)
        commands.push_back(IDM_COLUMN + index);
    return commands;
}

OwnedMenu MakeCommands(const Commands& commands) {
    return MakePopup(commands, ColumnNames(), TextOf);
}

}  // namespace

bool RunCommand(MainWindow& window, unsigned id) {
    const Command* command = Find(id);
    if (!command && !IsRange(id)) return false;
    if (command && command->isEnabled && !command->isEnabled(window)) return false;
    window.state.progress.ClearNote();
    if (command) {
        command->run(window);
    } else if (id >= IDM_CELL) {
        window.devices.CopyCell(static_cast<Column>(id - IDM_CELL));
    } else {
        window.settings.ToggleColumn(static_cast<Column>(id - IDM_COLUMN));
    }
    return true;
}

OwnedAccelerators MakeKeys() {
    std::vector<ACCEL> keys;
    for (const Command& command : kTable) {
        if (command.key.code == 0) continue;
        const auto modifiers = static_cast<BYTE>(FVIRTKEY | command.key.modifiers);
        keys.push_back({modifiers, command.key.code, static_cast<WORD>(command.id)});
    }
    return OwnedAccelerators(CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size())));
}

// A MENU resource would repeat the table.
OwnedMenu MakeMenu() {
    OwnedMenu bar(CreateMenu());
    for (const unsigned menu : kMenus)
        AddPopup(bar.Get(), MakeCommands(CommandsOf(menu)), Text(menu));
    return bar;
}

OwnedMenu MakeDeviceMenu() {
    Commands commands = {IDM_COPY_CELL, IDS_MENU_CELLS, IDM_COPY_ROW, kMenuLine};
    const Commands more = CommandsOf(IDS_MENU_DEVICE);
    commands.insert(commands.end(), more.begin(), more.end());
    return MakeCommands(commands);
}

HMENU ViewMenuOf(HMENU bar) { return GetSubMenu(bar, kView); }

void EnableCommands(const MainWindow& window, HMENU menu) {
    for (int index = 0; index < GetMenuItemCount(menu); ++index) {
        const UINT id = GetMenuItemID(menu, index);
        const Command* command = id == static_cast<UINT>(-1) ? Find(IDS_MENU_CELLS) : Find(id);
        const auto place = static_cast<UINT>(index);
        if (command && command->isEnabled)
            EnableMenuItem(menu, place,
                           MF_BYPOSITION | (command->isEnabled(window) ? MF_ENABLED : MF_GRAYED));
        if (command && command->isChecked)
            CheckMenuItem(menu, place,
                          MF_BYPOSITION | (command->isChecked(window) ? MF_CHECKED : MF_UNCHECKED));
    }
}

}  // namespace vndiscover::host
