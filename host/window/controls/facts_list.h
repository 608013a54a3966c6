// The rows of a report, each with a label, a text, and a bar if it is a level.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/printer/report.h"
#include "window/controls/list_control.h"

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

}  // namespace vndiscover::host
