#include "model/scan/device_view.h"
#include "platform/saved_file.h"
#include "scripted_window.h"
#include "values/text.h"
#include "window/store/settings.h"

namespace vndiscover::host {
namespace {

// Every control shows its whole text.
void CheckDialog(HWND dialog, size_t controls) {
    const auto places = PlacesIn(dialog);
    for (const auto& [control, place] : places) {
        SCOPED_TRACE(GetDlgCtrlID(control));
        EXPECT_TRUE(NameOf(control) != L"" || GetDlgCtrlID(control) == IDC_CHOSEN);
        const bool isButton = TypeOf(control) == L"Button";
        if (!isButton && TypeOf(control) != L"Static") continue;
        EXPECT_TRUE(!TextOf(control).empty() || GetDlgCtrlID(control) == IDC_CHOSEN);
        const bool isNote = place.bottom - place.top > 30;
        const SIZE size = TextSize(control, TextOf(control), isNote ? DT_WORDBREAK : DT_SINGLELINE,
                                   place.right - place.left);
        EXPECT_LE(size.cx + (isButton ? 8 : 0), place.right - place.left)
            << ToUtf8(TextOf(control));
        EXPECT_LE(size.cy, place.bottom - place.top);
    }
    EXPECT_EQ(controls, places.size());
}

class Dialogs : public MainWindowTest {
  protected:
    ~Dialogs() override {
        SetTextChange(nullptr);
        for (const std::wstring& name : ProfileNames()) DeleteProfile(name);
        SaveLastProfile(L"");
        DeleteProfile(L"");
        SaveCommunities(L"");
    }
    static void Type(HWND dialog, int id, const wchar_t* text) {
        SendDlgItemMessageW(dialog, id, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    }
    static void Choose(HWND dialog, int id, int index) {
        SendDlgItemMessageW(dialog, id, CB_SETCURSEL, WPARAM(index), 0);
        SendMessageW(dialog, WM_COMMAND, WPARAM(MAKELONG(id, CBN_SELCHANGE)), 0);
    }
    static void TypeUser(HWND dialog) {
        Type(dialog, IDC_PROFILE, L"Office");
        Type(dialog, IDC_USER, L"admin");
        SendDlgItemMessageW(dialog, IDC_AUTH, CB_SETCURSEL, 4, 0);  // SHA-2(256)
        Type(dialog, IDC_AUTH_PASSWORD, kPassword.c_str());
    }
    static constexpr wchar_t kOffice[] = L"Software\\Varnell Osk\\VnBrowser\\Profiles\\Office";
    // Longer than any limit of the module's texts.
    static inline const std::wstring kPassword = std::wstring(1000, L'a') + L"authpass1";
};

TEST_F(Dialogs, FitLongerLanguages) {
    for (const TextChange change : {TextChange(nullptr), TextChange(LongerText)}) {
        SetTextChange(change);
        OpenWith({{"10.77.1.1", "x"}});
        PlayDialog(IDCANCEL, [](HWND dialog) {
            CheckDialog(dialog, 18);
            const RECT place = PlaceOf(dialog);
            const LONG width = PlaceOf(GetDlgItem(dialog, IDC_AUTH)).right;
            SetDpi(dialog, 192, 2 * (place.right - place.left), 2 * (place.bottom - place.top));
            CheckDialog(dialog, 18);
            EXPECT_GT(PlaceOf(GetDlgItem(dialog, IDC_AUTH)).right, width);
        });
        DeviceRow row = window_->state.session.view.Row(0);
        row.standing.kind = Standing::Kind::kRead;
        for (const char* state : {"idle", "jammed"}) {
            row.summary.state = row.Text(Column::kState) = state;
            window_->state.changes.Add(row, "2026-11-23T09:12:00Z");
        }
        EXPECT_EQ(0u, Cell(0, 3).find(L"\x25CF never read"));
        Select(0);
        for (const auto& [command, controls] :
             {std::pair(IDM_CALLS, 9u), {IDM_WALK, 9u}, {IDM_CHANGES, 6u}}) {
            Command(command);
            CheckDialog(Popup(), controls);
        }
        EXPECT_THAT(TextOf(GetDlgItem(Popup(), IDC_TABLE_NOTE)), HasSubstr(L"1 change since"));
        window_.reset();
    }
}

TEST_F(Dialogs, SavedUserIsUsedForSweeps) {
    Open();
    PlayDialog(IDOK, TypeUser);
    const auto kept = ReadProfile(L"Office");
    ASSERT_TRUE(kept && kept->isOpen);
    EXPECT_EQ(L"SHA-2(256)", kept->security.authLabel);
    // A later window uses it without asking, and the password is never shown.
    Open();
    PlayDialog(IDCANCEL, [](HWND dialog) {
        EXPECT_EQ(L"admin", TextOf(GetDlgItem(dialog, IDC_USER)));
        EXPECT_EQ(L"", TextOf(GetDlgItem(dialog, IDC_AUTH_PASSWORD)));
    });
    CheckDlgButton(window_->Handle(), IDC_V3, BST_CHECKED);
    CheckDlgButton(window_->Handle(), IDC_V1, BST_UNCHECKED);
    Command(IDC_FIND);
    ASSERT_TRUE(EndsSweeps());
    EXPECT_EQ(kPassword, engine_.lastStep.login.security->authPassword.Get());
    // The user's profile is shown, even if another window has used another one since.
    SaveProfile(L"Lab", kept->security);
    SaveLastProfile(L"Lab");
    PlayDialog(IDCANCEL,
               [](HWND dialog) { EXPECT_EQ(L"Office", TextOf(GetDlgItem(dialog, IDC_PROFILE))); });
    DeleteProfile(L"Lab");
}

// By the next window, but by no script.
TEST_F(Dialogs, SettingsAreKeptUntilTheyAreCleared) {
    const auto next = [&](bool isScript) {
        StartOptions options;
        options.exit = isScript;
        Open(options, false);
        const Credentials& found = window_->state.credentials;
        return (found.security ? ToUtf8(found.security->user) + ":" : "") +
               Joined(found.communities);
    };
    EXPECT_EQ("public", next(false));
    PlayDialog(IDOK, [](HWND dialog) {
        TypeUser(dialog);
        Type(dialog, IDC_PROFILE, L"");
        Type(dialog, IDC_COMMUNITY, L"hidden");
    });
    EXPECT_EQ("public", next(true));
    RegSetKeyValueW(HKEY_CURRENT_USER, kBrowserKey, L"Communities", REG_BINARY, "x", 1);
    EXPECT_EQ("admin:public", next(false));
    EXPECT_EQ(Text(IDS_COMMUNITIES_CLOSED), Status());
    SaveCommunities(L"hidden");
    EXPECT_EQ("admin:hidden", next(false));
    PlayDialog(IDOK, [](HWND dialog) {
        for (const int id : {IDC_USER, IDC_COMMUNITY}) Type(dialog, id, L"");
        SendDlgItemMessageW(dialog, IDC_AUTH, CB_SETCURSEL, 0, 0);
    });
    EXPECT_EQ("public", next(false));
}

TEST_F(Dialogs, MistakesAreToldOneByOneAtTheirFields) {
    Open();
    PlayDialog(IDOK, [](HWND dialog) {
        const auto expectMistake = [&](int id, unsigned text) {
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
            const HWND box = NextPopupOf(dialog);
            EXPECT_EQ(Text(text), TextOf(GetDlgItem(box, 0xFFFF)));
            PressUntilGone(box, IDOK);
            SendMessageW(dialog, WM_NULL, 0, 0);  // after what follows the message
            GUITHREADINFO thread = {};
            thread.cbSize = sizeof thread;
            GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &thread);
            EXPECT_EQ(GetDlgItem(dialog, id), thread.hwndFocus) << id;
        };
        Type(dialog, IDC_COMMUNITY, std::wstring(81, L'x').c_str());
        expectMistake(IDC_COMMUNITY, IDS_SNMP_BAD_COMMUNITY);
        Type(dialog, IDC_COMMUNITY, L"");
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDC_PRIV)));
        Choose(dialog, IDC_AUTH, 1);
        EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDC_PRIV)));
        expectMistake(IDC_USER, IDS_SNMP_BAD_USER);
        Type(dialog, IDC_USER, L"admin");
        Type(dialog, IDC_AUTH_PASSWORD, L"authpass1");
        Choose(dialog, IDC_PRIV, 2);
        expectMistake(IDC_PRIV_PASSWORD, IDS_SNMP_NO_PRIV);
        Choose(dialog, IDC_AUTH, 0);  // its password, and privacy, have no meaning then
    });
    EXPECT_FALSE(window_->state.credentials.security->UsePriv());
}

