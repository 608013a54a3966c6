// The rows of a report, each with a label, a text, and a bar if it is a level.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "model/printer/report.h"
#include "window/controls/list_control.h"

namespace vndiscover::host {

class FactsList : private ListModel {
  public:
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent, int id, const std::wstring& name);
    HWND Handle() const { return list_.Handle(); }
    void Show(std::vector<ReportRow> rows);
    void Resize(const RECT& place, int dpi);

  private:
    size_t Count() const override { return rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;
    std::optional<LevelBar> Bar(size_t row, size_t column) const override;

    ListControl list_{*this};
    std::vector<ReportRow> rows_;
};

}  // namespace vndiscover::host
