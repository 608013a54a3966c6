#include "window/controls/lists.h"

#include "window/strings.h"

namespace vndiscover::host {

HWND MakeList(HWND parent, int id, const std::wstring& name, DWORD extended) {
    const HWND list =
        CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, name.c_str(),
                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA |
                            LVS_SINGLESEL | LVS_SHOWSELALWAYS,
                        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                        GetModuleHandleW(nullptr), nullptr);
    StyleList(list, extended);
    return list;
}

void StyleList(HWND list, DWORD extended) {
    ListView_SetExtendedListViewStyle(
        list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP | extended);
}

void AddColumn(HWND list, const std::wstring& heading, int width) {
    std::wstring text = heading;
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = width;
    column.pszText = text.data();
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(CountColumns(list)),
                 reinterpret_cast<LPARAM>(&column));
}

int CountColumns(HWND list) { return Header_GetItemCount(ListView_GetHeader(list)); }

void GiveText(LVITEMW& item, const std::wstring& text) {
    if (item.mask & LVIF_TEXT) lstrcpynW(item.pszText, text.c_str(), item.cchTextMax);
}

LRESULT GiveEmptyText(NMHDR* header, unsigned text) {
    auto* markup = reinterpret_cast<NMLVEMPTYMARKUP*>(header);
    markup->dwFlags = EMF_CENTERED;
    lstrcpynW(markup->szMarkup, Text(text).c_str(), L_MAX_URL_LENGTH);
    return TRUE;
}

void SelectRow(HWND list, int row) {
    constexpr UINT kSelected = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list, -1, 0, kSelected);
    if (row >= 0) ListView_SetItemState(list, row, kSelected, kSelected);
}

int SelectedRow(HWND list) { return ListView_GetNextItem(list, -1, LVNI_SELECTED); }

void SetRowHeight(HWND list, int dpi) {
    SetImages(list, ImageList_Create(1, MulDiv(18, dpi, 96), ILC_COLOR, 1, 0));
}

void SetImages(HWND list, HIMAGELIST images) {
    const HIMAGELIST old = ListView_SetImageList(list, images, LVSIL_SMALL);
    if (old) ImageList_Destroy(old);
}

}  // namespace vndiscover::host
