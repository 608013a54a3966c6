#include "scripted_window.h"
#include "window/pages/report_window.h"

namespace {

std::wstring opened;

HINSTANCE WINAPI KeepOpened(HWND, LPCWSTR, LPCWSTR path, LPCWSTR, LPCWSTR, INT) {
    opened = path;
    return nullptr;
}

}  // namespace

// Replaces the function of the import library.
extern "C" void* const __imp_ShellExecuteW = reinterpret_cast<void*>(&KeepOpened);

namespace vndiscover::host {
namespace {

// Of several steps, some of which have not begun when it is stopped.
TEST_F(MainWindowTest, SweepEndsWithItsLastStep) {
    Open();
    CheckDlgButton(window_->Handle(), IDC_IPV6, BST_CHECKED);
    for (const bool isStopped : {false, true}) {
        const int before = engine_.sweeps;
        Command(IDC_FIND);
        if (!isStopped) {
            ASSERT_TRUE(Until([&] { return engine_.isInSweep.load(); }));
            engine_.End();
            ASSERT_TRUE(Until([&] { return engine_.sweeps == before + 2; }));
            EXPECT_EQ(L"Sto&p", TextOf(Control(IDC_FIND)));
        }
        Command(IDC_FIND);
        EXPECT_TRUE(Ends());
    }
}

TEST_F(MainWindowTest, TellsOfASweepThatFailed) {
    engine_.failure = "no window";
    Open();
    EXPECT_EQ("The search failed: no window", Answer({IDOK}, [&] {
                  Command(IDC_FIND);
                  EXPECT_TRUE(Ends());
              }));
    StartOptions options;
    options.sweep = options.exit = true;
    Open(options);
    EXPECT_EQ(2, window_->Run());
}

// Not even its own texts can be made. The window goes on afterwards.
TEST_F(MainWindowTest, ExceptionEndsInAMessage) {
    Open();
    SetTextChange([](std::wstring) -> std::wstring { throw std::bad_alloc(); });
    EXPECT_EQ("out of memory", Answer({IDOK}, [&] { Command(IDM_DOCTOR); }));
    SetTextChange(nullptr);
    Command(IDM_DOCTOR);
    EXPECT_TRUE(Until([&] { return PopupOf(window_->Handle()) != nullptr; }));
}

TEST_F(MainWindowTest, RowsAreAddedWhileSortedAndFiltered) {
    Open();
    EXPECT_EQ(L"Nothing is sent until you press Find (F5).", TextOf(Control(IDC_STATUS)));
    Command(IDC_FIND);
    EXPECT_EQ(L"Sto&p", TextOf(Control(IDC_FIND)));
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
    EXPECT_EQ(L"Devices (2 of 3 match the filter)", TextOf(Control(IDC_DEVICES_LABEL)));
    SetWindowTextW(Control(IDC_FILTER), L"");
    EXPECT_EQ(L"10.77.1.30;10.77.1.10;10.77.1.9;", Addresses());
    Command(IDC_FIND);
    EXPECT_TRUE(Ends());
    EXPECT_EQ(0u, TextOf(Control(IDC_STATUS)).find(L"Stopped after "));
}

// One click: it searches, reads what it finds, and is one Stop until that is over.
TEST_F(MainWindowTest, FindReadsWhatItFinds) {
    Open();
    window_->ToggleReadsFound();
    Command(IDC_FIND);
    engine_.isHeld = true;
    engine_.Say("10.77.1.1", "x");
    engine_.Say("10.77.1.2", "y");
    ASSERT_TRUE(Shows(L"10.77.1.1;10.77.1.2;"));
    EXPECT_EQ(L"never read", Cell(0, 5));
    engine_.End();
    ASSERT_TRUE(Until([&] { return TextOf(Control(IDC_STATUS)) == L"Reading 0 of 2"; }));
    EXPECT_TRUE(Until([&] { return Cell(0, 5) == L"being read"; }));
    EXPECT_EQ(L"Sto&p", TextOf(Control(IDC_FIND)));
    engine_.isHeld = false;
    ASSERT_TRUE(Ends());
    EXPECT_EQ(0u, TextOf(Control(IDC_STATUS)).find(L"Read 2 devices in"));
    EXPECT_EQ(L"no such value", Cell(0, 5));
    window_->ToggleReadsFound();
}

// It is grey until it answers again.
TEST_F(MainWindowTest, DeviceThatMissesASearchIsToldSo) {
    OpenWith({{"10.77.1.8", "x"}, {"10.77.1.9", "y"}});
    for (const char* answering : {"10.77.1.9", "10.77.1.8"}) {
        Command(IDC_FIND);
        engine_.Say(answering, "x");
        ASSERT_TRUE(EndsSweeps());
        const int silent = answering == std::string("10.77.1.9") ? 0 : 1;
        EXPECT_EQ(0u, Cell(silent, 5).find(L"no answer since ")) << answering;
        EXPECT_EQ(L"never read", Cell(1 - silent, 5));
    }
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
    EXPECT_EQ(L"http://10.77.1.1/", opened);
    Command(IDM_SPLIT);
    EXPECT_EQ(L"10.77.1.1;10.77.1.2, fe80::1;10.77.1.3;", Addresses());
    EXPECT_EQ(1, Selected());
    Command(IDM_SPLIT);
    EXPECT_EQ(split, Addresses());
    engine_.End();
    EXPECT_TRUE(Ends());
}

TEST_F(MainWindowTest, KeepsSettings) {
    constexpr wchar_t kKey[] = L"Software\\Varnell Osk\\VnBrowser";
    Open();
    CheckDlgButton(window_->Handle(), IDC_IPV6, BST_CHECKED);
    SendMessageW(window_->Handle(), WM_CLOSE, 0, 0);
    Open();
    EXPECT_TRUE(IsDlgButtonChecked(window_->Handle(), IDC_IPV6));
    // An invalid value counts as none.
    const char broken[92] = "x";
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"View", REG_BINARY, broken, sizeof broken);
    Open();
    EXPECT_FALSE(IsDlgButtonChecked(window_->Handle(), IDC_IPV6));
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, L"View");
}

