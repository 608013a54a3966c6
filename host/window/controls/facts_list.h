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

// Of a row's cell. Bold are the result, which is the first row, and what is critical.
std::wstring FactText(const ReportRow& row, size_t column);
std::optional<LevelBar> FactBar(const ReportRow& row, size_t column);
bool IsBoldFact(const std::vector<ReportRow>& rows, size_t row);

class FactsList : private ListModel {
  public:
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent, int id, const std::wstring& name);
    HWND Handle() const { return list_.Handle(); }
    void Show(std::vector<ReportRow> rows);
    void Place(Placement& placement, const Box& box, int dpi);
    const ListControl& List() const { return list_; }
    std::function<void()> onSelected;

  private:
    size_t Count() const override { return rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override {
        return FactText(rows_[row], column);
    }
    std::optional<LevelBar> Bar(size_t row, size_t column) const override {
        return FactBar(rows_[row], column);
    }
    bool IsBold(size_t row) const override { return IsBoldFact(rows_, row); }
    void OnSelected() override {
        if (onSelected) onSelected();
    }

    ListControl list_{*this};
    std::vector<ReportRow> rows_;
};

}  // namespace vndiscover::host
