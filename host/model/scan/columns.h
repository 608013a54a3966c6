// The columns of a table of devices. A new one is a row here; its heading is the window's.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <string>

#include "model/printer/report.h"
#include "model/scan/found_device.h"
#include "model/scan/standing.h"

namespace vndiscover::host {

enum class Column {
    kName,
    kModel,
    kAddress,
    kSerial,
    kMac,
    kState,
    kSupplies,
    kProtocols,
    kNetwork,
    kLastSeen,
    kSupplyList,
    kLocation,
    kPageCount,
    kFirmware,
};

constexpr size_t kColumnCount = static_cast<size_t>(Column::kFirmware) + 1;  // after the last

// A device, and how it is shown. All text is plain; empty: unknown.
struct DeviceRow : FoundDevice {
    std::array<std::string, kColumnCount> texts;
    // In the order of their numbers; by which it answered; of this computer, "10.77.1.0/24".
    std::string addresses, protocols, network;
    std::string addressOrder;  // see AddressOrder
    PrinterSummary summary;
    Standing standing;
    Severity severity = Severity::kUnknown;  // the summary's, if that holds
    bool isNoPrinter = false;                // as far as was read

    const std::string& Text(Column column) const { return texts[static_cast<size_t>(column)]; }
    std::string& Text(Column column) { return texts[static_cast<size_t>(column)]; }
};
std::string IdentityText(const DeviceRow& row, MergeKey key);

struct ColumnInfo {
    Column column;
    std::string (*text)(const DeviceRow& row);
    int width;              // in pixels at 96 DPI
    unsigned place;         // from the left, at first
    bool isVisible = true;  // likewise
    enum class Order { kText, kAddress, kLevel, kSeverity, kNumber } order = Order::kText;
    enum class Look { kText, kBar, kTime } look = Look::kText;
};

// In the order of Column. Those visible at first fit a window of 1,100 pixels, also beside a scroll
// bar.
inline constexpr ColumnInfo kColumns[] = {
    {Column::kName, [](const DeviceRow& row) { return row.facts->name; }, 88, 1},
    {Column::kModel, [](const DeviceRow& row) { return row.facts->model; }, 106, 2},
    {Column::kAddress, [](const DeviceRow& row) { return row.addresses; }, 94, 3, true,
     ColumnInfo::Order::kAddress},
    {Column::kSerial, [](const DeviceRow& row) { return IdentityText(row, MergeKey::kSerial); },
     105, 6, false},
    {Column::kMac, [](const DeviceRow& row) { return IdentityText(row, MergeKey::kMac); }, 120, 7,
     false},
    {Column::kState, [](const DeviceRow& row) { return StateText(row.standing, row.summary); }, 163,
     0, true, ColumnInfo::Order::kSeverity},
    {Column::kSupplies, [](const DeviceRow& row) { return row.summary.supply; }, 146, 5, true,
     ColumnInfo::Order::kLevel, ColumnInfo::Look::kBar},
    {Column::kProtocols, [](const DeviceRow& row) { return row.protocols; }, 100, 8, false},
    {Column::kNetwork, [](const DeviceRow& row) { return row.network; }, 100, 9, false},
    {Column::kLastSeen, [](const DeviceRow& row) { return row.standing.lastAnswer; }, 140, 10,
     false, ColumnInfo::Order::kText, ColumnInfo::Look::kTime},
    {Column::kSupplyList, [](const DeviceRow& row) { return SuppliesText(*row.facts); }, 300, 11,
     false},
    {Column::kLocation, [](const DeviceRow& row) { return row.facts->location; }, 78, 4},
    {Column::kPageCount, [](const DeviceRow& row) { return CountText(*row.facts); }, 80, 12, false,
     ColumnInfo::Order::kNumber},
    {Column::kFirmware, [](const DeviceRow& row) { return row.facts->description; }, 200, 13,
     false},
};

constexpr const ColumnInfo& InfoOf(Column column) { return kColumns[static_cast<size_t>(column)]; }

// Each row is at the place of its Column, and each place is used once.
constexpr bool AreColumnsInOrder() {
    unsigned places = 0;
    for (size_t index = 0; index < kColumnCount; ++index) {
        if (kColumns[index].column != static_cast<Column>(index)) return false;
        places |= 1u << kColumns[index].place;
    }
    return places == (1u << kColumnCount) - 1;
}
static_assert(std::size(kColumns) == kColumnCount && kColumnCount < 32 && AreColumnsInOrder());

}  // namespace vndiscover::host
