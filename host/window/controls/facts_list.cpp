#include "window/controls/facts_list.h"

#include <algorithm>

#include "platform/wide_text.h"
#include "window/controls/placement.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void FactsList::Create(HWND parent, int id, const std::wstring& name) {
    list_.Create(parent, id, name);
    list_.SetColumns({{IDS_FACT_WHAT, 100}, {IDS_FACT_VALUE, 100}});
}

void FactsList::Show(std::vector<ReportRow> rows) {
    if (rows == rows_) return;
    rows_ = std::move(rows);
    list_.Refresh();
}

void FactsList::Place(Placement& placement, const Box& box, int dpi) {
    list_.SetDpi(dpi);
    placement.Move(list_.Handle(), box);
    const int width = box.width - ScrollBarWidth(dpi) - Scaled(6, dpi);
    const int labels = std::min(Scaled(150, dpi), width / 3);
    ListView_SetColumnWidth(list_.Handle(), 0, labels);
    ListView_SetColumnWidth(list_.Handle(), 1, std::max(0, width - labels));
}

std::wstring FactsModel::CellText(size_t row, size_t column) const {
    return ToWide(column == 0 ? rows_[row].label : WholeText(rows_[row]));
}

std::optional<LevelBar> FactsModel::Bar(size_t row, size_t column) const {
    const auto percent = rows_[row].percent;
    if (column != 1 || !percent) return std::nullopt;
    return BarOf(*percent, rows_[row].colour);
}

bool FactsModel::IsBold(size_t row) const {
    const std::string& label = rows_[row].label;
    const bool isResult = !label.empty() && label == rows_.front().label;
    return isResult || rows_[row].severity == Severity::kCritical;
}

}  // namespace vndiscover::host
