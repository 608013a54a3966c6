#include "window/table_list.h"

#include <algorithm>
#include <utility>

#include "window/facts_list.h"
#include "window/strings.h"

namespace vndiscover::host {

void TableList::Create(HWND parent, int id) {
    Attach(CreateWindowExW(
        WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"",
        WS_CHILD | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS, 0,
        0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
        GetModuleHandleW(nullptr), nullptr));
}

void TableList::Attach(HWND list) {
    list_ = list;
    rows_ = columns_ = 0;
    ListView_SetExtendedListViewStyle(list_,
                                      LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
}

void TableList::Begin(const std::wstring& name, const std::vector<TableColumn>& columns, int dpi) {
    Show(0, nullptr);
    SetWindowTextW(list_, name.c_str());
    const HIMAGELIST old = ListView_SetImageList(list_, MakeRowSpace(dpi), LVSIL_SMALL);
    if (old) ImageList_Destroy(old);
    while (ListView_DeleteColumn(list_, 0)) continue;
    columns_ = columns.size();
    for (size_t index = 0; index < columns_; ++index) {
        std::wstring heading = Text(columns[index].heading);
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = MulDiv(columns[index].width, dpi, 96);
        column.pszText = heading.data();
        SendMessageW(list_, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&column));
    }
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
    if (!(item.mask & LVIF_TEXT) || row >= rows_ || column >= columns_) return;
    lstrcpynW(item.pszText, cell_(row, column).c_str(), item.cchTextMax);
}

}  // namespace vndiscover::host
