#include "window/main/commands.h"

#include <iterator>
#include <string>
#include <vector>

#include "model/scan/device_view.h"
#include "values/ranges.h"
#include "window/controls/clipboard.h"
#include "window/controls/popup_menu.h"
#include "window/main/device_commands.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

using Window = MainWindow;
constexpr int kStep = 16;  // pixels

struct Key {
    BYTE modifiers = 0;  // FCONTROL, FSHIFT
    WORD code = 0;       // a virtual key; 0: none
};
constexpr Key Ctrl(WORD code) { return {FCONTROL, code}; }
constexpr Key CtrlShift(WORD code) { return {FCONTROL | FSHIFT, code}; }

struct Command {
    unsigned id;  // also of its text; kMenuLine: a separator
    Key key = {};
    unsigned (*obstacle)(const Window&) = nullptr;  // returns the reason's string; 0: it can run
    void (*run)(Window&) = nullptr;
    bool (*isChecked)(const Window&) = nullptr;  // null: it has no check mark
    bool isChoice = false;                       // one of several, shown by a dot
    constexpr bool IsMenu() const { return !run && !obstacle && id != kMenuLine; }
};

constexpr unsigned Unless(bool holds, unsigned text) { return holds ? 0U : text; }
unsigned NoRow(const Window& w) {
    return Unless(w.state.session.view.SelectedRow() != nullptr, IDS_SELECT_FIRST);
}
unsigned NoTarget(const Window& w) {
    if (const unsigned noRow = NoRow(w)) return noRow;
    return Unless(w.state.SelectedTarget().has_value(), IDS_NO_TARGET);
}
// For commands on a single device.
unsigned NoOneTarget(const Window& w) {
    if (w.state.session.view.Selection().size() > 1) return IDS_SELECT_ONE;
    return NoTarget(w);
}
unsigned NoRows(const Window& w) { return Unless(w.state.session.view.Count() != 0, IDS_NO_ROWS); }
unsigned NoScan(const Window& w) { return Unless(w.scans.HasScan(), IDS_NO_SCAN); }
unsigned NoWebPage(const Window& w) {
    if (const unsigned noRow = NoRow(w)) return noRow;
    const size_t pages = WebAddresses(w.state.session).size();
    if (pages > kMaxWebPages) return IDS_TOO_MANY_PAGES;
    return Unless(pages != 0, IDS_NO_WEB_PAGE);
}
unsigned NoParts(const Window& w) {
    if (const unsigned noTarget = NoOneTarget(w)) return noTarget;
    return Unless(w.state.session.CanSplit(*w.state.session.view.SelectedRow()), IDS_NO_PARTS);
}
template <int direction>
unsigned IsAtEnd(const Window& w) {
    return Unless(w.panes.MayWiden(direction), IDS_SPLIT_END);
}
unsigned IsBusy(const Window& w) { return w.state.Obstacle(); }
unsigned IsIdle(const Window& w) { return Unless(w.state.IsBusy(), IDS_IDLE); }

void Escape(Window& w) {
    if (!w.panes.bar.ClearFilter()) w.StopAll();
}

// One of several values of a setting.
template <unsigned id, auto kSetting, auto kValue, void (*apply)(Window&)>
constexpr Command Choice() {
    return {id,
            {},
            nullptr,
            [](Window& w) {
                w.state.settings.*kSetting = kValue;
                apply(w);
            },
            [](const Window& w) { return w.state.settings.*kSetting == kValue; },
            true};
}
void Refresh(Window& w) { w.RestartTimer(w.state.settings.refreshMinutes); }
void UseLow(Window& w) { w.panes.UseLow(); }

