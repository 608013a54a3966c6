#include "window/pages/report_window.h"

#include <utility>

#include "device/device.h"
#include "model/computer/computer_report.h"
#include "platform/wide_text.h"
#include "window/controls/clipboard.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void ReportWindow::Open(HWND owner, const std::wstring& title, const Report& report) {
    Close();
    OpenDialog(owner, {IDD_REPORT, title, {{IDS_FACT_WHAT, 150}, {IDS_FACT_VALUE, 400}}});
    Show(report);
    list_.Select(0);
    if (IsOpen()) OnSelected();
}

void ReportWindow::Show(const Report& report) {
    if (!IsOpen()) return;
    rows_ = ListRowsOf(report);
    commands_.clear();
    for (const ReportSection& section : report) {
        for (const ReportRow& row : section.rows)
            if (row.isCommand) commands_ += ToWide(row.text) + L"\r\n";
    }
    ShowWindow(Item(IDC_COPY_COMMANDS), commands_.empty() ? SW_HIDE : SW_SHOWNA);
    Refresh();
}

void ReportWindow::OnCommand(int id) {
    if (id == IDC_COPY_COMMANDS) CopyText(dialog_, commands_);
}

void DoctorWindow::Begin(const std::string& address) {
    page_.Close();
    hasOpened_ = false;
    report_.reset();
    diagnosis_.reset();
    isOnOwnNetwork_.reset();
    address_ = address;
}

void DoctorWindow::ShowReport(const ComputerReport& report, HWND owner) {
    report_ = report;
    Show(owner);
}

void DoctorWindow::ShowDiagnosis(const std::string& address, const HostDiagnosis& diagnosis,
                                 const AdapterList& adapters, HWND owner) {
    if (address != address_) return;
    diagnosis_ = diagnosis;
    // As in the calls, a community is not shown where it may be copied; the default one is no
    // secret.
    if (diagnosis.community != CommunityOf({})) diagnosis_->community.clear();
    isOnOwnNetwork_ = IsOnOwnNetwork(adapters, address);
    if (report_) Show(owner);
}

void DoctorWindow::Stop(HWND owner) {
    if (address_.empty() || diagnosis_) return;
    diagnosis_.emplace().isStopped = true;
    if (report_) Show(owner);
}

void DoctorWindow::Show(HWND owner) {
    Report report;
    if (!address_.empty()) report = ReportOf(diagnosis_, isOnOwnNetwork_);
    // The verdict tells of the engine.
    if (diagnosis_ && !diagnosis_->hasUser && diagnosis_->discovery.outcome == Outcome::kAnswered) {
        for (ReportRow& row : report.front().rows)
            if (row.label == kUserStep) row.text = ToUtf8(Text(IDS_NO_USER_ASKED));
    }
    const char* const label = address_.empty() ? "Verdict" : "This computer";
    for (ReportSection& section : ReportOf(*report_, label)) report.push_back(std::move(section));
    if (std::exchange(hasOpened_, true)) return page_.Show(report);
    page_.Open(
        owner,
        address_.empty() ? Text(IDS_DOCTOR_TITLE) : Text(IDS_DIAGNOSIS_TITLE, {ToWide(address_)}),
        report);
}

}  // namespace vndiscover::host