LONG FontHeight(HWND control) {
    LOGFONTW font = {};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof font,
               &font);
    return font.lfHeight;
}

TEST_F(Dialogs, AddressesAreAddedOrWhyNotIsTold) {
    Open();
    std::wstring unknown(64, L'x');  // no part of a name is that long
    for (int name = 2; name <= 10; ++name) unknown += L", " + std::wstring(64, L'x');
    const auto add = [&](HWND dialog) {
        std::wstring many;
        for (int host = 0; host < 1001; ++host) many += L"a" + std::to_wstring(host) + L" ";
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
        SendDlgItemMessageW(dialog, IDC_ADD_HOSTS, EM_REPLACESEL, FALSE,
                            reinterpret_cast<LPARAM>(many.c_str()));
        EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        const HWND box = NextPopupOf(dialog);
        EXPECT_EQ(Text(IDS_TOO_MANY_HOSTS, {Grouped(1000), Grouped(1001)}), QuestionOf(box));
        PressUntilGone(box, IDOK);
        Type(dialog, IDC_ADD_HOSTS, (L"10.77.1.9,10.77.1.8," + unknown + L",:,:").c_str());
    };
    PlayDialog(IDOK, add, IDM_ADD);
    const std::string told = Answer({IDOK}, [&] { EXPECT_TRUE(Shows(L"10.77.1.8;10.77.1.9;")); });
    EXPECT_EQ(ToUtf8(Text(IDS_NO_ADDRESS, {unknown + L" and 2 more"})), told);
    EXPECT_TRUE(Until([&] { return engine_.listReads == 2; })) << "as those that are found";
    EXPECT_EQ(ToUtf8(TextOf(Control(IDC_STATUS))).find("Looking up"), std::string::npos);
    // A file's are added to what is typed.
    const std::string path = TemporaryPath();
    std::string problem;
    ASSERT_TRUE(ReplaceFileText(path, "10.77.1.7\n10.77.1.6", problem));
    const auto read = [&](HWND dialog) {
        Type(dialog, IDC_ADD_HOSTS, L"10.77.1.5");
        PostMessageW(dialog, WM_COMMAND, IDC_ADD_FILE, 0);
        const HWND box = NextPopupOf(dialog);
        TypePath(box, path);
        PressUntilGone(box, IDOK);
        const HWND hosts = GetDlgItem(dialog, IDC_ADD_HOSTS);
        Awaited([&] { return Has(TextOf(hosts), L"1.6") ? hosts : nullptr; });
        EXPECT_EQ(L"10.77.1.5\r\n10.77.1.7\r\n10.77.1.6", TextOf(hosts));
    };
    PlayDialog(IDCANCEL, read, IDM_ADD);
    EXPECT_TRUE(DeleteFileW(ToWide(path).c_str()));
}