// Every control also has a name: its own text, or that of the label before it.
void CheckControls(HWND window) {
    const auto places = PlacesIn(window);
    for (const auto& [control, place] : places) {
        const HWND label = GetWindow(control, GW_HWNDPREV);
        const bool hasLabel = label && TypeOf(label) == L"Static" && !TextOf(label).empty();
        EXPECT_TRUE(hasLabel || !TextOf(control).empty()) << GetDlgCtrlID(control);
    }
    EXPECT_EQ(17u, places.size());
}

void Resize(HWND window, int width, int height, int dpi) {
    RECT place = {0, 0, width * dpi / 96, height * dpi / 96};
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
}

TEST_F(MainWindowTest, ControlsFitAndHaveNamesInAnySizeAndLanguage) {
    for (const bool isLong : {false, true}) {
        SetTextChange(isLong ? LongerText : TextChange(nullptr));
        Open();
        for (const int dpi : {96, 144, 192}) {
            for (const int width : {520, 1100}) {
                SCOPED_TRACE(testing::Message() << isLong << " " << dpi << " " << width);
                Resize(window_->Handle(), width, 480, dpi);
                CheckControls(window_->Handle());
            }
        }
        window_.reset();
    }
    SetTextChange(nullptr);
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

// Alt and a letter selects one menu or one control.
TEST_F(MainWindowTest, AccessKeysAreUnique) {
    Open();
    std::wstring letters;
    const auto take = [&](const std::wstring& text) {
        const size_t mark = text.find(L'&');
        if (mark == std::wstring::npos) return;
        const wchar_t letter = static_cast<wchar_t>(towlower(text[mark + 1]));
        EXPECT_EQ(std::wstring::npos, letters.find(letter)) << ToUtf8(text);
        letters += letter;
    };
    const HMENU menu = GetMenu(window_->Handle());
    for (int index = 0; index < GetMenuItemCount(menu); ++index) {
        wchar_t text[40] = L"";
        GetMenuStringW(menu, static_cast<UINT>(index), text, 40, MF_BYPOSITION);
        take(text);
    }
    take(Text(IDS_STOP));  // on the same button as "Find"
    for (HWND child = GetWindow(window_->Handle(), GW_CHILD); child;
         child = GetWindow(child, GW_HWNDNEXT))
        take(TextOf(child));
    EXPECT_GE(letters.size(), 12u);
}

TEST_F(MainWindowTest, FocusReturnsFromAnotherWindow) {
    Open();
    SetFocus(Control(IDC_FILTER));
    ReportWindow report;
    report.Open(window_->Handle(), L"a page", {});
    EXPECT_EQ(GetDlgItem(PopupOf(window_->Handle()), IDC_DETAILS), GetFocus());
    report.Close();
    SetActiveWindow(window_->Handle());
    EXPECT_EQ(Control(IDC_FILTER), GetFocus());
}

}  // namespace
}  // namespace vndiscover::host
