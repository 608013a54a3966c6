#include "window/pages/table_window.h"

#include <algorithm>

#include "model/scan/device_writer.h"
#include "platform/wide_text.h"
#include "window/controls/clipboard.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void TableWindow::Open(HWND owner, const std::wstring& title, const std::wstring& note,
                       std::vector<ListColumn> columns, std::vector<Row> rows) {
    Close();
    title_ = title;
    note_ = note;
    columns_ = std::move(columns);
    rows_ = std::move(rows);
    sorted_ = SIZE_MAX;
    OpenDialog(owner, IDD_TABLE);
}

void TableWindow::Show(std::vector<Row> rows) {
    if (!IsOpen()) return;
    rows_ = std::move(rows);
    sorted_ = SIZE_MAX;
    Refresh();
}

void TableWindow::Begin() {
    BeginDialog(title_, IDC_TABLE_ROWS, columns_);
    SetItem(IDC_TABLE_NOTE, note_);
}

void TableWindow::OnHeading(size_t column) {
    isDescending_ = sorted_ == column && !isDescending_;
    sorted_ = column;
    std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& one, const Row& other) {
        const int order = CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, one[column].c_str(),
                                         -1, other[column].c_str(), -1);
        return isDescending_ ? order == CSTR_GREATER_THAN : order == CSTR_LESS_THAN;
    });
    Refresh();
}

void TableWindow::OnCommand(int id) {
    if (id == IDC_TABLE_COPY) CopyText(dialog_, list_.TableText(true));
    if (id != IDC_TABLE_SAVE) return;
    std::vector<std::string> cells;
    for (const ListColumn& column : columns_) cells.push_back(ToUtf8(Text(column.heading)));
    std::string csv = kByteOrderMark + CsvLine(cells, ListSeparator());
    for (const Row& row : rows_) {
        for (size_t column = 0; column < cells.size(); ++column)
            cells[column] = ToUtf8(row[column]);
        csv += CsvLine(cells, ListSeparator());
    }
    save_(csv);
}

std::string ListSeparator() {
    wchar_t separator[8] = L"";
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SLIST, separator, 8);
    return separator[0] == L'\0' ? "," : ToUtf8(separator);
}

}  // namespace vndiscover::host
