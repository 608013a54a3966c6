// A window that shows a report, with the whole text of the selected row below it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "window/controls/facts_list.h"
#include "window/dialogs/dialogs.h"

namespace vndiscover::host {

class ReportWindow : public ListDialog, private FactsModel {
  public:
    // Replaces what the window showed.
    void Open(HWND owner, const std::wstring& title, std::vector<ReportRow> rows);
    // Has no effect if the user has closed the window.
    void Show(std::vector<ReportRow> rows);
    using ListDialog::Close;

  private:
    void Begin() override;
    void OnCommand(int id) override;
    // One a line; empty: there are none.
    std::wstring Commands() const;

    std::wstring title_;
};

}  // namespace vndiscover::host
