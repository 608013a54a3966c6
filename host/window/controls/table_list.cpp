#include "window/controls/table_list.h"

#include <algorithm>
#include <utility>

#include "window/controls/lists.h"
#include "window/strings.h"

namespace vndiscover::host {

void TableList::Create(HWND parent, int id) { Attach(MakeList(parent, id, L"")); }

void TableList::Attach(HWND list) {
    list_ = list;
    rows_ = columns_ = 0;
    StyleList(list);
}

void TableList::Begin(const std::wstring& name, const std::vector<TableColumn>& columns, int dpi) {
    Show(0, nullptr);
    SetWindowTextW(list_, name.c_str());
    SetRowHeight(list_, dpi);
    while (ListView_DeleteColumn(list_, 0)) continue;
    columns_ = columns.size();
    for (const TableColumn& column : columns)
        AddColumn(list_, Text(column.heading), MulDiv(column.width, dpi, 96));
}

void TableList::Fit(int minimum) {
    if (columns_ == 0) return;
    RECT client = {};
    GetClientRect(list_, &client);
    int rest = client.right;
    for (size_t index = 0; index + 1 < columns_; ++index)
        rest -= ListView_GetColumnWidth(list_, static_cast<int>(index));
    ListView_SetColumnWidth(list_, static_cast<int>(columns_) - 1, std::max(rest, minimum));
}

void TableList::Show(size_t rows, CellText cell) {
    cell_ = std::move(cell);
    rows_ = rows;
    ListView_SetItemCountEx(list_, static_cast<int>(rows), LVSICF_NOSCROLL);
    InvalidateRect(list_, nullptr, FALSE);
}

void TableList::OnNotify(NMHDR* header) const {
    if (header->code != LVN_GETDISPINFOW) return;
    LVITEMW& item = reinterpret_cast<NMLVDISPINFOW*>(header)->item;
    const auto row = static_cast<size_t>(item.iItem), column = static_cast<size_t>(item.iSubItem);
    if (row < rows_ && column < columns_) GiveText(item, cell_(row, column));
}

}  // namespace vndiscover::host