// The close button stays at its distance from the lower right corner.
TEST_F(Dialogs, GrowAndHaveTheSizesOfTheirScreen) {
    OpenWith({{"10.77.1.1", "x"}});
    Select(0);
    for (const auto& [command, grown] :
         {std::pair(IDM_CALLS, IDC_CALL_TEXT), {IDM_CHANGES, IDC_ROWS}, {IDM_WALK, IDC_ROWS}}) {
        SCOPED_TRACE(command);
        Command(command);
        const HWND dialog = Popup(), close = GetDlgItem(dialog, IDCANCEL);
        const HWND columns = GetDlgItem(dialog, IDC_ROWS), control = GetDlgItem(dialog, grown);
        const RECT first = PlaceOf(dialog), owner = PlaceOf(window_->Handle());
        const RECT button = PlaceOf(close), before = PlaceOf(control);
        EXPECT_NEAR(owner.left + owner.right, first.left + first.right, 1);
        const LONG width = first.right - first.left, height = first.bottom - first.top;
        SetWindowPos(dialog, nullptr, 0, 0, width + 90, height + 70, SWP_NOMOVE | SWP_NOZORDER);
        PlacesIn(dialog);
        for (const auto& [old, now] :
             {std::pair(button, PlaceOf(close)), {before, PlaceOf(control)}}) {
            EXPECT_EQ(old.right + 90, now.right);
            EXPECT_EQ(old.bottom + 70, now.bottom);
        }
        const int column = ListView_GetColumnWidth(columns, 0);
        const LONG font = FontHeight(columns), other = FontHeight(control);
        SetDpi(dialog, 192, 2 * width, 2 * height);
        PlacesIn(dialog);
        EXPECT_EQ(2 * column, ListView_GetColumnWidth(columns, 0));
        EXPECT_EQ(2 * font, FontHeight(columns));
        EXPECT_EQ(2 * other, FontHeight(control));
        for (const HWND each : {columns, control}) {  // after a change of how letters are drawn
            const LRESULT former = SendMessageW(each, WM_GETFONT, 0, 0);
            SendMessageW(dialog, WM_SETTINGCHANGE, 0, 0);
            EXPECT_NE(former, SendMessageW(each, WM_GETFONT, 0, 0));
        }
        EXPECT_EQ(2 * other, FontHeight(control));
        // Back at the first screen, also in a place that is smaller than it could be made there.
        for (const int dpi : {97, 110, 96}) SetDpi(dialog, dpi, width - 1, height - 1);
        EXPECT_EQ(width - 1, PlaceOf(dialog).right);
        EXPECT_EQ(font, FontHeight(columns));
        DestroyWindow(dialog);
        for (const bool isSameDpi : {false, true}) {  // opened again, with rows as high as before
            Command(command);
            const HWND again = Popup();
            EXPECT_TRUE(ListView_GetImageList(GetDlgItem(again, IDC_ROWS), LVSIL_SMALL))
                << isSameDpi;
            DestroyWindow(again);
        }
    }
}

