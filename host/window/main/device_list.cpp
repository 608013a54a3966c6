#include "window/main/device_list.h"

#include <windowsx.h>
#include <algorithm>

#include "model/scan/device_view.h"
#include "platform/wide_text.h"
#include "values/ranges.h"
#include "values/utc_time.h"
#include "window/main/commands.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

std::wstring ShownText(const DeviceRow& row, Column column, bool isInFile) {
    const bool isCell = column == Column::kState && !isInFile;
    const std::string text =
        isCell ? StateCell(row.standing, row.summary, *row.facts) : row.Text(column);
    if (InfoOf(column).order == ColumnInfo::Order::kNumber && !isInFile)
        return GroupedCounts(ToWide(text));
    return InfoOf(column).look != ColumnInfo::Look::kTime ? ToWide(text)
           : isInFile                                     ? LocalTime(text)
                                                          : ToWide(ShortTime(text));
}

void DeviceList::SetDefaults(Settings& settings) {
    for (size_t index = 0; index < kColumnCount; ++index) {
        settings.widths[index] = kColumns[index].width;
        settings.order[kColumns[index].place] = static_cast<int32_t>(index);
        if (!kColumns[index].isVisible) settings.hidden |= 1u << index;
    }
}

void DeviceList::SetForScripts(Settings& settings) {
    constexpr Column kColumnsOfFiles[] = {
        Column::kState,  Column::kName, Column::kSupplies,  Column::kModel,   Column::kAddress,
        Column::kSerial, Column::kMac,  Column::kProtocols, Column::kNetwork, Column::kLastSeen};
    settings.hidden = kAllColumns;
    auto place = settings.order.begin();
    for (const Column column : kColumnsOfFiles) {
        const auto index = static_cast<int32_t>(column);
        std::iter_swap(place++, std::find(settings.order.begin(), settings.order.end(), index));
        settings.hidden &= ~(1u << index);
    }
}

void DeviceList::ShowColumns() {
    const Settings& settings = state_.settings;
    state_.session.view.Hide(settings.hidden);
    shown_.clear();
    std::vector<ListColumn> columns;
    for (size_t index = 0; index < kColumnCount; ++index) {
        if (settings.hidden >> index & 1) continue;
        columns.push_back({IDS_COLUMN_NAME + static_cast<unsigned>(index), settings.widths[index]});
        shown_.push_back(static_cast<Column>(index));
    }
    SetColumns(columns);
    std::vector<int> order;
    for (const int32_t index : settings.order) {
        const auto at = std::find(shown_.begin(), shown_.end(), static_cast<Column>(index));
        if (at != shown_.end()) order.push_back(static_cast<int>(at - shown_.begin()));
    }
    ListView_SetColumnOrderArray(Handle(), static_cast<int>(order.size()), order.data());
    MarkSorted();
}

void DeviceList::SaveColumns() const {
    Settings& settings = state_.settings;
    const std::vector<Column> columns = Columns();
    // Hidden columns keep their places and widths.
    auto next = columns.begin();
    for (int32_t& index : settings.order) {
        if (Contains(shown_, static_cast<Column>(index))) index = static_cast<int32_t>(*next++);
    }
    for (size_t index = 0; index < shown_.size(); ++index)
        settings.widths[static_cast<size_t>(shown_[index])] =
            MulDiv(WidthOf(static_cast<int>(index)), 96, dpi_);
}

std::vector<Column> DeviceList::Columns() const {
    std::vector<Column> columns;
    for (const int index : ShownOrder()) columns.push_back(At(static_cast<size_t>(index)));
    return columns;
}

void DeviceList::MarkSorted() {
    const DeviceView& view = state_.session.view;
    const auto at = std::find(shown_.begin(), shown_.end(), view.SortColumn());
    const bool isShown = at != shown_.end();
    ListControl::MarkSorted(isShown ? static_cast<int>(at - shown_.begin()) : -1,
                            view.IsDescending());
}

void DeviceList::Show() {
    const DeviceView& view = state_.session.view;
    Refresh();
    const auto selected = view.Selected();
    Select(view.Selection(), selected ? static_cast<int>(*selected) : -1);
    MarkSorted();
}

