// The rows of a report, each with a label, a text, and a bar if it is a level.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "model/printer/report.h"
#include "window/controls/list_control.h"
#include "window/controls/placement.h"

namespace vndiscover::host {

// Bold are the result, which is the first row, others with its label, and what is critical.
class FactsModel : protected virtual ListModel {
  protected:
    size_t Count() const override { return rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;
    std::optional<LevelBar> Bar(size_t row, size_t column) const override;
    bool IsBold(size_t row) const override;

    std::vector<ReportRow> rows_;
};

class FactsList : private FactsModel {
  public:
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent, int id, const std::wstring& name);
    HWND Handle() const { return list_.Handle(); }
    void Show(std::vector<ReportRow> rows);
    void Place(Placement& placement, const Box& box, int dpi);
    const ListControl& List() const { return list_; }
    std::function<void()> onSelected;

  private:
    void OnSelected() override {
        if (onSelected) onSelected();
    }

    ListControl list_{*this};
};

}  // namespace vndiscover::host
