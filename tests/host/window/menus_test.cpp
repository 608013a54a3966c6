// Context menus, copying, and the columns that the user chooses.
#include "model/scan/device_view.h"
#include "scripted_window.h"
#include "window/main/commands.h"

namespace vndiscover::host {
namespace {

class Menus : public MainWindowTest {
  protected:
    ~Menus() override { RegDeleteKeyValueW(HKEY_CURRENT_USER, kBrowserKey, L"View"); }
    void OpenWithDevice() {
        OpenWith({{"10.77.1.9", model_}});
        SelectNew(0);
        ASSERT_TRUE(Until([&] { return Cell(0, 3) == L"no such value"; }));
    }
    const std::string model_ = "=InkLine " + std::string(3000, '7');
    HWND Devices() const { return Control(IDC_DEVICES); }
    std::wstring Headings() const {
        std::wstring all;
        for (const int index : window_->panes.list.ShownOrder()) {
            wchar_t text[40] = L"";
            LVCOLUMNW column = {};
            column.mask = LVCF_TEXT;
            column.pszText = text;
            column.cchTextMax = 40;
            SendMessageW(Devices(), LVM_GETCOLUMNW, WPARAM(index), LPARAM(&column));
            all += text + std::wstring(L";");
        }
        return all;
    }
    // Opens a context menu with the mouse at a point of the screen, or with the keyboard's key for
    // it, presses the keys, and returns the menu's texts.
    std::wstring Play(HWND from, LPARAM place, const std::vector<WPARAM>& keys) {
        std::wstring texts;
        std::thread user([&] {
            const HWND menu = Awaited([] { return FindWindowW(L"#32768", nullptr); });
            if (!menu) return;
            constexpr UINT kGetMenu = 0x01E1;  // MN_GETHMENU
            const auto handle = reinterpret_cast<HMENU>(SendMessageW(menu, kGetMenu, 0, 0));
            for (int item = 0; item < GetMenuItemCount(handle); ++item)
                texts += ItemText(handle, item) + L";";
            for (const WPARAM key : keys) PostMessageW(window_->Handle(), WM_KEYDOWN, key, 0);
        });
        SendMessageW(window_->Handle(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(from), place);
        user.join();
        Until([isFirst = true]() mutable { return !std::exchange(isFirst, false); });
        return texts;
    }
    // Ctrl, Shift and Alt as given, and a key, in a list.
    void Press(HWND list, WPARAM key, bool isShifted, bool isAltGr = false) {
        BYTE keys[256] = {};
        keys[VK_CONTROL] = 0x80;
        keys[VK_SHIFT] = isShifted ? 0x80 : 0;
        keys[VK_MENU] = isAltGr ? 0x80 : 0;
        SetKeyboardState(keys);
        PressKey(list, key);
        keys[VK_CONTROL] = keys[VK_SHIFT] = keys[VK_MENU] = 0;
        SetKeyboardState(keys);
    }
};

TEST_F(Menus, ClickedCellIsCopied) {
    OpenWithDevice();
    RECT model = {};
    ListView_GetSubItemRect(Devices(), 0, 1, LVIR_BOUNDS, &model);
    POINT point = {model.left + 2, model.top + 2};
    ClientToScreen(Devices(), &point);
    const std::wstring texts = Play(Devices(), MAKELPARAM(point.x, point.y), {VK_DOWN, VK_RETURN});
    EXPECT_EQ(
        L"Copy the c&ell\tCtrl+Shift+C;Copy fr&om the row;&Copy the row\tCtrl+C;;"
        L"Go to &the details\tEnter;Open the &web page\tCtrl+Enter;;"
        L"&Read again\tCtrl+R;Read a&ll again\tCtrl+Shift+R;Read all after a searc&h;"
        L"Why does it &not answer?;Show all &values...;A&dd addresses...;"
        L"&Separate;;Re&fresh only on demand;"
        L"Refresh every m&inute;Refresh every &5 minutes;Refresh every &15 minutes;"
        L"Refresh every ho&ur;",
        texts);
    EXPECT_EQ(ToWide(model_), Copied());
    EXPECT_EQ(0u, Status().find(L"Copied: =InkLine 7"));
}

TEST_F(Menus, LettersOfAltGrAreNoCommands) {
    OpenWithDevice();
    for (const bool isAltGr : {true, false}) {
        Press(Devices(), 'C', false, isAltGr);
        EXPECT_EQ(isAltGr, Copied().empty());
        ListView_SetItemState(Devices(), -1, 0, LVIS_SELECTED);
        Press(Devices(), 'A', false, isAltGr);
        EXPECT_EQ(isAltGr ? -1 : 0, Selected());
        Select(0);
    }
}

// Down to "Copy from the row", into it, down to the address.
TEST_F(Menus, AnyCellIsCopiedByKeyboard) {
    OpenWithDevice();
    Play(Devices(), -1, {VK_DOWN, VK_DOWN, VK_RIGHT, VK_DOWN, VK_DOWN, VK_RETURN});
    EXPECT_EQ(L"10.77.1.9", Copied());
    Command(IDM_CELL + 7);
    EXPECT_EQ(L"SNMPv1", Copied());
    Command(IDM_CELL + static_cast<int>(Column::kLocation));
    EXPECT_EQ(Text(IDS_EMPTY_CELL), Status());
}

TEST_F(Menus, DetailsAreCopied) {
    OpenWithDevice();
    const HWND details = Control(IDC_DETAILS);
    ASSERT_TRUE(Until([&] { return Has(PageTexts(window_->Handle()), L"SERIAL 1"); }));
    int address = 0;
    while (address < 20 && CellOf(details, address, 0) != L"Address") ++address;
    ListView_SetItemState(details, address, LVIS_SELECTED, LVIS_SELECTED);
    Press(details, 'C', false);
    EXPECT_EQ(L"Address\t10.77.1.9\r\n", Copied());
    Press(details, 'C', true);
    EXPECT_EQ(L"10.77.1.9", Copied());
    EXPECT_EQ(
        L"Copy the c&ell\tCtrl+Shift+C;Copy fr&om the row;&Copy the row\tCtrl+C;"
        L"Copy the &table\tCtrl+Shift+T;",
        Play(details, -1, {VK_DOWN, VK_DOWN, VK_RIGHT, VK_RETURN}));
    EXPECT_EQ(L"Address", Copied());
    RECT name = {};
    ListView_GetSubItemRect(details, 0, 0, LVIR_LABEL, &name);
    POINT point = {name.left + 2, name.top + 2};
    ClientToScreen(details, &point);
    Play(details, MAKELPARAM(point.x, point.y), {VK_DOWN, VK_RETURN});  // the cell
    EXPECT_EQ(L"Address", Copied());
    Press(details, 'T', true);
    EXPECT_THAT(Copied(), HasSubstr(L"\r\nModel\t'" + ToWide(model_) + L"\r\n"));
    Press(Devices(), 'C', false);
    EXPECT_THAT(Copied(), HasSubstr(L"\t'" + ToWide(model_) + L"\t10.77.1.9\t"));
    // While another program uses the clipboard.
    OpenClipboard(Devices());
    Press(details, 'C', false);
    EXPECT_EQ(Text(IDS_NOT_COPIED), Status());
    CloseClipboard();
    Press(details, 'C', false);
    EXPECT_NE(Text(IDS_NOT_COPIED), Status());
}

TEST_F(Menus, CommandsThatDoNothingAreGreyed) {
    Open();
    const auto greyed = [&] {
        std::vector<UINT> ids;
        for (int popup = 0; popup < 6; ++popup) {
            const HMENU menu = OpenMenu(popup);
            for (int item = 0; item < GetMenuItemCount(menu); ++item) {
                const auto place = static_cast<UINT>(item);
                const UINT id = GetMenuItemID(menu, item);  // 0: a line
                if (id != 0 && (GetMenuState(menu, place, MF_BYPOSITION) & MF_GRAYED))
                    ids.push_back(id);
            }
        }
        return ids;
    };
    EXPECT_EQ((std::vector<UINT>{IDM_SAVE, IDM_COMPARE, IDM_CSV, IDM_JSON, IDM_COPY_ROW,
                                 IDM_COPY_CELL, UINT(-1), IDM_COPY_TABLE, IDM_CLEAR, IDM_SORT,
                                 IDM_REVERSE, IDM_DETAILS, IDM_WEB, IDM_ASK, IDM_ASK_ALL,
                                 IDM_DIAGNOSE, IDM_WALK, IDM_SPLIT, IDM_STOP}),
              greyed());
    Command(IDM_SPLIT);  // by its key
    EXPECT_EQ(Text(IDS_SELECT_FIRST), Status());
    OpenWithDevice();
    ASSERT_TRUE(Until([&] { return !window_->state.IsBusy(); }));
    EXPECT_EQ((std::vector<UINT>{IDM_SPLIT, IDM_STOP}), greyed());
    Command(IDM_SPLIT);
    EXPECT_EQ(Text(IDS_NO_PARTS), Status());
}

// The letters that are marked in texts.
class Letters {
  public:
    void Add(const std::wstring& text) {
        const size_t mark = text.find(L'&');
        if (text.empty()) return;
        ASSERT_NE(std::wstring::npos, mark) << ToUtf8(text);
        const auto letter = static_cast<wchar_t>(towlower(text[mark + 1]));
        EXPECT_EQ(std::wstring::npos, all_.find(letter)) << ToUtf8(text);
        all_ += letter;
    }

