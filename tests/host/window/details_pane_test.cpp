#include "scripted_window.h"

#include "model/scan/device_view.h"

namespace vndiscover::host {
namespace {

class Details : public MainWindowTest {
  protected:
    // Two devices, of which the first has been asked, while the sweep goes on.
    void OpenWithDevices() {
        OpenWith({{"10.77.1.1", "x"}, {"10.77.1.3", "y"}});
        Command(IDC_FIND);
        SelectNew(0);
    }
    // As if its tab were clicked.
    void ChoosePage(int page) {
        TabCtrl_SetCurSel(Control(IDC_PAGES), page);
        NMHDR chosen = {Control(IDC_PAGES), IDC_PAGES, static_cast<UINT>(TCN_SELCHANGE)};
        SendMessageW(window_->Handle(), WM_NOTIFY, IDC_PAGES, reinterpret_cast<LPARAM>(&chosen));
    }
    std::wstring Page() const { return TextOf(Control(IDC_DETAILS)); }
    std::wstring Value(int row, int column) const {
        return CellOf(Control(IDC_DETAILS), row, column);
    }
    int Rows() const { return ListView_GetItemCount(Control(IDC_DETAILS)); }
};

TEST_F(Details, PageStaysWithAnotherDevice) {
    OpenWithDevices();
    EXPECT_EQ(L"Summary", Page());
    Command(IDM_PREVIOUS_PAGE);
    EXPECT_EQ(L"Answers", Page());
    ASSERT_TRUE(Until([&] { return Rows() == 5; }));
    EXPECT_EQ(L"x", Value(0, 1));
    EXPECT_EQ(L"SNMPv1", Value(0, 2));
    EXPECT_EQ(L"prtGeneralSerialNumber.1", Value(4, 0));
    EXPECT_EQ(L"SERIAL 1", Value(4, 1));
    EXPECT_EQ(L"10.77.1.1", Value(4, 3));
    SetDpi(window_->Handle(), 144, 1100, 620);
    EXPECT_EQ(5, Rows());
    ListView_SetItemState(Control(IDC_DETAILS), 0, LVIS_SELECTED, LVIS_SELECTED);
    Select(1);
    EXPECT_EQ(L"Answers", Page());
    EXPECT_EQ(1, Rows());
    EXPECT_EQ(-1, ListView_GetNextItem(Control(IDC_DETAILS), -1, LVNI_SELECTED));
    EXPECT_EQ(L"y", Value(0, 1));
    // It stays while others are hidden, sorted and added.
    SetWindowTextW(Control(IDC_FILTER), L"10.77.1.3");
    ClickColumn(2);
    engine_.Say("10.77.1.4", "of another device");
    ASSERT_TRUE(
        Until([&] { return TextOf(Control(IDC_DEVICES_LABEL)) == L"Devices (1 of 3 shown)"; }));
    engine_.Say("10.77.1.3", "z");
    EXPECT_TRUE(Until([&] { return Value(0, 1) == L"z"; }));
    EXPECT_EQ(1, Rows()) << "the former answer to the same question";
    Command(IDM_NEXT_PAGE);
    EXPECT_EQ(L"Summary", Page());
    ChoosePage(TabCtrl_GetItemCount(Control(IDC_PAGES)) - 1);
    EXPECT_EQ(L"Answers", Page());
    EXPECT_TRUE(EndsSweeps());
    Answer({IDNO}, [&] { Command(IDM_CLEAR); });
    EXPECT_EQ(0, Rows());
}

TEST_F(Details, WholeTextOfARowCanBeScrolled) {
    const std::string whole(3000, '7');
    OpenWith({{"10.77.1.1", whole}});
    SelectNew(0);
    Command(IDM_PREVIOUS_PAGE);
    ASSERT_TRUE(Until([&] { return Rows() == 5; }));
    const HWND chosen = Control(IDC_CHOSEN);
    for (const int row : {0, 4}) {
        ListView_SetItemState(Control(IDC_DETAILS), row, LVIS_SELECTED, LVIS_SELECTED);
        EXPECT_EQ(row == 0, Has(TextOf(chosen), ToWide(whole)));
        EXPECT_EQ(row == 0, (GetWindowLongW(chosen, GWL_STYLE) & WS_VSCROLL) != 0);
        const LRESULT lines = SendMessageW(chosen, EM_GETLINECOUNT, 0, 0);
        SendMessageW(chosen, EM_LINESCROLL, 0, 1);
        EXPECT_EQ(row == 0, SendMessageW(chosen, EM_GETFIRSTVISIBLELINE, 0, 0) == 1) << lines;
    }
}

// In the same step as all others, unless they need another number of rows.
TEST_F(Details, TabsMoveOnce) {
    Open();
    int moves = 0;
    const auto count = [](HWND tabs, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                          DWORD_PTR moves) -> LRESULT {
        *reinterpret_cast<int*>(moves) += message == WM_WINDOWPOSCHANGING;
        return DefSubclassProc(tabs, message, wParam, lParam);
    };
    SetWindowPos(window_->Handle(), nullptr, 0, 0, 900, 600, SWP_NOMOVE | SWP_NOZORDER);
    SetWindowSubclass(Control(IDC_PAGES), count, 1, reinterpret_cast<DWORD_PTR>(&moves));
    SetWindowPos(window_->Handle(), nullptr, 0, 0, 910, 600, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(1, moves);
    window_.reset();
}

TEST_F(Details, ProtocolsAndInterfacesOfTheDevice) {
    OpenWithDevices();
    ChoosePage(1);
    EXPECT_EQ(L"Protocols", Page());
    EXPECT_TRUE(Until([&] { return Value(2, 1) == L"no answer"; }));  // the other sweep has ended
    EXPECT_EQ(L"SNMPv1", Value(0, 0));
    EXPECT_EQ(L"answered", Value(0, 1));
    EXPECT_EQ(Text(IDS_PROTOCOL_NO_USER), Value(1, 1));
    EXPECT_EQ(L"WS-Discovery", Value(2, 0));
    ChoosePage(2);
    EXPECT_EQ(L"Interfaces", Page());
    EXPECT_TRUE(Until([&] { return Rows() == 1; }));
    EXPECT_EQ(L"LAN", Value(0, 0));
    EXPECT_EQ(L"down", Value(0, 1));
    EXPECT_EQ(L"up", Value(0, 2));
    Select(1);  // which is silent
    EXPECT_EQ(0, Rows());
    const auto empty = [&] { return ListControl::Of(Control(IDC_DETAILS))->EmptyText(); };
    EXPECT_EQ(Text(IDS_NOT_ASKED), empty());
    EXPECT_TRUE(Until([&] { return empty() == L"Interfaces not known: no answer"; }));
    EXPECT_TRUE(EndsSweeps());
}

}  // namespace
}  // namespace vndiscover::host
