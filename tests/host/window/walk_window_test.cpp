#include "scripted_window.h"

namespace vndiscover::host {
namespace {

class WalkTests : public MainWindowTest {
  protected:
    // Opens the window for the first of two devices.
    void OpenWalk() {
        OpenWith({{"10.77.1.1", "x"}, {"10.77.1.3", "y"}});
        SelectNew(0);
        OpenWalkOf(L"10.77.1.1");
    }
    // For the selected device.
    void OpenWalkOf(const std::wstring& address) {
        Command(IDM_WALK);
        walk_ = FindWindowW(L"#32770", (L"Values of " + address).c_str());
        ASSERT_TRUE(walk_);
        list_ = GetDlgItem(walk_, IDC_ROWS);
    }
    void Start(const wchar_t* root) const {
        SetDlgItemTextW(walk_, IDC_WALK_ROOT, root);
        Press(IDC_WALK_START);
    }
    void Press(int id) const { host::Press(walk_, id); }
    std::wstring State() const { return TextOf(GetDlgItem(walk_, IDC_WALK_STATE)); }
    int Rows() const { return ListView_GetItemCount(list_); }

    HWND walk_ = nullptr, list_ = nullptr;
};

TEST_F(WalkTests, FillsTheListAndSaysHowItEnded) {
    OpenWalk();
    EXPECT_EQ(L".1.3.6.1.2.1", TextOf(GetDlgItem(walk_, IDC_WALK_ROOT)));
    Start(L"system.%1");
    EXPECT_EQ(0u, State().find(L"system.%1 is neither an OID"));
    Start(L".1.3.6.1.2.1.20000");
    EXPECT_EQ(0u, State().find(L".1.3.6.1.2.1.20000 cannot be requested"));
    Start(L".1.3.6.1.2.1.1");
    EXPECT_TRUE(Until([&] { return State() == L"3 values, and no more below this OID"; }));
    EXPECT_EQ(3, Rows());
    EXPECT_EQ(L"", CellOf(list_, 2, 1));  // a known part alone is no name
    Press(IDC_COPY_ROW);                  // none is selected
    ListView_SetItemState(list_, 1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(L".1.3.6.1.2.1.1.5.0, sysName.0: hall", TextOf(GetDlgItem(walk_, IDC_CHOSEN)));
    Press(IDC_COPY_ROW);
    EXPECT_EQ(L".1.3.6.1.2.1.1.5.0\tsysName.0\thall\r\n", Copied());
    Press(IDC_COPY_TABLE);
    EXPECT_THAT(Copied(), testing::AllOf(testing::StartsWith(L"OID\tName\tValue\r\n"),
                                         testing::Not(HasSubstr(L"\x1B"))));
    // The list is that of the last walk only.
    Start(L"sysName");
    EXPECT_TRUE(Until([&] { return State() == L"1 value, and no more below this OID"; }));
    EXPECT_EQ(1, Rows());
    Start(L"ifType");
    EXPECT_TRUE(Until([&] { return Has(State(), L"is not greater"); }));
}

TEST_F(WalkTests, GoesOnUntilItIsStopped) {
    OpenWalk();
    Start(L"ifDescr");
    ASSERT_TRUE(Until([&] { return Rows() > 3; }));
    EXPECT_EQ(L"S&top", TextOf(GetDlgItem(walk_, IDC_WALK_START)));
    EXPECT_EQ(0u, Status().find(L"Reading the values of 10.77.1.1... "));
    SelectNew(1);  // during the walk
    const int rows = Rows();
    EXPECT_TRUE(Until([&] { return Rows() > rows; }));
    const HWND button = GetDlgItem(walk_, IDC_WALK_START);
    for (const HWND focused : {GetDlgItem(walk_, IDC_WALK_ROOT), button}) {  // Enter, and a click
        EXPECT_TRUE(IsWindowEnabled(button));
        SetFocus(focused);
        Press(IDC_WALK_START);
    }
    EXPECT_FALSE(IsWindowEnabled(button));
    EXPECT_EQ(list_, GetFocus());
    EXPECT_TRUE(Until([&] { return Has(State(), L" values, then stopped"); }));
    EXPECT_TRUE(IsWindowEnabled(button));
    EXPECT_EQ(std::to_wstring(Rows()) + L" values, then stopped", State());
    EXPECT_TRUE(Until([&] { return Status().find(L"Stopped") == 0; }));
    // Its calls are one row.
    Command(IDM_CALLS);
    const HWND calls = GetDlgItem(FindWindowW(L"#32770", Text(IDS_CALLS_TITLE).c_str()), IDC_ROWS);
    EXPECT_LT(ListView_GetItemCount(calls), 5);
    EXPECT_EQ(std::to_wstring(Rows()) + L" calls of a walk, first: ", CellOf(calls, 0, 3));
}

TEST_F(WalkTests, FailureIsShownOnItsPage) {
    OpenWalk();
    engine_.failure = "no memory";
    Start(L"sysName");
    EXPECT_TRUE(Until([&] { return State() == L"0 values, then: no memory"; }));
    Press(IDCANCEL);
    Command(IDM_ASK);
    EXPECT_TRUE(Until([&] { return Has(PageTexts(window_->Handle()), L";details: no memory;"); }));
    Command(IDM_DIAGNOSE);
    EXPECT_TRUE(Until([&] { return Has(PageTexts(Popup()), L"not finished: no memory;"); }));
    EXPECT_TRUE(Until([&] { return Status().find(L"Stopped") == 0; }));
}

TEST_F(WalkTests, EitherWindowMayBeClosedDuringAWalk) {
    OpenWalk();
    Start(L"ifDescr");
    ASSERT_TRUE(Until([&] { return Rows() > 1; }));
    Press(IDCANCEL);
    EXPECT_FALSE(IsWindow(walk_));
    EXPECT_TRUE(Until([&] { return Status().find(L"Stopped") == 0; }));
    // Another device's walk replaces it, and begins with an empty list.
    OpenWalkOf(L"10.77.1.1");
    Start(L"ifDescr");
    ASSERT_TRUE(Until([&] { return Rows() > 1; }));
    const HWND old = walk_;
    Select(1);
    OpenWalkOf(L"10.77.1.3");
    EXPECT_FALSE(IsWindow(old));
    Start(L"ifDescr");
    EXPECT_TRUE(Until([&] { return Rows() > 1; }));
    EXPECT_EQ(L"ifDescr.1", CellOf(list_, 0, 1));
    Answer({IDNO}, [&] { Close(); });
    EXPECT_FALSE(IsWindow(walk_));
}

}  // namespace
}  // namespace vndiscover::host
