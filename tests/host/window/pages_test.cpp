// The details of a device, and reports on pages of their own.
#include "model/computer/computer_report.h"
#include "model/printer/report.h"
#include "model/scan/device_view.h"
#include "scripted_window.h"
#include "values/ranges.h"
#include "window/pages/report_window.h"

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

std::string WithoutSpaces(std::string text) {
    EraseIf(text, [](char letter) { return letter == ' ' || letter == '\n'; });
    return text;
}

Report OfPrinter() {
    PrinterFacts facts;
    facts.model = "VN LaserPro 410";
    facts.errors = std::vector<std::string>{"lowPaper", "doorOpen"};
    facts.supplies = {{"Toner", "black", "tonerCartridge", {3, 10, "", false, false}}};
    facts.alerts = {{"critical", "cover", "coverOpen", "Door A", 100}};
    facts.gaps = {{"panel", "", "not asked for"}, {"name", "sysName", "no answer"}};
    return ReportOf(facts, {"10.77.1.20", "SNMPv1"});
}

Report OfComputer() {
    ComputerReport computer;
    computer.ipv4.rows = {{"10.77.1.1", "eth0", "", "Ethernet", "up", 2}};
    computer.routes = {{"255.255.255.255", "eth0", "10.77.1.1", "10.77.1.254"}};
    computer.firewall.isKnown = true;
    computer.firewall.ports = {{"public", 161, Passage::kClosed, "no rule lets them in"}};
    computer.firewall.commands = {"netsh advfirewall firewall add rule name=VnDiscover"};
    computer.causes = {"no route for the multicast"};
    computer.notes = {"the log is on"};
    computer.log.file = true;
    return ReportOf(computer);
}

Report OfDevice() {
    HostDiagnosis diagnosis;
    diagnosis.ping.outcome = Outcome::kAnswered;
    diagnosis.v1.outcome = Outcome::kSilent;
    diagnosis.community = "office";
    diagnosis.user = {Outcome::kRefused, "the device does not know this user"};
    return ReportOf(diagnosis, false);
}

TEST(Reports, CommandsAreCopiedAndLongTextsShownWhole) {
    const HWND owner = CreateWindowW(L"STATIC", L"", WS_VISIBLE, 0, 0, 900, 500, nullptr, nullptr,
                                     nullptr, nullptr);
    ReportWindow report;
    report.Open(owner, L"", OfComputer());
    const HWND page = PopupOf(owner);
    const HWND list = GetDlgItem(page, IDC_DETAILS), chosen = GetDlgItem(page, IDC_CHOSEN);
    Press(page, IDC_COPY_COMMANDS);
    EXPECT_EQ(L"netsh advfirewall firewall add rule name=VnDiscover\r\n", Copied());
    EXPECT_EQ(CellOf(list, 0, 0) + L": " + CellOf(list, 0, 1), TextOf(chosen));
    SendMessageW(list, WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_EQ(CellOf(list, 1, 0) + L": " + CellOf(list, 1, 1), TextOf(chosen));
    report.Show(OfDevice());
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(page, IDC_COPY_COMMANDS)));
    report.Show(OfPrinter());
    SendMessageW(list, WM_KEYDOWN, VK_END, 1);
    EXPECT_THAT(TextOf(chosen), HasSubstr(L"no answer (sysName)"));
    DestroyWindow(owner);
}

TEST(Reports, AreTheSameOnAPageAndInTheConsole) {
    const HWND owner =
        CreateWindowW(L"STATIC", L"", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    for (const Report& report : {OfPrinter(), OfComputer(), OfDevice()}) {
        const std::string console = WithoutSpaces(ReportText(report));
        ReportWindow page;
        page.Open(owner, L"", report);
        const HWND list = GetDlgItem(PopupOf(owner), IDC_DETAILS);
        std::string shown;
        for (int row = 0; row < ListView_GetItemCount(list); ++row)
            shown += ToUtf8(CellOf(list, row, 0) + L"|" + CellOf(list, row, 1) + L"\n");
        shown = WithoutSpaces(shown);
        for (const ReportSection& section : report) {
            for (const ReportRow& row : section.rows) {
                const std::string text = WithoutSpaces(WholeText(row));
                EXPECT_THAT(shown, HasSubstr("|" + text));
                for (const std::string& part :
                     {WithoutSpaces(section.title), WithoutSpaces(row.label), text}) {
                    EXPECT_THAT(shown, HasSubstr(part));
                    EXPECT_THAT(console, HasSubstr(part));
                }
            }
        }
        EXPECT_LT(3, ListView_GetItemCount(list));
    }
    DestroyWindow(owner);
}

}  // namespace
}  // namespace vndiscover::host
