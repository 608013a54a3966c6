// The page that tells why there are no devices, or why one does not answer.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"

namespace vndiscover::host {

class DoctorPage {
  public:
    // Begins another page, which opens with the next report on this computer. `address`: of the
    // device that is diagnosed; empty: none.
    void Begin(const std::string& address);
    // Opens or refreshes the page.
    void ShowReport(const ComputerReport& report, HWND owner);
    // A diagnosis of another device than the page's is ignored.
    void ShowDiagnosis(const std::string& address, const HostDiagnosis& diagnosis,
                       const AdapterList& adapters, HWND owner);
    // The diagnosis was stopped. One that has begun is shown once its last step is over.
    void Stop(HWND owner);

  private:
    void Show(HWND owner);

    std::optional<ComputerReport> report_;
    std::string address_;                     // of the device; empty: none
    std::optional<HostDiagnosis> diagnosis_;  // empty: not yet known
    std::optional<bool> isOnOwnNetwork_;      // see IsOnOwnNetwork
    HWND page_ = nullptr;
};

}  // namespace vndiscover::host