void DeviceList::OnNotify(const NMHDR& header) {
    if (header.code != NM_CLICK) return;
    const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
    if (click.iItem >= 0) chosenColumn_ = At(static_cast<size_t>(click.iSubItem));
}

void DeviceList::ShowMenu(LPARAM place) {
    MenuPlace found = {{GET_X_LPARAM(place), GET_Y_LPARAM(place)}, {}};
    RECT header = {};
    GetWindowRect(ListView_GetHeader(Handle()), &header);
    const auto open = [&](HMENU menu) {
        TrackPopupMenu(menu, TPM_RIGHTBUTTON, found.point.x, found.point.y, 0, state_.window,
                       nullptr);
    };
    if (place != kByKeyboard && PtInRect(&header, found.point))
        return open(ViewMenuOf(GetMenu(state_.window)));
    if (!FindMenuPlace(place, found)) return;
    if (found.column) chosenColumn_ = At(*found.column);
    open(MakeDeviceMenu().Get());
}

size_t DeviceList::Count() const { return state_.session.view.Count(); }

bool DeviceList::IsGrey(size_t row) const {
    const Standing::Kind kind = state_.session.view.Row(row).standing.kind;
    return kind == Standing::Kind::kNotFound || kind == Standing::Kind::kNoAnswer;
}

std::wstring DeviceList::SearchText(size_t row) const {
    const DeviceRow& shown = state_.session.view.Row(row);
    const std::string& name = shown.Text(Column::kName);
    return ToWide(name.empty() ? shown.Text(Column::kAddress) : name);
}

std::wstring DeviceList::CellText(size_t row, size_t column) const {
    const DeviceRow& shown = state_.session.view.Row(row);
    const bool isState = At(column) == Column::kState;
    const bool hasLevel = shown.standing.Holds() && Bar(row, column);  // even with kNoLevel
    std::wstring text = ToWide(isState    ? SeverityMark(shown.severity)
                               : hasLevel ? SeverityMark(shown.summary.supplySeverity)
                                          : "");
    if (!text.empty()) text += L' ';
    if (isState && state_.changes.IsMarked(shown)) text += L"\x25CF ";
    text += ShownText(shown, At(column));
    return text;
}

std::optional<LevelBar> DeviceList::Bar(size_t row, size_t column) const {
    const DeviceRow& shown = state_.session.view.Row(row);
    const bool isBar = InfoOf(At(column)).look == ColumnInfo::Look::kBar;
    if (!isBar || shown.summary.supply.empty()) return std::nullopt;
    if (!shown.standing.Holds() || IsRoom(shown.summary.supply)) return LevelBar{kNoLevel};
    return BarOf(*shown.summary.lowestSupply, shown.summary.supplyColour);
}

void DeviceList::OnHeading(size_t column) {
    DeviceView& view = state_.session.view;
    view.Sort(At(column), view.SortColumn() == At(column) && !view.IsDescending());
    Show();
}

void DeviceList::Reverse() {
    DeviceView& view = state_.session.view;
    view.Sort(view.SortColumn(), !view.IsDescending());
    Show();
}

// If the user selects no row, the session's selection stays.
void DeviceList::OnSelection() {
    const std::vector<size_t> rows = Selection();
    if (rows.empty()) return;
    state_.session.view.Select(rows, static_cast<size_t>(Selected()));
    state_.onSelection();
}

std::wstring DeviceList::EmptyText() const {
    const DeviceView& view = state_.session.view;
    if (view.Total() != 0) return Text(IDS_ALL_HIDDEN);
    if (view.Others() != 0) return Text(IDS_ONLY_OTHERS, {Grouped(view.Others())});
    if (state_.progress.IsSearching()) return Text(IDS_NONE_YET);
    if (state_.progress.WasStopped()) return Text(IDS_NONE_STOPPED);
    if (!state_.progress.HasSearched()) return Text(IDS_EMPTY);
    return Text(state_.isUnsent ? IDS_NOTHING_SENT : IDS_NONE_FOUND);
}

}  // namespace vndiscover::host
