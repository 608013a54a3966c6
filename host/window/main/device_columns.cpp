#include "window/main/device_columns.h"

#include <commctrl.h>

#include <algorithm>

#include "platform/wide_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr size_t CountHeadings() {
    constexpr unsigned kTexts[] = {
#define VN_TEXT(name, number, text) number,
#include "window/texts.inc"
#undef VN_TEXT
    };
    size_t count = 0;
    for (const unsigned text : kTexts)
        count += text >= IDS_COLUMN_NAME && text < IDS_COLUMN_NAME + kColumnCount;
    return count;
}
static_assert(CountHeadings() == kColumnCount, "each column has a heading");

}  // namespace

std::wstring ColumnName(Column column) {
    std::wstring name = Text(IDS_COLUMN_NAME + static_cast<unsigned>(column));
    name.erase(std::remove(name.begin(), name.end(), L'&'), name.end());
    return name;
}

std::wstring ShownText(const DeviceRow& row, Column column) {
    const std::string& text = row.Text(column);
    return InfoOf(column).look == ColumnInfo::Look::kTime ? LocalTime(text) : ToWide(text);
}

void DeviceColumns::SetDefaults(Settings& settings) {
    for (size_t index = 0; index < kColumnCount; ++index) {
        settings.widths[index] = kColumns[index].width;
        settings.order[kColumns[index].place] = static_cast<int32_t>(index);
        if (!kColumns[index].isVisible) settings.hidden |= 1u << index;
    }
}

void DeviceColumns::SetForScripts(Settings& settings) {
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

void DeviceColumns::Show(const Settings& settings) {
    shown_.clear();
    std::vector<ListColumn> columns;
    for (size_t index = 0; index < kColumnCount; ++index) {
        if (settings.hidden >> index & 1) continue;
        columns.push_back({IDS_COLUMN_NAME + static_cast<unsigned>(index), settings.widths[index]});
        shown_.push_back(static_cast<Column>(index));
    }
    list_->SetColumns(columns);
    std::vector<int> order;
    for (const int32_t index : settings.order) {
        const auto at = std::find(shown_.begin(), shown_.end(), static_cast<Column>(index));
        if (at != shown_.end()) order.push_back(static_cast<int>(at - shown_.begin()));
    }
    ListView_SetColumnOrderArray(list_->Handle(), static_cast<int>(order.size()), order.data());
}

void DeviceColumns::Store(Settings& settings, int dpi) const {
    const std::vector<Column> columns = InOrder();
    // Hidden columns keep their places and widths.
    auto next = columns.begin();
    for (int32_t& index : settings.order) {
        if (IsShown(static_cast<Column>(index))) index = static_cast<int32_t>(*next++);
    }
    for (size_t index = 0; index < shown_.size(); ++index)
        settings.widths[static_cast<size_t>(shown_[index])] =
            MulDiv(ListView_GetColumnWidth(list_->Handle(), static_cast<int>(index)), 96, dpi);
}

bool DeviceColumns::IsShown(Column column) const {
    return std::find(shown_.begin(), shown_.end(), column) != shown_.end();
}

std::vector<Column> DeviceColumns::InOrder() const {
    std::vector<int> order(shown_.size());
    ListView_GetColumnOrderArray(list_->Handle(), static_cast<int>(order.size()), order.data());
    std::vector<Column> columns;
    columns.reserve(order.size());
    for (const int index : order) columns.push_back(At(static_cast<size_t>(index)));
    return columns;
}

void DeviceColumns::MarkSorted(Column sorted, bool isDescending) {
    const HWND header = ListView_GetHeader(list_->Handle());
    for (size_t index = 0; index < shown_.size(); ++index) {
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, index, reinterpret_cast<LPARAM>(&item));
        const int old = item.fmt;
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (shown_[index] == sorted) item.fmt |= isDescending ? HDF_SORTDOWN : HDF_SORTUP;
        if (item.fmt != old)
            SendMessageW(header, HDM_SETITEMW, index, reinterpret_cast<LPARAM>(&item));
    }
}

}  // namespace vndiscover::host
