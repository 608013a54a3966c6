#include "window/main/device_list.h"

#include <windowsx.h>

#include "platform/wide_text.h"
#include "window/controls/facts_list.h"
#include "window/controls/list_copy.h"
#include "window/controls/lists.h"
#include "window/main/menu.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void DeviceList::Create(HWND parent) {
    list_ = MakeList(parent, IDC_DEVICES, Text(IDS_DEVICES), LVS_EX_HEADERDRAGDROP);
    columns_.Use(list_);
}

void DeviceList::SetDpi(int dpi) {
    dpi_ = dpi;
    SetRowHeight(list_, dpi_);
}

void DeviceList::ShowColumns(const Settings& settings) {
    columns_.Show(settings, dpi_);
    columns_.MarkSorted(session_.view.SortColumn(), session_.view.IsDescending());
}

void DeviceList::Show() {
    isShowing_ = true;
    const DeviceView& view = session_.view;
    ListView_SetItemCountEx(list_, static_cast<int>(view.Count()), LVSICF_NOSCROLL);
    const auto selected = view.Selected();
    const int row = selected ? static_cast<int>(*selected) : -1;
    if (SelectedRow(list_) != row) SelectRow(list_, row);
    columns_.MarkSorted(view.SortColumn(), view.IsDescending());
    InvalidateRect(list_, nullptr, FALSE);
    isShowing_ = false;
}

LRESULT DeviceList::OnNotify(NMHDR* header) {
    switch (header->code) {
        case LVN_GETDISPINFOW:
            FillCell(reinterpret_cast<NMLVDISPINFOW*>(header)->item);
            return 0;
        case LVN_COLUMNCLICK:
            ClickColumn(reinterpret_cast<NMLISTVIEW*>(header)->iSubItem);
            return 0;
        case LVN_ITEMCHANGED:
            if (!isShowing_) OnSelected();
            return 0;
        case NM_CLICK:
            if (const auto* click = reinterpret_cast<NMITEMACTIVATE*>(header); click->iItem >= 0)
                chosenColumn_ = columns_.At(click->iSubItem);
            return 0;
        case LVN_GETEMPTYMARKUP:
            return GiveEmptyText(header, actions_.emptyText());
        case NM_CUSTOMDRAW:
            return DrawCell(*reinterpret_cast<NMLVCUSTOMDRAW*>(header));
        default:
            return 0;
    }
}

void DeviceList::ShowMenu(LPARAM place) {
    const HWND parent = GetParent(list_);
    POINT point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    RECT header = {};
    GetWindowRect(ListView_GetHeader(list_), &header);
    if (place != kByKeyboard && PtInRect(&header, point)) {
        TrackPopupMenu(ViewMenuOf(GetMenu(parent)), TPM_RIGHTBUTTON, point.x, point.y, 0, parent,
                       nullptr);
        return;
    }
    if (place == kByKeyboard) {
        point = BelowSelected(list_);
    } else {
        LVHITTESTINFO cell = {};
        cell.pt = point;
        ScreenToClient(list_, &cell.pt);
        if (ListView_SubItemHitTest(list_, &cell) < 0) return;
        chosenColumn_ = columns_.At(cell.iSubItem);
    }
    const HMENU menu = MakeDeviceMenu();
    TrackPopupMenu(menu, TPM_RIGHTBUTTON, point.x, point.y, 0, parent, nullptr);
    DestroyMenu(menu);
}

void DeviceList::FillCell(LVITEMW& item) const {
    const auto row = static_cast<size_t>(item.iItem);
    if (row >= session_.view.Count()) return;
    GiveText(item, CellText(session_.view.Row(row), columns_.At(item.iSubItem)));
}

LRESULT DeviceList::DrawCell(NMLVCUSTOMDRAW& draw) const {
    const auto row = static_cast<size_t>(draw.nmcd.dwItemSpec);
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
        case CDDS_ITEMPREPAINT:
            return CDRF_NOTIFYITEMDRAW;  // for cells it is the same number
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM:
            break;
        default:
            return CDRF_DODEFAULT;
    }
    if (columns_.At(draw.iSubItem) != Column::kSupplies || row >= session_.view.Count())
        return CDRF_DODEFAULT;
    const DeviceRow& device = session_.view.Row(row);
    if (!device.lowestSupply) return CDRF_DODEFAULT;
    RECT cell = {};
    ListView_GetSubItemRect(list_, static_cast<int>(row), draw.iSubItem, LVIR_LABEL, &cell);
    DrawBar(draw, cell, *device.lowestSupply, ToWide(device.Text(Column::kSupplies)), dpi_);
    return CDRF_SKIPDEFAULT;
}

void DeviceList::ClickColumn(int column) {
    const Column chosen = columns_.At(column);
    DeviceView& view = session_.view;
    view.Sort(chosen, view.SortColumn() == chosen && !view.IsDescending());
    Show();
}

void DeviceList::OnSelected() {
    const int row = SelectedRow(list_);
    if (row < 0) return;  // no row yet: the selection stays until another one is selected
    session_.view.Select(static_cast<size_t>(row));
    actions_.onSelected();
}

std::wstring DeviceList::CellText(const DeviceRow& row, Column column) const {
    const std::string& text = row.Text(column);
    return column == Column::kLastSeen ? LocalTime(text) : ToWide(text);
}

std::wstring DeviceList::RowText(const DeviceRow& row) const {
    std::wstring line;
    for (const Heading& heading : columns_.Headings())
        line += RowCell(CellText(row, heading.column)) + L"\t";
    line.pop_back();
    return line + L"\r\n";
}

std::wstring DeviceList::TableText() const {
    std::wstring table;
    for (const Heading& heading : columns_.Headings())
        table += (table.empty() ? L"" : L"\t") + ToWide(heading.text);
    table += L"\r\n";
    for (size_t index = 0; index < session_.view.Count(); ++index)
        table += RowText(session_.view.Row(index));
    return table;
}

}  // namespace vndiscover::host
