#include "window/pages/report_window.h"

#include <utility>

#include "platform/wide_text.h"
#include "window/controls/clipboard.h"
#include "window/resource.h"

namespace vndiscover::host {

void ReportWindow::Open(HWND owner, const std::wstring& title, std::vector<ReportRow> rows) {
    Close();
    title_ = title;
    rows_ = std::move(rows);
    OpenDialog(owner, IDD_REPORT);
}

void ReportWindow::Show(std::vector<ReportRow> rows) {
    if (!IsOpen()) return;
    rows_ = std::move(rows);
    ShowWindow(Item(IDC_COPY_COMMANDS), Commands().empty() ? SW_HIDE : SW_SHOWNA);
    Refresh();
}

void ReportWindow::Begin() {
    BeginDialog(title_, IDC_DETAILS, {{IDS_FACT_WHAT, 150}, {IDS_FACT_VALUE, 400}});
    list_.Select(0);
    Show(std::move(rows_));
}

void ReportWindow::OnCommand(int id) {
    if (id == IDC_COPY_COMMANDS) CopyText(dialog_, Commands());
}

std::wstring ReportWindow::Commands() const {
    std::wstring commands;
    for (const ReportRow& row : rows_) {
        if (row.isCommand) commands += ToWide(row.text) + L"\r\n";
    }
    return commands;
}

}  // namespace vndiscover::host