    size_t Count() const { return all_.size(); }

  private:
    std::wstring all_;
};

void CheckLetters(HMENU menu) {
    Letters letters;
    for (int item = 0; item < GetMenuItemCount(menu); ++item) {
        letters.Add(ItemText(menu, item));
        if (const HMENU popup = GetSubMenu(menu, item)) CheckLetters(popup);
    }
}

TEST_F(Menus, RowsAreSortedAndFoundByKeys) {
    OpenWith({{"10.77.1.3", "x"}, {"10.77.1.2", "x"}, {"10.77.1.12", "x"}});
    Select(0);
    NMLVFINDITEMW typed = {{Devices(), IDC_DEVICES, LVN_ODFINDITEMW}, 0, {}};
    typed.lvfi.flags = LVFI_STRING;
    typed.lvfi.psz = L"10.77.1.12";  // it has no name, and the state is first
    Select(static_cast<int>(
        SendMessageW(window_->Handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&typed))));
    const DeviceView& view = window_->state.session.view;
    EXPECT_EQ("10.77.1.12", view.SelectedRow()->Text(Column::kAddress));
    Command(IDM_SORT);
    EXPECT_EQ(Column::kLocation, view.SortColumn());
    for (size_t step = 1; step < window_->panes.list.Columns().size(); ++step) Command(IDM_SORT);
    EXPECT_EQ(Column::kAddress, view.SortColumn());
    EXPECT_EQ("10.77.1.2", view.Row(0).Text(Column::kAddress));
    Command(IDM_REVERSE);
    EXPECT_EQ("10.77.1.12", view.Row(0).Text(Column::kAddress));
}

TEST_F(Menus, TheGapTellsThatItIsAtItsEnd) {
    OpenWithDevice();
    for (const int command : {IDM_NARROWER, IDM_WIDER}) {
        for (int step = 0; step < 60; ++step) Command(command);
        EXPECT_EQ(Text(IDS_SPLIT_END), TextOf(Control(IDC_STATUS)));
    }
}

TEST_F(Menus, StatusThatIsCutHasATooltip) {
    Open();
    window_->state.progress.SetNote(Text(IDS_NOTHING_SENT));
    window_->panes.ShowStatus();
    for (const int width : {520, 1100}) {
        SetWindowPos(window_->Handle(), nullptr, 0, 0, width, 600, SWP_NOMOVE | SWP_NOZORDER);
        wchar_t text[200] = L"";
        TTTOOLINFOW tool = window_->panes.StatusTool();
        tool.lpszText = text;
        for (HWND tip = GetTopWindow(nullptr); tip; tip = GetWindow(tip, GW_HWNDNEXT)) {
            if (GetWindow(tip, GW_OWNER) == window_->Handle() && TypeOf(tip) == TOOLTIPS_CLASSW)
                SendMessageW(tip, TTM_GETTEXTW, 200, reinterpret_cast<LPARAM>(&tool));
        }
        EXPECT_EQ(width == 520 ? Text(IDS_NOTHING_SENT) : L"", text);
    }
}

// A screen reader does not read what an empty list shows.
TEST_F(Menus, StatusSaysWhyTheListIsEmpty) {
    OpenWithDevice();
    window_->state.progress.ClearNote();
    const std::wstring hidden = L". " + Text(IDS_ALL_HIDDEN);
    for (const wchar_t* filter : {L"zzz", L""}) {
        SetWindowTextW(Control(IDC_FILTER), filter);
        EXPECT_EQ(*filter != 0, TextOf(Control(IDC_STATUS)).find(hidden) != hidden.npos);
    }
}

// Alt and a letter selects one menu or one control of the window.
TEST_F(Menus, EachItemAndControlHasALetterOfItsOwn) {
    Open();
    const HMENU bar = GetMenu(window_->Handle());
    CheckLetters(bar);
    CheckLetters(MakeDeviceMenu().Get());
    Letters letters;
    for (int menu = 0; menu < GetMenuItemCount(bar); ++menu) letters.Add(ItemText(bar, menu));
    letters.Add(Text(IDS_STOP));  // on the same button as "Find"
    for (const auto& [control, place] : PlacesIn(window_->Handle())) {
        const std::wstring text = TextOf(control);
        if (text.find(L'&') != text.npos) letters.Add(text);
    }
    EXPECT_GE(letters.Count(), 12u);
    MSG letter = {Control(IDC_FIND), WM_SYSCHAR, 'i', 1 << 29, 0, {}};  // of the label "Filter"
    window_->Dispatch(letter);
    EXPECT_EQ(Control(IDC_FILTER), GetFocus());
    SetWindowTextW(Control(IDC_FILTER), L"ink");
    Command(IDM_FILTER);
    SendMessageW(Control(IDC_FILTER), WM_CHAR, 'h', 1);
    EXPECT_EQ(L"h", TextOf(Control(IDC_FILTER)));
}

// Buttons, and labels of what is typed or chosen.
TEST_F(Menus, EachControlOfADialogHasALetter) {
    for (const int id : {IDD_SNMP, IDD_CALLS, IDD_WALK, IDD_TABLE, IDD_ADD, IDD_REPORT}) {
        SCOPED_TRACE(id);
        const HWND dialog = CreateDialogW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), nullptr,
                                          [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return 0; });
        EXPECT_FALSE(GetWindowLongW(dialog, GWL_STYLE) & WS_MINIMIZEBOX);
        Letters letters;
        for (HWND child = GetWindow(dialog, GW_CHILD); child;
             child = GetWindow(child, GW_HWNDNEXT)) {
            const bool isButton = TypeOf(child) == L"Button";
            const bool isLabel = TypeOf(child) == L"Static" && GetDlgCtrlID(child) == -1;
            const bool isFrame =
                isButton && (GetWindowLongPtrW(child, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
            const int control = GetDlgCtrlID(child);  // Enter and Esc
            if ((isButton || isLabel) && !isFrame && control != IDOK && control != IDCANCEL)
                letters.Add(TextOf(child));
        }
        DestroyWindow(dialog);
    }
}

// A menu shows the key that the table has for the command.
TEST_F(Menus, ShowTheKeysOfTheirCommands) {
    Open();
    const HMENU bar = GetMenu(window_->Handle());
    const OwnedAccelerators keys = MakeKeys();
    std::vector<ACCEL> rows(100);
    rows.resize(static_cast<size_t>(CopyAcceleratorTableW(keys.Get(), rows.data(), 100)));
    int shown = 0;
    for (const ACCEL& row : rows) {
        const std::wstring text = ItemText(bar, row.cmd, MF_BYCOMMAND);
        if (text.empty()) continue;
        std::wstring key(row.fVirt & FCONTROL ? L"Ctrl+" : L"");
        if (row.fVirt & FSHIFT) key += L"Shift+";
        key += row.key == VK_RETURN                    ? L"Enter"
               : row.key >= VK_F1 && row.key <= VK_F12 ? L"F" + std::to_wstring(row.key - VK_F1 + 1)
                                                       : std::wstring(1, wchar_t(row.key));
        EXPECT_EQ(L"\t" + key, text.substr(text.find(L'\t')));
        ++shown;
    }
    EXPECT_EQ(14, shown);
}

TEST_F(Menus, ColumnsAreChosenAndKept) {
    for (unsigned column = 0; column < kColumnCount; ++column)
        EXPECT_NE(L"", Text(IDM_COLUMN + column)) << "each column has a heading";
    OpenWithDevice();
    for (const int column : {3, 4, 7, 8, 9, 11}) Command(IDM_COLUMN + column);
    const HWND header = ListView_GetHeader(Devices());
    const RECT place = PlaceOf(header);
    // The second column, Model, is hidden.
    const std::wstring texts =
        Play(header, MAKELPARAM(place.left + 2, place.top + 2), {VK_DOWN, VK_DOWN, VK_RETURN});
    EXPECT_EQ(0u, texts.find(L"&Name;&Model;&Address;&Serial number;"));
    EXPECT_EQ(0u, Headings().find(L"State;Name;Address;Lowest supply;Serial number;"));
    EXPECT_EQ(L"10.77.1.9", Cell(0, 1));
    SetWindowTextW(Control(IDC_FILTER), L"inkline");
    EXPECT_EQ(L"", Addresses());
    SetWindowTextW(Control(IDC_FILTER), L"");
    const HMENU view = OpenMenu(2);
    EXPECT_EQ(0u, GetMenuState(view, IDM_COLUMN + 1, MF_BYCOMMAND) & MF_CHECKED);
    EXPECT_EQ(0u + MF_CHECKED, GetMenuState(view, IDM_COLUMN + 2, MF_BYCOMMAND) & MF_CHECKED);
    Command(IDM_COLUMN + 0);
    int order[] = {1, 0, 2, 3, 4, 5, 6, 7};  // Serial number, Address ...
    ListView_SetColumnOrderArray(Devices(), 8, order);
    ListView_SetColumnWidth(Devices(), 0, 222);
    Answer({IDNO}, [&] { Close(); });
    Open();
    EXPECT_EQ(0u, Headings().find(L"Serial number;Address;MAC address;"));
    EXPECT_EQ(222, ListView_GetColumnWidth(Devices(), 0));
    ClickColumn(1);  // the sort mark of another column than the address
    HDITEMW item = {};
    item.mask = HDI_FORMAT;
    SendMessageW(ListView_GetHeader(Devices()), HDM_GETITEMW, 1, reinterpret_cast<LPARAM>(&item));
    EXPECT_TRUE(item.fmt & HDF_SORTUP);
    // Shown again, a column returns to its place and width.
    Command(IDM_COLUMN + 1);
    EXPECT_EQ(0u, Headings().find(L"Serial number;Model;Address;"));
    EXPECT_EQ(InfoOf(Column::kModel).width, ListView_GetColumnWidth(Devices(), 0));
    for (int column = 0; column < 10; ++column) {
        if (column != 0 && column != 4) Command(IDM_COLUMN + column);
    }
    EXPECT_TRUE(GetMenuState(OpenMenu(2), IDM_COLUMN + 4, MF_BYCOMMAND) & MF_GRAYED);
    Command(IDM_COLUMN + 4);
    EXPECT_EQ(L"MAC address;", Headings());
}

}  // namespace
}  // namespace vndiscover::host
