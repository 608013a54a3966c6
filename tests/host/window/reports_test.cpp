// Each row of a report is on the window's page and in the console's text.
#include <algorithm>

#include "model/computer/computer_report.h"
#include "model/printer/report.h"
#include "scripted_window.h"
#include "window/pages/report_window.h"

namespace vndiscover::host {
namespace {

std::string WithoutSpaces(std::string text) {
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }),
        text.end());
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
        size_t rows = 0;
        for (const ReportSection& section : report) {
            if (!section.rows.empty()) {
                EXPECT_NE(std::string::npos, shown.find(WithoutSpaces(section.title)));
                EXPECT_NE(std::string::npos, console.find(WithoutSpaces(section.title)));
            }
            for (const ReportRow& row : section.rows) {
                const std::string text = WithoutSpaces(WholeText(row));
                EXPECT_NE(std::string::npos, shown.find("|" + text)) << shown;
                EXPECT_NE(std::string::npos, shown.find(WithoutSpaces(row.label))) << shown;
                EXPECT_NE(std::string::npos, console.find(text)) << console;
                EXPECT_NE(std::string::npos, console.find(WithoutSpaces(row.label))) << console;
                ++rows;
            }
        }
        EXPECT_LT(3u, rows);
    }
    DestroyWindow(owner);
}

}  // namespace
}  // namespace vndiscover::host
