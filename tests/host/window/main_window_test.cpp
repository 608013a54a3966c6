#include <algorithm>
#include <set>

#include "model/scan/device_view.h"
#include "platform/this_process.h"
#include "scripted_window.h"
#include "window/pages/report_window.h"

namespace {

std::wstring opened;
int openings = 0;

bool opens = true;

HINSTANCE WINAPI KeepOpened(HWND, LPCWSTR, LPCWSTR path, LPCWSTR, LPCWSTR, INT) {
    opened = path;
    ++openings;
    SetLastError(ERROR_FILE_NOT_FOUND);
    return reinterpret_cast<HINSTANCE>(static_cast<INT_PTR>(opens ? 33 : 2));
}

}  // namespace

// Replaces the function of the import library.
extern "C" void* const __imp_ShellExecuteW = reinterpret_cast<void*>(&KeepOpened);

namespace vndiscover::host {
namespace {

// Of several steps, some of which have not begun when it is stopped.
TEST_F(MainWindowTest, SweepEndsWithItsLastStep) {
    Open();
    const auto empty = [&] { return ListControl::Of(Control(IDC_DEVICES))->EmptyText(); };
    EXPECT_EQ(Text(IDS_EMPTY), empty());
    CheckDlgButton(window_->Handle(), IDC_IPV6, BST_CHECKED);
    for (const bool isStopped : {false, true}) {
        const int before = engine_.sweeps;
        Command(IDC_FIND);
        EXPECT_EQ(Text(IDS_NONE_YET), empty());
        if (!isStopped) {
            ASSERT_TRUE(Until([&] { return engine_.isInSweep.load(); }));
            engine_.End();
            ASSERT_TRUE(Until([&] { return engine_.sweeps == before + 2; }));
            EXPECT_EQ(L"Sto&p", TextOf(Control(IDC_FIND)));
        }
        Command(IDC_FIND);
        EXPECT_FALSE(IsWindowEnabled(Control(IDC_FIND))) << "it can do no more";
        EXPECT_TRUE(Ends());
        EXPECT_TRUE(IsWindowEnabled(Control(IDC_FIND)));
        EXPECT_EQ(Text(IDS_NONE_STOPPED), empty());
    }
    engine_.isUnsent = true;
    Command(IDC_FIND);
    EXPECT_TRUE(Ends());
    EXPECT_EQ(Text(IDS_NOTHING_SENT), empty()) << "who was not asked did not fail to answer";
}

TEST_F(MainWindowTest, TellsOfASweepThatFailed) {
    engine_.failure = "no window";
    Open();
    EXPECT_EQ("The search failed: no window. Search again.", Answer({IDOK}, [&] {
                  Command(IDC_FIND);
                  EXPECT_TRUE(Ends());
              }));
    OpenScript();
    EXPECT_FALSE(IsWindowVisible(window_->Handle()) || GetFocus());
    EXPECT_EQ(2, window_->Run());
}

// Without a message, since a list may refresh itself. No device has missed that.
TEST_F(MainWindowTest, TellsThatNothingCouldBeSent) {
    OpenWith({{"10.77.1.8", "x"}});
    engine_.isUnsent = true;
    Answer({}, [&] {
        Command(IDC_FIND);
        EXPECT_TRUE(Ends());
    });
    EXPECT_EQ(Text(IDS_NOTHING_SENT), Status());
    EXPECT_EQ(L"never read", Cell(0, 3));
}

// Not even its own texts can be made. The window goes on afterwards, a script ends.
TEST_F(MainWindowTest, ExceptionEndsInAMessage) {
    const TextChange fail = [](std::wstring) -> std::wstring { throw std::bad_alloc(); };
    Open();
    SetTextChange(fail);
    EXPECT_EQ("out of memory", Answer({IDOK}, [&] { Command(IDM_DOCTOR); }));
    EXPECT_EQ("out of memory", Answer({IDOK}, [&] { PressKey(Control(IDC_DEVICES), VK_RETURN); }));
    SetTextChange(nullptr);
    Command(IDM_DOCTOR);
    EXPECT_TRUE(Until([&] { return TextOf(Popup()) == Text(IDS_DOCTOR_TITLE); }));
    OpenScript();
    SetTextChange(fail);
    PostMessageW(window_->Handle(), WM_COMMAND, IDM_DOCTOR, 0);
    EXPECT_EQ(2, window_->Run());
    SetTextChange(nullptr);
}

TEST_F(MainWindowTest, WindowThatCannotBeFilledIsGone) {
    SetTextChange([](std::wstring text) -> std::wstring {
        if (text == L"Devices") throw std::bad_alloc();
        return text;
    });
    EXPECT_THROW(Open(), std::bad_alloc);
    SetTextChange(nullptr);
    EXPECT_FALSE(FindWindowW(L"VnBrowser", nullptr));
}

// Esc, and Tab, are the window's there too: a field of several lines would close it.
TEST_F(MainWindowTest, EscInTheTextOfARowStopsTheSearch) {
    Open();
    Command(IDC_FIND);
    const HWND chosen = Control(IDC_CHOSEN);
    SetFocus(chosen);
    PressKey(chosen, VK_ESCAPE);
    EXPECT_TRUE(Ends());
    ASSERT_TRUE(window_->Handle());
    EXPECT_EQ(0u, Status().find(L"Stopped after "));
    PressKey(chosen, VK_TAB);
    EXPECT_NE(chosen, GetFocus());
}

TEST_F(MainWindowTest, RowsAreAddedWhileSortedAndFiltered) {
    Open();
    EXPECT_EQ(L"Nothing is sent until you press Find (F5).", Status());
    ASSERT_FALSE(window_->searches.Repeat());
    EXPECT_EQ(0, engine_.sweeps + engine_.reads);
    Command(IDC_FIND);
    engine_.Say("10.77.1.10", "VN LaserPro 410");
    ASSERT_TRUE(Shows(L"10.77.1.10;"));
    engine_.Say("10.77.1.9", "VN InkLine 70");
    ASSERT_TRUE(Shows(L"10.77.1.9;10.77.1.10;"));
    ClickColumn(2);
    EXPECT_EQ(L"10.77.1.10;10.77.1.9;", Addresses());
    SetWindowTextW(Control(IDC_FILTER), L"ink");
    EXPECT_EQ(L"10.77.1.9;", Addresses());
    engine_.Say("10.77.1.30", "VN InkLine 71");
    ASSERT_TRUE(Shows(L"10.77.1.30;10.77.1.9;"));
    EXPECT_TRUE(EndsSweeps());
}

// One click: it searches, reads what it finds, and is one Stop until that is over.
TEST_F(MainWindowTest, FindReadsWhatItFinds) {
    Open();
    window_->state.settings.readsFound ^= 1;
    Command(IDC_FIND);
    engine_.isHeld = true;
    engine_.Say("10.77.1.1", "x");
    engine_.Say("10.77.1.2", "y");
    engine_.Say("10.77.1.3", "silent");
    ASSERT_TRUE(Shows(L"10.77.1.1;10.77.1.2;10.77.1.3;"));
    EXPECT_EQ(L"never read", Cell(0, 3));
    engine_.End();
    ASSERT_TRUE(Until([&] { return Status() == L"Reading 0 of 3: states first"; }));
    EXPECT_TRUE(Until([&] { return Cell(0, 3) == L"being read"; }));
    EXPECT_EQ(L"Sto&p", TextOf(Control(IDC_FIND)));
    engine_.isHeld = false;
    ASSERT_TRUE(Ends());
    const std::wstring status = Status();
    EXPECT_EQ(0u, status.find(L"Read 2 of 3 devices in ")) << ToUtf8(status);
    EXPECT_THAT(status, HasSubstr(L" s; 1 could not be read"));
    EXPECT_EQ(L"no such value", Cell(0, 3));
    window_->state.settings.readsFound ^= 1;
}

// The end of the search brings the change, without a further answer.
TEST_F(MainWindowTest, DeviceThatMissesASearchIsToldSo) {
    OpenWith({{"10.77.1.8", "x"}, {"10.77.1.9", "y"}, {"10.77.1.10", "z"}});
    SelectNew(2);
    ASSERT_TRUE(Until([&] { return !window_->state.IsBusy(); }));
    window_->state.session.view.Select({}, std::nullopt);
    Command(IDC_FIND);
    engine_.Say("10.77.1.9", "x");
    ASSERT_TRUE(EndsSweeps());
    EXPECT_EQ(0u, Cell(0, 3).find(L"no answer since "));
    EXPECT_EQ(L"never read", Cell(1, 3));
    const auto& changes = window_->state.changes.Changes();
    ASSERT_EQ(1u, changes.size());
    EXPECT_EQ("no such value", changes[0].before);
    EXPECT_EQ(0u, changes[0].after.find("no answer since "));
    const auto title = [&] { return TextOf(Control(IDC_DEVICES_LABEL)); };
    EXPECT_EQ(L"Devices (3); \x25CF 1 changed since you looked", title());
    Select(2);
    EXPECT_EQ(L"Devices (3)", title());
}

TEST_F(MainWindowTest, SelectionFollowsItsDeviceThroughAMerge) {
    Open();
    Command(IDC_FIND);
    for (const char* address : {"fe80::1", "10.77.1.1", "10.77.1.2", "10.77.1.3"})
        engine_.Say(address, address);
    const std::wstring split = L"10.77.1.1;10.77.1.2;10.77.1.3;fe80::1;";
    ASSERT_TRUE(Shows(split));
    Select(2);
    // State, model, address, protocols; the line that it has not been asked is gone.
    ASSERT_TRUE(Until([&] { return ListView_GetItemCount(Control(IDC_DETAILS)) == 4; }));
    Command(IDM_ASK_ALL);
    ASSERT_TRUE(Shows(L"10.77.1.1, 10.77.1.2, fe80::1;10.77.1.3;"));
    EXPECT_EQ(1, Selected());
    EXPECT_EQ(6, engine_.reads);  // the selected one thrice
    Select(0);
    Command(IDM_WEB);  // although it answered at its IPv6 address first
    EXPECT_EQ(0u, opened.find(L"http://10.77.1."));
    Command(IDM_SPLIT);
    EXPECT_EQ(L"10.77.1.1;10.77.1.2, fe80::1;10.77.1.3;", Addresses());
    EXPECT_EQ(1, Selected());
    Command(IDM_SPLIT);
    EXPECT_EQ(split, Addresses());
    EXPECT_TRUE(EndsSweeps());
}

TEST_F(MainWindowTest, SeveralDevicesAreCopiedReadAndOpened) {
    std::vector<std::pair<std::string, std::string>> devices;
    for (int last = 1; last < 14; ++last)
        devices.emplace_back("10.77.1." + std::to_string(last), "x");
    OpenWith(devices);
    for (const int row : {0, 2}) Select(row, true);  // the third is silent
    ASSERT_TRUE(Until([&] { return !window_->state.IsBusy(); }));
    // Without the focus.
    ListView_SetItemState(Control(IDC_DEVICES), 1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(L"3 devices selected: x", TextOf(Control(IDC_DETAILS_LABEL)));
    ListView_SetItemState(Control(IDC_DEVICES), 1, 0, LVIS_SELECTED);
    Command(IDM_CELL + 2);
    EXPECT_EQ(L"10.77.1.1\r\n10.77.1.3", Copied());
    Command(IDM_COPY_ROW);
    const std::wstring rows = Copied();
    EXPECT_EQ(2, std::count(rows.begin(), rows.end(), L'\n'));
    const int reads = engine_.reads;
    Command(IDM_ASK);
    ASSERT_TRUE(Ends());
    EXPECT_EQ(reads + 3, engine_.reads);  // the one with the focus whole
    openings = 0;
    Answer({IDCANCEL}, [&] { Command(IDM_WEB); });
    EXPECT_EQ("Open the web pages of 2 devices?", Answer({IDOK}, [&] { Command(IDM_WEB); }));
    EXPECT_EQ(2, openings);
    Command(IDM_WALK);
    EXPECT_EQ(Text(IDS_SELECT_ONE), Status());
    // Another search, another order and a filter keep the selection.
    ClickColumn(2);
    Command(IDC_FIND);
    ASSERT_TRUE(EndsSweeps());
    EXPECT_EQ(0u, Status().find(L"Search finished in 0 s, 0 devices"));
    ClickColumn(2);
    const ListControl& list = window_->panes.list;
    EXPECT_EQ((std::vector<size_t>{0, 2}), list.Selection());
    ListView_SetItemState(Control(IDC_DEVICES), -1, LVIS_SELECTED, LVIS_SELECTED);
    Command(IDM_WEB);
    EXPECT_EQ(Text(IDS_TOO_MANY_PAGES), Status());
}

TEST_F(MainWindowTest, KeepsSettings) {
    Open();
    CheckDlgButton(window_->Handle(), IDC_IPV6, BST_CHECKED);
    Command(IDM_LOW_20);
    Close();
    Open();
    EXPECT_EQ(20, window_->state.session.Limits().low);
    EXPECT_TRUE(IsDlgButtonChecked(window_->Handle(), IDC_IPV6));
    // An earlier version has kept two columns, of which it hid the second.
    int32_t former[] = {0b11101, 0, 77, 88, 1, 0, 0b10, 1, 0, 0, 0, 0, 0, 50, 5, 20};
    RegSetKeyValueW(HKEY_CURRENT_USER, kBrowserKey, L"View", REG_BINARY, former, sizeof former);
    Open();
    const Settings& kept = window_->state.settings;
    EXPECT_EQ(5u, kept.refreshMinutes);
    EXPECT_EQ(77, kept.widths[0]);
    EXPECT_EQ(0b10u, kept.hidden & 0b11);
    EXPECT_EQ(kColumns[2].width, kept.widths[2]);
    EXPECT_EQ(1, kept.order[0]);
    EXPECT_EQ(2, kept.order[2]);
    // An invalid value counts as none.
    former[4] = 0;  // a place is taken twice
    RegSetKeyValueW(HKEY_CURRENT_USER, kBrowserKey, L"View", REG_BINARY, former, sizeof former);
    Open();
    EXPECT_FALSE(IsDlgButtonChecked(window_->Handle(), IDC_IPV6));
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kBrowserKey, L"View");
}

// Every control also has a name.
void CheckControls(HWND window) {
    const auto places = PlacesIn(window);
    for (const auto& [control, place] : places) {
        const int id = GetDlgCtrlID(control);
        EXPECT_TRUE(NameOf(control) != L"" || id == IDC_CHOSEN) << id;
    }
    EXPECT_NE(L"", NameOf(GetDlgItem(GetDlgItem(window, IDC_STATUS), IDC_READ_BAR)));
    EXPECT_EQ(18u, places.size());
}

TEST_F(MainWindowTest, ControlsFitAndHaveNamesInAnySizeAndLanguage) {
    for (const bool isLong : {false, true}) {
        SetTextChange(isLong ? LongerText : TextChange(nullptr));
        Open();
        for (const int dpi : {96, 144, 192}) {
            for (const int width : {520, 1100}) {
                SCOPED_TRACE(testing::Message() << isLong << " " << dpi << " " << width);
                SetDpi(window_->Handle(), dpi, width * dpi / 96, 480 * dpi / 96);
                CheckControls(window_->Handle());
            }
        }
        window_.reset();
    }
    SetTextChange(nullptr);
}

// The pixels of a window as they are on the screen.
std::vector<uint32_t> PixelsOf(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    const WindowDc from(window);
    const OwnedMemoryDc dc(CreateCompatibleDC(from.Get()));
    BITMAPINFO info = {};
    info.bmiHeader = {
        sizeof info.bmiHeader, client.right, client.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const OwnedBitmap bitmap(CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const SelectedObject drawing(dc.Get(), bitmap.Get());
    BitBlt(dc.Get(), 0, 0, client.right, client.bottom, from.Get(), 0, 0, SRCCOPY);
    GdiFlush();
    const auto* first = static_cast<const uint32_t*>(bits);
    return {first, first + client.right * client.bottom};
}

// A fresh paint of the same size has the same pixels.
TEST_F(MainWindowTest, ResizingLeavesNoOldPixel) {
    OpenWith({{"10.77.1.1", "x"}, {"10.77.1.2", "y"}});
    const HWND window = window_->Handle();
    size_t inked = 0;
    for (int step = 0; step < 200; ++step) {
        const int width = 560 + step * 37 % 600, height = 420 + step * 53 % 300;
        SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOMOVE);
        if (step % 4 == 0) Command(step % 8 ? IDM_WIDER : IDM_NARROWER);
        RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        const auto pixels = PixelsOf(window);
        RedrawWindow(window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_UPDATENOW | RDW_ALLCHILDREN);
        ASSERT_EQ(PixelsOf(window), pixels) << "step " << step << ", " << width << " x " << height;
        inked += std::set<uint32_t>(pixels.begin(), pixels.end()).size() > 2;
    }
    EXPECT_EQ(200u, inked);
}

TEST_F(MainWindowTest, TabReachesEveryControl) {
    Open();
    std::vector<int> reached;
    HWND control = Control(IDC_FIND);
    do {
        reached.push_back(GetDlgCtrlID(control));
        control = GetNextDlgTabItem(window_->Handle(), control, FALSE);
    } while (control != Control(IDC_FIND) && reached.size() < 20);
    EXPECT_EQ((std::vector<int>{IDC_FIND, IDC_PRESET, IDC_V1, IDC_V3, IDC_WSD, IDC_IPV4, IDC_IPV6,
                                IDC_FILTER, IDC_DEVICES, IDC_PAGES, IDC_DETAILS}),
              reached);
}

TEST_F(MainWindowTest, EscClearsTheFilterFirst) {
    Open();
    Command(IDC_FIND);
    SetFocus(Control(IDC_FILTER));
    SetWindowTextW(Control(IDC_FILTER), L"ink");
    Command(IDCANCEL);
    EXPECT_EQ(L"", TextOf(Control(IDC_FILTER)));
    EXPECT_EQ(0, engine_.stops);
    Command(IDCANCEL);
    EXPECT_TRUE(Ends());
}

TEST_F(MainWindowTest, EnterFindsOrGoesToTheDetails) {
    OpenWith({{"10.77.1.1", "x"}});
    EXPECT_EQ(BS_DEFPUSHBUTTON, GetWindowLongW(Control(IDC_FIND), GWL_STYLE) & BS_TYPEMASK);
    const int sweeps = engine_.sweeps;
    const auto press = [&](int control) {
        SetFocus(Control(control));
        PressKey(Control(control), VK_RETURN);
    };
    Select(0);
    press(IDC_DEVICES);
    EXPECT_EQ(Control(IDC_DETAILS), GetFocus());
    Command(IDM_NEXT_PANE);
    EXPECT_EQ(Control(IDC_DEVICES), GetFocus());
    NMITEMACTIVATE twice = {};
    twice.hdr = {Control(IDC_DEVICES), IDC_DEVICES, static_cast<UINT>(LVN_ITEMACTIVATE)};
    SendMessageW(window_->Handle(), WM_NOTIFY, IDC_DEVICES, reinterpret_cast<LPARAM>(&twice));
    EXPECT_EQ(Control(IDC_DETAILS), GetFocus());
    ASSERT_TRUE(Until([&] { return TextOf(Control(IDC_FIND)) == Text(IDS_FIND); }));
    press(IDC_DETAILS);  // as one that is held goes on there
    EXPECT_EQ(Text(IDS_FIND), TextOf(Control(IDC_FIND)));
    press(IDC_FILTER);
    ASSERT_TRUE(Until([&] { return engine_.sweeps == sweeps + 1; }));
    press(IDC_FILTER);  // stops nothing
    EXPECT_EQ(L"Sto&p", TextOf(Control(IDC_FIND)));
    EXPECT_TRUE(EndsSweeps());
}

TEST_F(MainWindowTest, GapBetweenListAndDetailsMoves) {
    Open();
    const HWND window = window_->Handle();
    const RECT list = PlaceOf(Control(IDC_DEVICES));
    const auto width = [&] { return PlaceOf(Control(IDC_DEVICES)).right - list.left; };
    const int before = width();
    const auto drag = [&](UINT message, int x) {
        SetCursorPos(x, list.top + 40);
        SendMessageW(window, message, 0, 0);
    };
    drag(WM_MOUSEMOVE, list.right - 60);  // without a button
    EXPECT_EQ(before, width());
    drag(WM_LBUTTONDOWN, list.right + 4);
    drag(WM_MOUSEMOVE, list.right - 60);
    drag(WM_LBUTTONUP, list.right - 60);
    EXPECT_NEAR(before - 64, width(), 2);
    Command(IDM_WIDER);
    EXPECT_NEAR(before - 48, width(), 3);
    EXPECT_FALSE(GetCapture());
}

TEST_F(MainWindowTest, PlaceOfAMonitorThatIsGoneIsPulledBack) {
    EXPECT_EQ(0, FitInto({0, 0, 800, 600}, {-900, 0, 700, 500}).x);
    const Box large = FitInto({10, 20, 800, 600}, {700, 500, 2000, 500});
    EXPECT_EQ((std::vector<int>{10, 120, 800, 500}),
              (std::vector<int>{large.x, large.y, large.width, large.height}));
    Open();
    Settings& settings = window_->state.settings;
    settings.place = {5000, 5000, 5700, 5500};
    window_->panes.PlaceWindow();
    EXPECT_TRUE(MonitorFromWindow(window_->Handle(), MONITOR_DEFAULTTONULL));
    settings.place = {};  // at the first start, where the size may be larger than the screen
    window_->panes.PlaceWindow();
    RECT work = {}, both = {};
    const RECT place = PlaceOf(window_->Handle());
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_TRUE(IntersectRect(&both, &place, &work) && EqualRect(&both, &place));
}

// Which would take it for hung otherwise. By the user, or as an installer ends it.
TEST_F(MainWindowTest, AnswersTheSystemWhileItCloses) {
    for (const bool isByUser : {true, false}) {
        OpenWith({{"10.77.1.1", "x"}});
        engine_.isHeld = true;
        Select(0);
        ASSERT_TRUE(Until([&] { return engine_.reads == (isByUser ? 1 : 2); }));
        std::thread system([&, window = window_->Handle()] {
            for (int wait = 0; wait < 400 && IsWindowVisible(window); ++wait) Sleep(5);
            DWORD_PTR answer = 0;
            EXPECT_TRUE(
                SendMessageTimeoutW(window, WM_QUERYENDSESSION, 0, 0, SMTO_NORMAL, 2000, &answer));
            EXPECT_EQ(1u, answer);
            engine_.isHeld = false;
        });
        if (isByUser) Answer({IDNO}, [&] { Close(); });
        EXPECT_NE(isByUser, window_->Handle() != nullptr);
        window_.reset();
        system.join();
    }
}

TEST_F(MainWindowTest, SaysWhatWindowsCannotOpen) {
    OpenWith({{"10.77.1.1", "x"}});
    SelectNew(0);
    opens = false;
    const std::string page = Answer({IDOK}, [&] { Command(IDM_WEB); });
    opens = true;
    EXPECT_EQ(0u, page.find("Windows cannot open http://10.77.1.1/")) << page;
    const std::string help = Answer({IDOK}, [&] { Command(IDM_HELP); });
    EXPECT_THAT(help, HasSubstr("\\docs\\vnbrowser.md"));
    Command(IDM_CALLS);  // F1 in a dialog
    EXPECT_EQ(help, Answer({IDOK}, [&] {
                  SendMessageW(Popup(), WM_HELP, 0, 0);
                  MSG message;
                  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                      window_->Dispatch(message);
              }));
}

// Also the bar in the status line, and those of dialogs.
TEST_F(MainWindowTest, ControlsHearOfNewColoursAndSettings) {
    Open();
    Command(IDM_CALLS);
    int heard = 0;
    const auto hear = [](HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                         DWORD_PTR count) -> LRESULT {
        *reinterpret_cast<int*>(count) += message == WM_SYSCOLORCHANGE ||
                                          message == WM_SETTINGCHANGE || message == WM_THEMECHANGED;
        return DefSubclassProc(control, message, wParam, lParam);
    };
    const HWND dialog = Popup();
    const LRESULT font = SendMessageW(Control(IDC_DEVICES), WM_GETFONT, 0, 0);
    for (const HWND control :
         {GetDlgItem(Control(IDC_STATUS), IDC_READ_BAR), GetDlgItem(dialog, IDC_ROWS)})
        SetWindowSubclass(control, hear, 1, reinterpret_cast<DWORD_PTR>(&heard));
    for (const HWND window : {window_->Handle(), dialog}) {
        for (const UINT message : {WM_SYSCOLORCHANGE, WM_SETTINGCHANGE, WM_THEMECHANGED})
            SendMessageW(window, message, 0, 0);
    }
    EXPECT_EQ(6, heard);
    EXPECT_NE(font, SendMessageW(Control(IDC_DEVICES), WM_GETFONT, 0, 0));
    window_.reset();
}

TEST_F(MainWindowTest, AboutNamesTheVersions) {
    Open();
    const std::string about = Answer({IDOK}, [&] { Command(IDM_ABOUT); });
    const std::string version = VersionOf(GetModuleHandleW(L"VnDiscover.dll"));
    EXPECT_THAT(about, HasSubstr("VnDiscover.dll " + version + "\nWindows "));
}

TEST_F(MainWindowTest, FocusReturnsFromAnotherWindow) {
    Open();
    SetFocus(Control(IDC_FILTER));
    ReportWindow report;
    report.Open(window_->Handle(), L"a page", {});
    EXPECT_EQ(GetDlgItem(Popup(), IDC_DETAILS), GetFocus());
    const HWND page = Popup();
    PlacesIn(page);
    // Keys of the main window are not its keys, and Enter in its list is no button.
    for (const WPARAM key : {VK_F5, VK_RETURN}) PressKey(GetDlgItem(page, IDC_DETAILS), key);
    EXPECT_FALSE(window_->state.IsBusy());
    EXPECT_TRUE(IsWindow(page));
    report.Close();
    SetActiveWindow(window_->Handle());
    EXPECT_EQ(Control(IDC_FILTER), GetFocus());
    // One that comes under a modal dialog leaves the focus there.
    EnableWindow(window_->Handle(), FALSE);
    const HWND focus = GetFocus(), active = GetActiveWindow();
    report.Open(window_->Handle(), L"a page", {});
    EXPECT_EQ(std::pair(focus, active), std::pair(GetFocus(), GetActiveWindow()));
    EnableWindow(window_->Handle(), TRUE);
}

}  // namespace
}  // namespace vndiscover::host
