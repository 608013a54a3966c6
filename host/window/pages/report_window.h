// A window that shows a report, with the whole text of the selected row below it.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"
#include "window/dialogs/dialogs.h"

namespace vndiscover::host {

class ReportWindow : public ListDialog {
  public:
    // Replaces what the window showed.
    void Open(HWND owner, const std::wstring& title, const Report& report);
    // Has no effect if the user has closed the window.
    void Show(const Report& report);
    using ListDialog::Close;

  private:
    void OnCommand(int id) override;

    std::wstring commands_;  // of the report, each in a line of its own
};

// A window that says why there are no devices, or why one does not answer.
class DoctorWindow {
  public:
    // Begins another report. The window opens when ShowReport is called next. `address`: of the
    // device that is diagnosed; empty: none. `name`: of the device, for the title.
    void Begin(const std::string& address, const std::wstring& name);
    void ShowReport(const ComputerReport& report, HWND owner);
    // Ignores a diagnosis of another device than the report's.
    void ShowDiagnosis(const std::string& address, const HostDiagnosis& diagnosis,
                       const AdapterList& adapters, HWND owner);
    // Shows that the diagnosis was stopped. If it had begun, its result replaces this.
    void Stop(HWND owner);

  private:
    void Show(HWND owner);

    struct Content {
        std::string address;  // of the device; empty: none
        std::wstring name;
        std::optional<ComputerReport> computer{};
        std::optional<HostDiagnosis> diagnosis{};  // empty: not yet known
        std::optional<bool> isOnOwnNetwork{};      // see IsOnOwnNetwork
        bool hasOpened = false;                    // the user may have closed it
    } shown_;
    ReportWindow window_;
};

}  // namespace vndiscover::host