TEST_F(Dialogs, CancellingTheUserSendsNothing) {
    Open();
    CheckDlgButton(window_->Handle(), IDC_V3, BST_CHECKED);
    const auto cancel = [](HWND dialog) {
        EXPECT_EQ(0u, TextOf(GetDlgItem(dialog, IDC_PROFILE_NOTE)).find(Text(IDS_SNMP_WHY)));
    };
    PlayDialog(IDCANCEL, cancel, IDC_FIND);
    EXPECT_EQ(0, engine_.sweeps);
    EXPECT_TRUE(IsDlgButtonChecked(window_->Handle(), IDC_V3));
    EXPECT_EQ(Text(IDS_NO_USER), Status());
}

TEST_F(Dialogs, CommunitiesAreAskedInTurn) {
    Open();
    PlayDialog(IDOK, [](HWND dialog) {
        EXPECT_EQ(L"sesame", TextOf(GetDlgItem(dialog, IDC_COMMUNITY)));
        Type(dialog, IDC_COMMUNITY, L" office , sesame,office,");
    });
    EXPECT_EQ((std::vector<std::string>{"office", ""}), window_->state.credentials.communities);
    Command(IDC_FIND);
    ASSERT_TRUE(EndsSweeps());
    EXPECT_EQ(2, engine_.sweeps);
    EXPECT_EQ("", engine_.lastStep.login.community);
}

