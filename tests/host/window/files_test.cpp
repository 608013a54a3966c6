// The commands of the File menu after the user has chosen a file.
#include <regex>

#include "model/scan/device_view.h"
#include "model/scan/scan_file.h"
#include "platform/saved_file.h"
#include "scripted_window.h"
#include "values/utc_time.h"
#include "window/store/scan_files.h"

namespace vndiscover::host {
namespace {

class Files : public MainWindowTest {
  protected:
    // Also what the end of a session has left, which the next window would offer.
    ~Files() override {
        DeleteFileW(ToWide(path_).c_str());
        for (int number = 1; DeleteFileW(ToWide(RecoveryPath(number)).c_str());) ++number;
    }

    // A window with two devices, of which the filter hides one.
    void OpenWithDevices() {
        OpenWith({{"10.77.1.9", "VN InkLine 70"},
                  {"10.77.1.10", "VN LaserPro 410"},
                  {"10.77.1.11", "VN LaserPro 411"}});
        SetWindowTextW(Control(IDC_FILTER), L"laserpro");
        ClickColumn(2);
    }
    std::string FileText() const {
        std::string problem;
        return ReadFileText(path_, 1 << 20, problem).value_or(problem);
    }
    void SetFileText(const std::string& text) const {
        std::string problem;
        ASSERT_TRUE(ReplaceFileText(path_, text, problem)) << problem;
    }
    // From a file, with these values of one printer.
    void OpenScanOf(const std::string& values) {
        const std::string time = "2026-11-25T04:10:00Z";
        Scan scan;
        scan.sweeps = {{SweepKind::kSnmpV1, AnswerForm::kVariable, false, {}, time}};
        for (const auto& one : AnswersOf(values))
            scan.answers.push_back({0, time, "10.77.1.1", one});
        std::string problem;
        SetFileText(*WriteScan(scan, problem));
        EXPECT_TRUE(window_->scans.OpenFrom(path_));
    }
    // What the table of a comparison with the file counts.
    std::wstring Counted() {
        EXPECT_TRUE(window_->scans.CompareWith(path_));
        return TextOf(GetDlgItem(Popup(), IDC_TABLE_NOTE));
    }
    const std::string path_ = TemporaryPath();
};

TEST_F(Files, UnreadableScansAreToldAndLeaveTheList) {
    OpenWithDevices();
    SetFileText("{\"format\": \"vndiscover-scan\",\n \"version\": 1,\n x");
    for (const auto method : {&ScanCommands::OpenFrom, &ScanCommands::CompareWith}) {
        bool isDone = true;
        const std::string told = Answer({IDOK}, [&] { isDone = (window_->scans.*method)(path_); });
        EXPECT_FALSE(isDone);
        EXPECT_EQ(0u, told.find(path_ + " is not a scan")) << told;
        EXPECT_THAT(told, HasSubstr("line 3"));
    }
    EXPECT_EQ(0u, Answer({IDOK}, [&] {
                      window_->scans.OpenFrom(path_ + "x");
                  }).find("Not opened: " + path_ + "x cannot be read (no such file"));
    EXPECT_EQ(L"10.77.1.11;10.77.1.10;", Addresses());
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    EXPECT_THAT(FileText(), HasSubstr("10.77.1.9"));
}

TEST_F(Files, SavedScansAreOpenedAgain) {
    OpenWithDevices();
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    Command(IDM_CLEAR);
    EXPECT_EQ(L"", Addresses());
    EXPECT_TRUE(window_->scans.OpenFrom(path_));
    EXPECT_EQ(L"10.77.1.11;10.77.1.10;", Addresses());
    EXPECT_THAT(TextOf(window_->Handle()), HasSubstr(L", scan of "));
    // Its addresses get the user's community only when the user asks them.
    const int reads = engine_.reads;
    Select(0);
    Select(1);
    EXPECT_EQ(Text(IDS_READ_FIRST), ItemText(OpenMenu(3), IDM_ASK, MF_BYCOMMAND));
    Command(IDM_ASK);
    EXPECT_TRUE(Until([&] { return engine_.reads > reads; }));
    Sleep(100);
    EXPECT_EQ(reads + 1, engine_.reads);
    EXPECT_TRUE(
        Until([&] { return Has(TextOf(window_->Handle()), L", and values read since - "); }));
}

// Otherwise what is found now could not be told from what the file has.
TEST_F(Files, FindAsksHowToGoOnFromAFile) {
    OpenWithDevices();
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    EXPECT_TRUE(window_->scans.OpenFrom(path_));
    const int sweeps = engine_.sweeps;
    Answer({IDCANCEL}, [&] { Command(IDC_FIND); });
    EXPECT_EQ(sweeps, engine_.sweeps);
    for (const int button : {IDYES, IDNO}) {
        EXPECT_TRUE(window_->scans.OpenFrom(path_));
        Answer({button}, [&] { Command(IDC_FIND); });
        EXPECT_EQ(button == IDYES, Has(TextOf(window_->Handle()), L", and devices found since - "));
        EXPECT_EQ(button == IDYES ? L"10.77.1.11;10.77.1.10;" : L"", Addresses());
        ASSERT_TRUE(EndsSweeps());
    }
}

// In columns, with a line that counts, sorted by a click.
TEST_F(Files, ComparisonIsATable) {
    OpenWithDevices();
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    SetFileText(std::regex_replace(FileText(), std::regex("10.77.1.9\""), "10.77.1.7\""));
    EXPECT_THAT(Counted(), HasSubstr(L"(3 devices): 1 new, 1 gone, 0 changed"));
    const HWND table = Popup();
    EXPECT_TRUE(Has(TextOf(GetDlgItem(table, IDC_CHOSEN)), L"; What: new"));
    ClickHeading(GetDlgItem(table, IDC_ROWS), 1);
    Press(table, IDC_COPY_TABLE);
    EXPECT_EQ(0u, Copied().find(L"Device\tWhat\tBefore\tAfter\r\nVN InkLine 70, 10.77.1.7\tgone"));
    std::thread user([&, owner = window_->Handle()] {
        const HWND dialog = Awaited([&] {
            const HWND box = IsWindowEnabled(owner) ? nullptr : PopupOf(owner);
            return box == table ? nullptr : box;
        });
        EXPECT_FALSE(IsWindowEnabled(table));
        TypePath(dialog, path_ + "t");
        PressUntilGone(dialog, IDOK);
    });
    SetActiveWindow(table);
    Press(table, IDC_TABLE_SAVE);
    user.join();
    EXPECT_EQ(table, GetActiveWindow());
    EXPECT_TRUE(DeleteFileW(ToWide(path_ + "t.csv").c_str()));
}

// Also numbers within a text, and times in any form. Another row keeps the order.
TEST_F(Files, TablesAreSortedByWhatTheirTextsMean) {
    Open();
    TableWindow table([](const std::string&) {});
    table.Open(window_->Handle(), L"a table", {{IDS_CALL_TIME, 90}, {IDS_CHANGE_AFTER, 90}});
    table.Show(L"3 rows",
               {{{L"12/2/26", L"10 %"}}, {{L"11/30/26", L"9 %"}}, {{L"2/1/26", L"100 %"}}});
    const HWND dialog = Popup(), list = GetDlgItem(dialog, IDC_ROWS);
    const auto order = [&] {
        return CellOf(list, 0, 1) + L", " + CellOf(list, 1, 1) + L", " + CellOf(list, 2, 1);
    };
    ListView_SetItemState(list, 1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    for (const wchar_t* sorted : {L"10 %, 9 %, 100 %", L"9 %, 10 %, 100 %"}) {
        PressKey(list, VK_F9);
        EXPECT_EQ(sorted, order());
    }
    for (const wchar_t* sorted : {L"10 %, 9 %, 100 %", L"100 %, 9 %, 10 %"}) {
        ClickHeading(list, 0);
        EXPECT_EQ(sorted, order());
        EXPECT_TRUE(Has(TextOf(GetDlgItem(dialog, IDC_CHOSEN)), L"9 %")) << "the selected row";
    }
    table.Show(L"4 rows", {{{L"", L"8 %"}}, {{L"", L"7 %"}}, {{L"", L"6 %"}}, {{L"", L"5 %"}}});
    EXPECT_EQ(L"5 %, 6 %, 7 %", order());
    EXPECT_EQ(L"4 rows", TextOf(GetDlgItem(dialog, IDC_TABLE_NOTE)));
}

TEST_F(Files, HaveWholeTimesAndPlainCounts) {
    Open();
    std::string file;
    TableWindow table([&](const std::string& csv) { file = csv; });
    table.Open(window_->Handle(), L"a table",
               {{IDS_CALL_TIME, 90}, {IDS_FACT_WHAT, 90}, {IDS_CHANGE_BEFORE, 90}});
    const std::string now = UtcNow();
    ListRow pages = {{ToWide(now), L"Hall 1000", L"184305"}};
    pages.hasCounts = true;
    table.Show(L"", {pages});
    const HWND dialog = Popup(), list = GetDlgItem(dialog, IDC_ROWS);
    EXPECT_EQ(ToWide(ShortTime(now)) + L",Hall 1000,184,305",
              CellOf(list, 0, 0) + L"," + CellOf(list, 0, 1) + L"," + CellOf(list, 0, 2));
    Press(dialog, IDC_TABLE_SAVE);
    EXPECT_THAT(file, HasSubstr("\"" + ToUtf8(LocalTime(now)) + "\",\"Hall 1000\",\"184305\""));
    DeviceRow row;
    row.Text(Column::kPageCount) = "184305";
    EXPECT_EQ(L"184,305", ShownText(row, Column::kPageCount));
    EXPECT_EQ(L"184305", ShownText(row, Column::kPageCount, true));
}

// In the format of the user's system, of which the separators are not known here.
TEST(SystemTime, HasNoDateTodayAndNoSeconds) {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    std::tm local = {0, 27, 3, now.wDay, now.wMonth - 1, now.wYear - 1900, 0, 0, 0};
    const std::string today = SystemTime(local);
    EXPECT_NE(std::string::npos, today.find("27"));
    EXPECT_EQ(std::string::npos, today.find("00"));
    EXPECT_EQ(std::string::npos, today.find(std::to_string(now.wYear)));
    const std::string former = SystemTime({0, 27, 3, 1, 0, 101, 0, 0, 0});
    EXPECT_EQ(" " + today, former.substr(former.size() - today.size() - 1));
}

TEST_F(Files, SilentDeviceIsGoneInAComparison) {
    OpenWith({{"10.77.1.8", "x"}, {"10.77.1.9", "y"}});
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    Command(IDC_FIND);
    engine_.Say("10.77.1.9", "y");
    ASSERT_TRUE(EndsSweeps());
    EXPECT_THAT(
        Counted(),
        HasSubstr(L"this list without silent devices (1 device): 0 new, 1 gone, 0 changed"));
    // Nor does a file have it that says so.
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    EXPECT_THAT(Counted(), HasSubstr(L"(1 device): 0 new, 0 gone, 0 changed"));
}

// They may be old, or of another computer's printers.
TEST_F(Files, StatesOfAFileAreNoChanges) {
    Open();
    for (const char* const state : {"hrPrinterStatus.1 i 3", "hrPrinterStatus.1 i 4"})
        OpenScanOf(state);
    EXPECT_EQ(L"printing", Cell(0, 3));
    EXPECT_TRUE(window_->state.changes.Changes().empty());
}

// Though it has no bar.
TEST_F(Files, FullWasteBoxIsMarked) {
    Open();
    OpenScanOf(
        "hrPrinterStatus.1 i 3; prtMarkerSuppliesClass.1.1 i 4; prtMarkerSuppliesLevel.1.1 i 3; "
        "prtMarkerSuppliesDescription.1.1 s Box; prtMarkerSuppliesSupplyUnit.1.1 i 19; "
        "prtMarkerSuppliesMaxCapacity.1.1 i 100");
    EXPECT_EQ(L"! room left 3 % Box", Cell(0, 4));
}

TEST_F(Files, StayWhenNothingCouldBeSentOrFound) {
    SetFileText("former");
    engine_.isUnsent = true;
    OpenScript(path_, path_);
    EXPECT_EQ(3, window_->Run());
    EXPECT_EQ("former", FileText());
    engine_.isUnsent = false;
    OpenWithDevices();
    EXPECT_TRUE(window_->scans.SaveTo(path_));
    const std::string csv = path_ + ".csv";
    OpenScript(path_, csv);  // finds none
    EXPECT_TRUE(EndsSweeps());
    EXPECT_FALSE(FileExists(csv)) << "one of both files stays";
    EXPECT_THAT(FileText(), HasSubstr("10.77.1.11"));
}

TEST_F(Files, UnsavedScansAreDroppedOnlyOnRequest) {
    OpenWithDevices();
    const auto clear = [&] { Command(IDM_CLEAR); };
    const auto close = [&] { Close(); };
    EXPECT_EQ("Save these results before clearing the list?", Answer({IDCANCEL}, clear));
    EXPECT_EQ("Save these results before closing?", Answer({IDCANCEL}, close));
    Answer({IDYES, IDCANCEL}, close);  // without a file
    EXPECT_EQ(L"10.77.1.11;10.77.1.10;", Addresses());
    Command(IDC_FIND);
    for (const int id : {IDM_CLEAR, IDM_OPEN})
        EXPECT_EQ(ToUtf8(Text(IDS_AWAITS_ANSWERS)), Answer({IDOK}, [&] { Command(id); }));
    Command(IDC_FIND);
    ASSERT_TRUE(Ends());
    // Also while it is only about to be told that a device is asked.
    engine_.isHeld = true;
    Select(0);
    for (int wait = 0; wait < 1000 && engine_.reads == 0; ++wait) Sleep(10);
    ListView_SetItemState(Control(IDC_DEVICES), 0, 0, LVIS_SELECTED);
    Select(0);  // asks no second time
    EXPECT_EQ(ToUtf8(Text(IDS_AWAITS_DEVICE)), Answer({IDOK}, clear));
    engine_.isHeld = false;
    ASSERT_TRUE(Until([&] { return Status().find(L"Stopped") == 0; }));
    EXPECT_EQ(1, engine_.reads);
    Answer({IDNO}, clear);
    EXPECT_EQ(L"", Addresses());
    close();
    EXPECT_FALSE(window_->Handle());
}

TEST_F(Files, WindowThatIsClosedEarlySavesWhatWasFound) {
    StartOptions options;
    options.sweep = true;
    options.savePath = path_;
    const auto find = [&](const char* model) {
        Open(options);
        engine_.Say("10.77.1.9", model);
        ASSERT_TRUE(Shows(L"10.77.1.9;"));
    };
    find("VN InkLine 70");
    // Also if the user logs off.
    EXPECT_TRUE(SendMessageW(window_->Handle(), WM_QUERYENDSESSION, 0, 0));
    SendMessageW(window_->Handle(), WM_ENDSESSION, TRUE, 0);
    EXPECT_THAT(FileText(), HasSubstr("VN InkLine 70"));
    EXPECT_FALSE(OpenExclusively(RecoveryPath(1), OPEN_EXISTING));  // it is saved
    find("VN InkLine 71");
    PostMessageW(window_->Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(0, window_->Run());
    EXPECT_THAT(FileText(), HasSubstr("VN InkLine 71"));
    // A second file is asked for if that one cannot be written, but not while the session ends.
    options.savePath = path_ + "\\none";
    find("VN InkLine 72");
    Answer({}, [&] { SendMessageW(window_->Handle(), WM_ENDSESSION, TRUE, 0); });
    find("VN InkLine 72");
    Answer({IDOK, IDNO}, [&] { Close(); });
    EXPECT_FALSE(window_->Handle());
}

// Whatever columns a window shows.
TEST_F(Files, ScriptsGetTheSameColumns) {
    OpenScript();
    EXPECT_TRUE(EndsSweeps());
    EXPECT_TRUE(window_->scans.SaveCsvTo(path_));
    EXPECT_EQ(
        "\xEF\xBB\xBF\"State\",\"Name\",\"Lowest supply\",\"Model\",\"Address\",\"Serial number\","
        "\"MAC address\",\"Protocols\",\"Network\",\"Last seen\"\r\n",
        FileText());
}

// With its whole ending, and the current folder stays.
TEST_F(Files, SystemsDialogChoosesTheFile) {
    OpenWithDevices();
    const auto before = std::filesystem::current_path();
    PlayDialog(
        IDOK, [&](HWND dialog) { TypePath(dialog, path_ + "x"); }, IDM_SAVE);
    EXPECT_EQ(before, std::filesystem::current_path());
    EXPECT_TRUE(DeleteFileW(ToWide(path_ + "x.json").c_str()));
}

TEST_F(Files, ExportsHoldTheRowsAsShown) {
    OpenWithDevices();
    int order[] = {2, 1, 0, 3, 4, 5};  // the address first
    ListView_SetColumnOrderArray(Control(IDC_DEVICES), 6, order);
    EXPECT_TRUE(window_->scans.SaveCsvTo(path_));
    const std::string csv = FileText();
    EXPECT_EQ(0u, csv.find("\xEF\xBB\xBF\"Address\",\"Model\",\"Name\",\"State\",")) << csv;
    EXPECT_THAT(
        csv, HasSubstr("\r\n\"10.77.1.11\",\"VN LaserPro 411\",\"\",\"never read\",\"\",\"\"\r"));
    EXPECT_TRUE(window_->scans.SaveJsonTo(path_));
    const std::string json = FileText();
    EXPECT_EQ(0u, json.find("[\n  {\"severity\":\"unknown\",\"state\":null")) << json;
    EXPECT_LT(json.find("[\"10.77.1.11\"]"), json.find("[\"10.77.1.10\"]"));
    EXPECT_THAT(json, HasSubstr("\"notRead\":\"never read\"}\n]\n"));
}

TEST_F(Files, UnsavedScanOutlivesTheSession) {
    const std::wstring former = _wgetenv(L"LOCALAPPDATA") ? _wgetenv(L"LOCALAPPDATA") : L"";
    _wputenv_s(L"LOCALAPPDATA", ToWide(path_.substr(0, path_.find_last_of("\\/"))).c_str());
    const auto end = [&](LPARAM how) { SendMessageW(window_->Handle(), WM_ENDSESSION, TRUE, how); };
    OpenWithDevices();
    EXPECT_TRUE(SendMessageW(window_->Handle(), WM_QUERYENDSESSION, 0, 0));
    end(0);
    end(0);  // as a second window would at the same time
    Open();
    Answer({IDCANCEL, IDCANCEL}, [&] { window_->scans.OfferRecovery(); });  // later
    const std::string asked =
        Answer({IDNO, IDYES}, [&] { window_->scans.OfferRecovery(); });  // one is enough
    EXPECT_EQ(ToUtf8(Text(IDS_ASK_KEPT)), asked);
    EXPECT_THAT(Addresses(), HasSubstr(L"10.77.1.11;"));
    EXPECT_EQ(0u, TextOf(window_->Handle()).find(L"kept scan, scan of "));
    EXPECT_FALSE(OpenExclusively(RecoveryPath(2), OPEN_EXISTING));  // it is this window's
    end(ENDSESSION_CLOSEAPP);                                       // it is still in no file
    MSG quit = {};
    EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    for (const bool isSaved : {false, true}) {
        Open();
        Answer({IDYES}, [&] { window_->scans.OfferRecovery(); });
        EXPECT_TRUE(!isSaved || window_->scans.SaveTo(path_));
    }
    Open();
    Answer({}, [&] { window_->scans.OfferRecovery(); });
    _wputenv_s(L"LOCALAPPDATA", former.c_str());
}

}  // namespace
}  // namespace vndiscover::host
