#include "window/pages/table_window.h"

#include <algorithm>
#include <cwchar>
#include <numeric>

#include "model/scan/device_writer.h"
#include "platform/wide_text.h"
#include "values/utc_time.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void TableWindow::Open(HWND owner, const std::wstring& title, std::vector<ListColumn> columns) {
    Close();
    order_.clear();
    sorted_ = SIZE_MAX;
    isDescending_ = false;
    OpenDialog(owner, {IDD_TABLE, title, std::move(columns)});
}

void TableWindow::Show(const std::wstring& note, std::vector<ListRow> rows) {
    if (!IsOpen()) return;
    const ListRow chosen = Chosen();
    order_.clear();  // it has indexes of the former rows
    rows_ = std::move(rows);
    SetItem(IDC_TABLE_NOTE, note);
    Arrange(chosen);
}

ListRow TableWindow::Chosen() const {
    const auto row = static_cast<size_t>(list_.Selected());  // -1: none has that number
    return row < order_.size() ? rows_[order_[row]] : ListRow();
}

std::wstring TableWindow::CellText(size_t row, size_t column) const {
    const ListRow& shown = rows_[order_[row]];
    const std::wstring& text = shown.cells[column];
    if (shown.hasCounts && column > 1) return GroupedCounts(text);
    return IsTime(column) ? ToWide(ShortTime(ToUtf8(text))) : text;
}

void TableWindow::OnHeading(size_t column) {
    isDescending_ = sorted_ == column && !isDescending_;
    sorted_ = column;
    list_.MarkSorted(static_cast<int>(column), isDescending_);
    Arrange(Chosen());
}

void TableWindow::Arrange(const ListRow& chosen) {
    order_.resize(rows_.size());
    std::iota(order_.begin(), order_.end(), size_t{0});
    const bool isArrival = sorted_ == SIZE_MAX || IsTime(sorted_);
    if (isDescending_) std::reverse(order_.begin(), order_.end());
    std::stable_sort(order_.begin(), order_.end(), [&](size_t one, size_t other) {
        if (isArrival) return false;
        if (isDescending_) std::swap(one, other);
        const std::wstring& less = rows_[one].cells[sorted_];
        const std::wstring& more = rows_[other].cells[sorted_];
        const long first = std::wcstol(less.c_str(), nullptr, 10);
        const long second = std::wcstol(more.c_str(), nullptr, 10);
        if (first != second) return first < second;  // "9 %" and "10 %"
        return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, less.c_str(), -1, more.c_str(),
                              -1) == CSTR_LESS_THAN;
    });
    list_.Refresh();
    // The selection stays with its row. If that is gone, the first row is selected.
    const auto at = std::find_if(order_.begin(), order_.end(),
                                 [&](size_t index) { return rows_[index] == chosen; });
    if (Count() != 0) list_.Select(at == order_.end() ? 0 : static_cast<int>(at - order_.begin()));
    OnSelected();
}

void TableWindow::OnSelected() {
    ListDialog::OnSelected();
    EnableWindow(Item(IDC_TABLE_SAVE), Count() != 0);
}

void TableWindow::OnCommand(int id) {
    if (id != IDC_TABLE_SAVE) return;
    std::vector<unsigned> headings;
    for (const ListColumn& column : form_.columns) headings.push_back(column.heading);
    save_(CsvText(headings, Count(), [&](size_t row, size_t column) {
        const std::wstring& text = rows_[order_[row]].cells[column];
        return IsTime(column) ? LocalTime(ToUtf8(text)) : text;
    }));
}

std::string CsvText(const std::vector<unsigned>& headings, size_t rows,
                    const std::function<std::wstring(size_t row, size_t column)>& cell) {
    wchar_t list[8] = L"";
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SLIST, list, 8);
    const std::string separator = list[0] == L'\0' ? "," : ToUtf8(list);
    std::vector<std::string> cells;
    cells.reserve(headings.size());
    for (const unsigned heading : headings) cells.push_back(ToUtf8(HeadingText(heading)));
    std::string csv = kByteOrderMark + CsvLine(cells, separator);
    for (size_t row = 0; row < rows; ++row) {
        for (size_t column = 0; column < cells.size(); ++column)
            cells[column] = ToUtf8(cell(row, column));
        csv += CsvLine(cells, separator);
    }
    return csv;
}

}  // namespace vndiscover::host
