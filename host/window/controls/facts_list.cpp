#include "window/controls/facts_list.h"

#include "platform/wide_text.h"

namespace vndiscover::host {

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
