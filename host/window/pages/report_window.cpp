#include "window/pages/report_window.h"

#include <utility>

#include "device/device.h"
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
    OnSelected();
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

void DoctorWindow::Begin(const std::string& address, const std::wstring& name) {
    window_.Close();
    shown_ = {address, name};
}

void DoctorWindow::ShowReport(const ComputerReport& report, HWND owner) {
    shown_.computer = report;
    Show(owner);
}

void DoctorWindow::ShowDiagnosis(const std::string& address, const HostDiagnosis& diagnosis,
                                 const AdapterList& adapters, HWND owner) {
    if (address != shown_.address) return;
    shown_.diagnosis = diagnosis;
    // A community is not shown where it may be copied, unless it is the default one.
    if (diagnosis.community != CommunityOf({})) shown_.diagnosis->community.clear();
    shown_.isOnOwnNetwork = IsOnOwnNetwork(adapters, address);
    Show(owner);
}

void DoctorWindow::Stop(HWND owner) {
    if (shown_.address.empty() || shown_.diagnosis) return;
    shown_.diagnosis.emplace().isStopped = true;
    Show(owner);
}

void DoctorWindow::Show(HWND owner) {
    if (!shown_.computer) return;  // it will be shown with the report on the computer
    const bool isOfDevice = !shown_.address.empty();
    Report report;
    if (isOfDevice)
        report =
            ReportOf(shown_.diagnosis, shown_.isOnOwnNetwork, "", ToUtf8(Text(IDS_NO_USER_ASKED)));
    const char* const label = isOfDevice ? "This computer" : "Verdict";
    for (ReportSection& section : ReportOf(*shown_.computer, label))
        report.push_back(std::move(section));
    if (std::exchange(shown_.hasOpened, true)) return window_.Show(report);
    window_.Open(owner, Text(isOfDevice ? IDS_DIAGNOSIS_TITLE : IDS_DOCTOR_TITLE, {shown_.name}),
                 report);
}

}  // namespace vndiscover::host