// The first commands are in no menu. After each menu come its commands. Columns are commands of
// IDS_MENU_VIEW.
constexpr Command kTable[] = {
    {IDC_FIND, {}, nullptr, [](Window& w) { w.state.IsBusy() ? w.StopAll() : w.searches.Start(); }},
    {IDCANCEL, {}, nullptr, Escape},  // Esc, in any control
    {IDM_NEXT_PAGE, Ctrl(VK_TAB), nullptr, [](Window& w) { w.panes.details.TurnPage(1); }},
    {IDM_PREVIOUS_PAGE, CtrlShift(VK_TAB), nullptr,
     [](Window& w) { w.panes.details.TurnPage(-1); }},
    {IDM_NEXT_PANE, {0, VK_F6}, nullptr, [](Window& w) { w.panes.FocusNextPane(); }},

    {IDS_MENU_FILE},
    {IDM_OPEN, Ctrl('O'), nullptr, [](Window& w) { w.scans.Open(); }},
    {IDM_SAVE, Ctrl('S'), NoScan, [](Window& w) { w.scans.Save(); }},
    {IDM_COMPARE, {}, NoScan, [](Window& w) { w.scans.Compare(); }},
    {kMenuLine},
    {IDM_CSV, {}, NoRows, [](Window& w) { w.scans.SaveCsv(); }},
    {IDM_JSON, {}, NoRows, [](Window& w) { w.scans.SaveJson(); }},
    {kMenuLine},
    {IDM_EXIT, {}, nullptr, [](Window& w) { PostMessageW(w.Handle(), WM_CLOSE, 0, 0); }},

    {IDS_MENU_EDIT},
    {IDM_COPY_ROW, {}, NoRow, [](Window& w) { w.panes.list.Copy(IDM_COPY_ROW); }},
    {IDM_COPY_CELL, CtrlShift('C'), NoRow,
     [](Window& w) { CopyCell(w.state, w.panes.list.ChosenColumn()); }},
    {IDS_MENU_CELLS, {}, NoRow},
    {IDM_COPY_TABLE, CtrlShift('T'), NoRows,
     [](Window& w) { CopyText(w.Handle(), w.panes.list.TableText()); }},
    {kMenuLine},
    {IDM_FILTER, Ctrl('F'), nullptr,
     [](Window& w) {
         SetFocus(GetDlgItem(w.Handle(), IDC_FILTER));
         SendDlgItemMessageW(w.Handle(), IDC_FILTER, EM_SETSEL, 0, -1);  // typing replaces it
     }},
    {IDM_CLEAR, {}, NoScan, [](Window& w) { w.scans.Clear(); }},

    {IDS_MENU_VIEW},  // the columns come first
    {kMenuLine},
    {IDM_SORT, {0, VK_F9}, NoRows, [](Window& w) { w.panes.list.SortByNext(); }},
    {IDM_REVERSE, {FSHIFT, VK_F9}, NoRows, [](Window& w) { w.panes.list.Reverse(); }},
    {kMenuLine},
    {IDM_NARROWER, {0, VK_F7}, IsAtEnd<-1>, [](Window& w) { w.panes.Widen(-kStep); }},
    {IDM_WIDER, {0, VK_F8}, IsAtEnd<1>, [](Window& w) { w.panes.Widen(kStep); }},
    {kMenuLine},
    Choice<IDM_LOW_5, &Settings::lowPercent, 5, UseLow>(),
    Choice<IDM_LOW_10, &Settings::lowPercent, 10, UseLow>(),
    Choice<IDM_LOW_20, &Settings::lowPercent, 20, UseLow>(),

    {IDS_MENU_DEVICE},
    {IDM_DETAILS, {}, NoRow, [](Window& w) { SetFocus(w.panes.details.List()); }},
    {IDM_WEB, Ctrl(VK_RETURN), NoWebPage, OpenWebPages},
    {kMenuLine},
    {IDM_ASK, Ctrl('R'), NoTarget, ReadAgain},
    {IDM_ASK_ALL, CtrlShift('R'), NoRows, ReadShown},
    {IDM_READ_FOUND,
     {},
     nullptr,
     [](Window& w) { w.state.settings.readsFound ^= 1; },
     [](const Window& w) { return w.searches.ReadsFound(); }},
    {IDM_DIAGNOSE, {}, NoOneTarget, DiagnoseDevice},
    {IDM_WALK, {}, NoOneTarget, Walk},
    {IDM_ADD, {}, nullptr, AddByHand},
    {IDM_SPLIT, {}, NoParts, Split},
    {kMenuLine},
    Choice<IDM_REFRESH_NEVER, &Settings::refreshMinutes, 0U, Refresh>(),
    Choice<IDM_REFRESH_1, &Settings::refreshMinutes, 1U, Refresh>(),
    Choice<IDM_REFRESH_5, &Settings::refreshMinutes, 5U, Refresh>(),
    Choice<IDM_REFRESH_15, &Settings::refreshMinutes, 15U, Refresh>(),
    Choice<IDM_REFRESH_60, &Settings::refreshMinutes, 60U, Refresh>(),

    {IDS_MENU_TOOLS},
    {IDM_FIND, {0, VK_F5}, IsBusy, [](Window& w) { w.searches.Start(); }},
    {IDM_STOP, {}, IsIdle, [](Window& w) { w.StopAll(); }},
    {kMenuLine},
    {IDM_SNMP, {}, nullptr, [](Window& w) { w.searches.AskForUser(); }},
    {IDM_DOCTOR, {}, nullptr, DiagnoseComputer},
    {IDM_CHANGES, {}, nullptr, [](Window& w) { w.scans.OpenChanges(); }},

    {IDS_MENU_HELP},
    {IDM_HELP, {0, VK_F1}, nullptr, [](Window& w) { ShowHelp(w.state); }},
    {IDM_CALLS, {}, nullptr, [](Window& w) { w.calls.Open(w.Handle()); }},
    {IDM_ABOUT, {}, nullptr, [](Window& w) { ShowAbout(w.Handle()); }},
};

