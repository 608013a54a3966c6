// A window that shows a report, with the whole text of the selected row below it.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/printer/report.h"
#include "window/dialogs/dialogs.h"

namespace vndiscover::host {

class ReportWindow : public ListDialog {
  public:
    // Replaces what the window showed.
    void Open(HWND owner, const std::wstring& title, std::vector<ReportRow> rows);
    // Has no effect if the user has closed the window.
    void Show(std::vector<ReportRow> rows);
    using ListDialog::Close;

  private:
    void Begin() override;
    void OnCommand(int id) override;
    void OnSelected() override;
    size_t Count() const override { return rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;
    std::optional<LevelBar> Bar(size_t row, size_t column) const override;
    bool IsBold(size_t row) const override;
    // One a line; empty: there are none.
    std::wstring Commands() const;

    std::wstring title_;
    std::vector<ReportRow> rows_;
};

}  // namespace vndiscover::host
