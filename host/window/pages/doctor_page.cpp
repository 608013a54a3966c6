#include "window/pages/doctor_page.h"

#include "model/computer/doctor_report.h"
#include "platform/wide_text.h"
#include "window/pages/page_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void DoctorPage::Begin(const std::string& address) {
    report_.reset();
    address_ = address;
    diagnosis_.reset();
    isOnOwnNetwork_.reset();
    page_ = nullptr;
}

void DoctorPage::ShowReport(const ComputerReport& report, HWND owner) {
    report_ = report;
    Show(owner);
}

void DoctorPage::ShowDiagnosis(const std::string& address, const HostDiagnosis& diagnosis,
                               const AdapterList& adapters, HWND owner) {
    if (address != address_) return;
    diagnosis_ = diagnosis;
    isOnOwnNetwork_ = IsOnOwnNetwork(adapters, address);
    if (report_) Show(owner);
}

void DoctorPage::Stop(HWND owner) {
    if (address_.empty() || diagnosis_) return;
    diagnosis_.emplace().isStopped = true;
    if (report_) Show(owner);
}

void DoctorPage::Show(HWND owner) {
    Report report;
    if (!address_.empty()) report = ReportOf(diagnosis_, isOnOwnNetwork_);
    for (ReportSection& section : ReportOf(*report_)) report.push_back(std::move(section));
    std::vector<ReportRow> rows = RowsOf(report);
    if (page_) return ShowInPage(page_, std::move(rows));
    page_ = OpenPage(
        owner,
        address_.empty() ? Text(IDS_DOCTOR_TITLE) : Text(IDS_DIAGNOSIS_TITLE, {ToWide(address_)}),
        std::move(rows));
}

}  // namespace vndiscover::host