// A sweep cannot tell refusal from silence; asking the device again can.
TEST_F(Dialogs, ReasonOfARefusalIsShown) {
    OpenWith({{"fe80::1", "x"}});
    PlayDialog(IDOK, TypeUser);
    CheckDlgButton(window_->Handle(), IDC_V3, BST_CHECKED);
    engine_.refusal = Status::kOnlyDiscovered;  // a wrong privacy password
    engine_.Say("fe80::1", "x");
    ASSERT_EQ(0, engine_.reads);
    Command(IDC_FIND);
    ASSERT_TRUE(EndsSweeps());
    const std::wstring told = Text(IDS_V3_REFUSED, {L"fe80::1", L"refused: wrong user"});
    EXPECT_TRUE(Until([&] { return Status() == told; })) << ToUtf8(Status());
    EXPECT_EQ(1, engine_.reads--);
    engine_.refusal = Status::kRefused;
    Select(0);
    ASSERT_TRUE(Until([&] { return engine_.reads == 1; }));
    Command(IDM_NEXT_PAGE);
    const auto line = [list = Control(IDC_DETAILS)](int row) {
        return CellOf(list, row, 0) + L": " + CellOf(list, row, 1);
    };
    EXPECT_EQ(L"SNMPv1, IPv6: answered", line(1));
    EXPECT_EQ(L"SNMPv3, IPv4: " + Text(IDS_PROTOCOL_SILENT_V3), line(2));
    Command(IDM_ASK);
    EXPECT_TRUE(Until([&] { return line(3) == L"SNMPv3, IPv6: refused: wrong user"; }));
    EXPECT_TRUE(Until([&] { return engine_.reads == 3; }));
}

TEST_F(Dialogs, AskAgainForPasswordsThatCannotBeOpened) {
    // One without a name, which cannot be left by choosing another, is replaced.
    const std::wstring keys[] = {kOffice, kBrowserKey + std::wstring(L"\\Default profile")};
    for (const bool hasName : {true, false}) {
        constexpr wchar_t kBroken[] = L"admin\0SHA-2(256)\0\0broken";
        const wchar_t* const name = hasName ? L"Office" : L"";
        RegSetKeyValueW(HKEY_CURRENT_USER, keys[hasName ? 0 : 1].c_str(), L"User", REG_BINARY,
                        kBroken, sizeof kBroken);
        SaveLastProfile(name);
        Open();
        PlayDialog(IDOK, [&](HWND dialog) {
            EXPECT_EQ(Text(hasName ? IDS_PROFILE_CLOSED : IDS_USER_CLOSED),
                      TextOf(GetDlgItem(dialog, IDC_PROFILE_NOTE)));
            EXPECT_EQ(L"admin", TextOf(GetDlgItem(dialog, IDC_USER)));
            Type(dialog, IDC_AUTH_PASSWORD, L"authpass1");
        });
        PlayDialog(IDOK, [](HWND) {});  // with the known password
        EXPECT_EQ(!hasName, ReadProfile(name)->isOpen);
    }
}

// It cannot be read, but it is listed and can be deleted.
TEST_F(Dialogs, BrokenProfileCanBeDeleted) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kOffice, L"User", REG_BINARY, L"x", 2);
    Open();
    PlayDialog(IDCANCEL, [](HWND dialog) {
        Choose(dialog, IDC_PROFILE, 0);
        EXPECT_EQ(Text(IDS_PROFILE_CLOSED), TextOf(GetDlgItem(dialog, IDC_PROFILE_NOTE)));
        PostMessageW(dialog, WM_COMMAND, IDC_PROFILE_DELETE, 0);
        PressUntilGone(NextPopupOf(dialog), IDYES);
    });
    EXPECT_TRUE(ProfileNames().empty());
}

TEST_F(Dialogs, CallsAreShownAsTextToCopy) {
    Open();
    Command(IDM_CALLS);
    const HWND dialog = Popup();
    const HWND text = GetDlgItem(dialog, IDC_CALL_TEXT);
    EXPECT_EQ(Text(IDS_CALLS_NONE), TextOf(text));
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDC_CALL_COPY)));
    Command(IDC_FIND);
    ASSERT_TRUE(Until([&] { return engine_.isInSweep.load(); }));
    Command(IDC_FIND);
    ASSERT_TRUE(Ends());
    const HWND list = GetDlgItem(dialog, IDC_ROWS);
    EXPECT_TRUE(Until([&] { return ListView_GetItemCount(list) == 3; }));
    // The newest first: two stops during the sweep.
    ListView_SetItemState(list, 0, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(0u, TextOf(text).find(L"#include <vndiscover.h>\r\n"));
    CheckRadioButton(dialog, IDC_CALL_CPP, IDC_CALL_COMMAND, IDC_CALL_COMMAND);
    Press(dialog, IDC_CALL_COMMAND);
    EXPECT_EQ(L"vndiscover sweep --oid .1.3.1", TextOf(text));
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDC_CALL_COPY)));
    Press(dialog, IDC_CALL_COPY);
    EXPECT_EQ(L"vndiscover sweep --oid .1.3.1", Copied());
    // The selected call stays selected while others are added.
    Command(IDC_FIND);
    ASSERT_TRUE(Until([&] { return engine_.sweeps == 2; }));
    Command(IDC_FIND);
    EXPECT_TRUE(Until([&] { return ListView_GetItemCount(list) == 6; }));
    EXPECT_EQ(L"vndiscover sweep --oid .1.3.1", TextOf(text));
    Press(dialog, IDCANCEL);
    EXPECT_FALSE(IsWindow(dialog));
}

