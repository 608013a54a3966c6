#include "window/pages/doctor_page.h"

#include "platform/wide_text.h"
#include "window/pages/page_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void DoctorPage::Begin(const std::string& address) {
    report_.reset();
    device_ = {address, {}, {}};
    page_ = nullptr;
}

void DoctorPage::Take(const Event& event, HWND owner) {
    if (event.kind == Event::kReport) {
        report_ = event.report;
    } else if (event.kind == Event::kDiagnosed && event.address == device_.address) {
        device_.diagnosis = event.diagnosis;
        device_.isOnOwnNetwork = IsOnOwnNetwork(event.adapters, event.address);
    } else {
        return;
    }
    if (report_) Show(owner);
}

void DoctorPage::Stop(HWND owner) {
    if (device_.address.empty() || device_.diagnosis) return;
    device_.diagnosis.emplace().isStopped = true;
    if (report_) Show(owner);
}

void DoctorPage::Show(HWND owner) {
    const bool hasDevice = !device_.address.empty();
    std::vector<Fact> facts = DoctorFacts(*report_, hasDevice ? &device_ : nullptr);
    if (page_) return ShowInPage(page_, std::move(facts));
    page_ = OpenPage(
        owner,
        hasDevice ? Text(IDS_DIAGNOSIS_TITLE, {ToWide(device_.address)}) : Text(IDS_DOCTOR_TITLE),
        std::move(facts));
}

}  // namespace vndiscover::host