constexpr bool IsColumn(unsigned id) { return id >= IDM_COLUMN && id < IDM_COLUMN + kColumnCount; }
constexpr bool IsCell(unsigned id) { return id >= IDM_CELL && id < IDM_CELL + kColumnCount; }
constexpr bool AreDistinct() {
    for (size_t index = 0; index < std::size(kTable); ++index) {
        if (IsColumn(kTable[index].id) || IsCell(kTable[index].id)) return false;
        for (size_t other = 0; other < index; ++other) {
            if (kTable[other].id == kTable[index].id && kTable[index].id != kMenuLine) return false;
        }
    }
    return true;
}
static_assert(AreDistinct(), "two commands have one number");
static_assert(IDM_COLUMN == IDS_COLUMN_NAME);

const Command* Find(unsigned id) {
    return FindIf(kTable, [id](const Command& command) { return command.id == id; });
}

std::vector<std::wstring> ColumnNames() {
    std::vector<std::wstring> names;
    for (unsigned index = 0; index < kColumnCount; ++index)
        names.push_back(Text(IDM_COLUMN + index));
    return names;
}

// The number of the string that says why a command cannot run now; 0: it can.
unsigned ObstacleTo(unsigned id, const Window& w) {
    const Command* const command = Find(id);
    if (command) return command->obstacle ? command->obstacle(w) : 0;
    const bool isLast =
        IsColumn(id) && (w.state.settings.hidden | 1u << (id - IDM_COLUMN)) == kAllColumns;
    return Unless(!isLast, IDS_LAST_COLUMN);
}

unsigned ReadingText(const Window& w) {
    const DeviceRow* const row = w.state.session.view.SelectedRow();
    return row && row->standing.kind == Standing::Kind::kNeverRead ? IDS_READ_FIRST : IDM_ASK;
}

Commands CommandsOf(unsigned menu) {
    Commands commands;
    for (unsigned index = 0; menu == IDS_MENU_VIEW && index < kColumnCount; ++index)
        commands.push_back(IDM_COLUMN + index);
    bool isIn = false;
    for (const Command& command : kTable) {
        if (command.IsMenu()) isIn = command.id == menu;
        if (isIn && !command.IsMenu()) commands.push_back(command.id);
    }
    return commands;
}

}  // namespace

bool RunCommand(MainWindow& window, unsigned id) {
    const Command* command = Find(id);
    if (command ? !command->run : !IsColumn(id) && !IsCell(id)) return false;
    const unsigned obstacle = ObstacleTo(id, window);
    window.state.progress.ClearNote();
    if (obstacle != 0) {
        window.state.progress.SetNote(Text(obstacle));
    } else if (command) {
        command->run(window);
    } else if (IsCell(id)) {
        CopyCell(window.state, static_cast<Column>(id - IDM_CELL));
    } else {
        window.panes.ToggleColumn(static_cast<Column>(id - IDM_COLUMN));
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

// Made here, since a MENU resource would repeat the table.
OwnedMenu MakeMenu() {
    OwnedMenu bar(CreateMenu());
    for (const Command& menu : kTable) {
        if (menu.IsMenu())
            AddPopup(bar.Get(), MakePopup(CommandsOf(menu.id), ColumnNames()), Text(menu.id));
    }
    return bar;
}

OwnedMenu MakeDeviceMenu() {
    Commands commands = {IDM_COPY_CELL, IDS_MENU_CELLS, IDM_COPY_ROW, kMenuLine};
    const Commands more = CommandsOf(IDS_MENU_DEVICE);
    commands.insert(commands.end(), more.begin(), more.end());
    return MakePopup(commands, ColumnNames());
}

HMENU ViewMenuOf(HMENU bar) { return GetSubMenu(bar, 2); }

void EnableCommands(const MainWindow& window, HMENU menu) {
    for (int index = 0; index < GetMenuItemCount(menu); ++index) {
        const UINT item = GetMenuItemID(menu, index);
        const unsigned id = item == static_cast<UINT>(-1) ? IDS_MENU_CELLS : item;
        const Command* const command = Find(id);
        const auto place = static_cast<UINT>(index);
        if (id == IDM_ASK)
            ModifyMenuW(menu, place, MF_BYPOSITION, id, Text(ReadingText(window)).c_str());
        EnableMenuItem(menu, place,
                       MF_BYPOSITION | (ObstacleTo(id, window) ? MF_GRAYED : MF_ENABLED));
        const bool isChecked = IsColumn(id)
                                   ? !(window.state.settings.hidden >> (id - IDM_COLUMN) & 1)
                                   : command && command->isChecked && command->isChecked(window);
        CheckMenuItem(menu, place, MF_BYPOSITION | (isChecked ? MF_CHECKED : MF_UNCHECKED));
        if (isChecked && command && command->isChoice)
            CheckMenuRadioItem(menu, place, place, place, MF_BYPOSITION);
    }
}

}  // namespace vndiscover::host