// The user sees all of it closed before the first worker is waited for.
TEST_F(Dialogs, CloseWithTheWindow) {
    Open();
    Command(IDC_FIND);
    Command(IDM_CALLS);
    const HWND window = window_->Handle(), dialog = PopupOf(window);
    ASSERT_TRUE(dialog);
    int seen = 0;
    engine_.onStop = [&] { seen += IsWindowVisible(window) + IsWindowVisible(dialog); };
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(0, window_->Run());
    EXPECT_EQ(0, seen);
    EXPECT_GE(engine_.stops, 1);
    EXPECT_FALSE(IsWindow(dialog));
}

// On a page that opens at once with the report on this computer.
TEST_F(Dialogs, DiagnosisOfADeviceIsShownWhenItComes) {
    const std::wstring computer =
        L"nothing seen here keeps a sweep from finding devices;is not sent;is not sent;"
        L"not known here;off;";
    OpenWith({{"10.77.1.9", "VN InkLine 70"}});
    Select(0);
    enum { kWhole, kStopped, kQueued };
    for (const int way : {kWhole, kStopped, kQueued}) {
        ASSERT_TRUE(Until([&] { return engine_.reads == 1 && Status().find(L"Stopped") == 0; }));
        engine_.isReleased = false;
        engine_.isHeld = way == kQueued;
        if (way == kQueued) Command(IDM_ASK);
        ASSERT_TRUE(Until([&] { return way != kQueued || engine_.reads == 2; }));
        Command(IDM_DIAGNOSE);
        HWND page = nullptr;
        ASSERT_TRUE(Until([&] { return (page = Popup()) != nullptr; }));
        EXPECT_EQ(L"Does 10.77.1.9 answer?", TextOf(page));
        EXPECT_EQ(L"the device is being asked;" + computer, PageTexts(page));
        EXPECT_EQ(L"This computer", CellOf(GetDlgItem(page, IDC_DETAILS), 1, 0));
        engine_.isReleased = way == kWhole;
        if (way != kWhole) Command(IDCANCEL);
        const std::wstring verdict =
            way != kWhole
                ? L"stopped before the last step;"
                : L"!! ping answers, SNMPv1 and SNMPv3 do not: SNMP switched off, UDP port 161 "
                  L"blocked on the way, or community wrong and no SNMPv3;";
        const std::wstring expected =
            verdict +
            (way == kQueued ? L"not asked;not asked;not asked;not asked;"
                            : L"! the device is on none of this computer's networks: sweeps do "
                              L"not reach it, directed requests do;answered;! no answer;"
                              L"! no answer;not asked;SNMPv1 with a community that is not shown "
                              L"for the variable after sysDescr.0;") +
            computer;
        EXPECT_TRUE(Until([&] { return PageTexts(page) == expected; })) << ToUtf8(PageTexts(page));
        Press(page, IDCANCEL);
    }
    engine_.isHeld = false;
    // Without a user, the engine alone is asked.
    engine_.hasEngine = engine_.isReleased = true;
    Command(IDM_DIAGNOSE);
    const std::wstring none = L";answered;" + Text(IDS_NO_USER_ASKED) + L";";
    EXPECT_TRUE(Until([&] { return Has(PageTexts(Popup()), none); }));
}

}  // namespace
}  // namespace vndiscover::host
