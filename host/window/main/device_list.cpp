#include "window/main/device_list.h"

#include <windowsx.h>

#include "platform/wide_text.h"
#include "window/main/commands.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void DeviceList::Create(HWND parent) {
    list_.Create(parent, IDC_DEVICES, Text(IDS_DEVICES), true);
    columns_.Use(list_);
}

void DeviceList::SetDpi(int dpi) {
    dpi_ = dpi;
    list_.SetDpi(dpi_);
}

void DeviceList::ShowColumns(const Settings& settings) {
    columns_.Show(settings);
    columns_.MarkSorted(session_.view.SortColumn(), session_.view.IsDescending());
}

void DeviceList::Show() {
    const DeviceView& view = session_.view;
    list_.Refresh();
    const auto selected = view.Selected();
    list_.Select(view.Selection(), selected ? static_cast<int>(*selected) : -1);
    columns_.MarkSorted(view.SortColumn(), view.IsDescending());
}

void DeviceList::OnNotify(const NMHDR& header) {
    if (header.code != NM_CLICK) return;
    const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
    if (click.iItem >= 0) chosenColumn_ = columns_.At(static_cast<size_t>(click.iSubItem));
}

void DeviceList::ShowMenu(LPARAM place) {
    const HWND parent = GetParent(list_.Handle());
    ListControl::MenuPlace found = {{GET_X_LPARAM(place), GET_Y_LPARAM(place)}, {}};
    RECT header = {};
    GetWindowRect(ListView_GetHeader(list_.Handle()), &header);
    const auto open = [&](HMENU menu) {
        TrackPopupMenu(menu, TPM_RIGHTBUTTON, found.point.x, found.point.y, 0, parent, nullptr);
    };
    if (place != kByKeyboard && PtInRect(&header, found.point))
        return open(ViewMenuOf(GetMenu(parent)));
    if (!list_.FindMenuPlace(place, found)) return;
    if (found.column) chosenColumn_ = columns_.At(*found.column);
    open(MakeDeviceMenu().Get());
}

std::wstring DeviceList::CellText(size_t row, size_t column) const {
    const DeviceRow& shown = session_.view.Row(row);
    const Column shownColumn = columns_.At(column);
    const bool isChanged = shownColumn == Column::kState && changes_.IsMarked(shown);
    const auto bar = Bar(row, column);
    const std::string mark = bar ? SeverityMark(shown.supplySeverity) : "";
    return (isChanged ? L"\x25CF " : L"") + (mark.empty() ? L"" : ToWide(mark) + L" ") +
           ShownText(shown, shownColumn);
}

std::optional<LevelBar> DeviceList::Bar(size_t row, size_t column) const {
    const DeviceRow& shown = session_.view.Row(row);
    const bool isBar = InfoOf(columns_.At(column)).look == ColumnInfo::Look::kBar;
    if (!isBar || !shown.lowestSupply || !shown.standing.Holds()) return std::nullopt;
    return BarOf(*shown.lowestSupply, shown.supplyColour);
}

void DeviceList::OnHeading(size_t column) {
    const Column chosen = columns_.At(column);
    DeviceView& view = session_.view;
    view.Sort(chosen, view.SortColumn() == chosen && !view.IsDescending());
    Show();
}

// Without a selected row, the selection stays until another one is selected.
void DeviceList::OnSelection() {
    const std::vector<size_t> rows = list_.Selection();
    if (!rows.empty()) session_.view.Select(rows, static_cast<size_t>(list_.Selected()));
}

void DeviceList::OnSelected() {
    if (list_.Selected() >= 0) actions_.onSelected();
}

}  // namespace vndiscover::host
