// The columns of a table of devices. A new one is a row here; its heading is the window's.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "model/computer/computer.h"
#include "model/printer/report.h"
#include "model/scan/found_device.h"
#include "model/scan/scan.h"
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

struct RowSource {
    const Scan& scan;
    const FoundDevice& device;
    const AdapterList& ipv4;
    std::vector<std::string> addresses;  // plain text, in the order of their numbers
    const PrinterSummary& summary;
    const Standing& standing;
};
// The cells of columns. Text is plain; empty: unknown.
std::string AddressCell(const RowSource& source);
std::string IdentityCell(const RowSource& source, MergeKey key);
std::string ProtocolCell(const RowSource& source);  // by which it answered
std::string NetworkCell(const RowSource& source);   // of this computer, "10.77.1.0/24"

struct ColumnInfo {
    Column column;
    std::string (*text)(const RowSource& source);
    int width;              // in pixels at 96 DPI
    unsigned place;         // from the left, at first
    bool isVisible = true;  // likewise
    enum class Order { kText, kAddress, kLevel, kSeverity, kNumber } order = Order::kText;
    enum class Look { kText, kBar, kTime } look = Look::kText;
};

// In the order of Column. Those visible at first fit a window of 1,100 pixels, also beside a scroll
// bar.
inline constexpr ColumnInfo kColumns[] = {
    {Column::kName, [](const RowSource& source) { return source.device.facts->name; }, 88, 1},
    {Column::kModel, [](const RowSource& source) { return source.device.facts->model; }, 106, 2},
    {Column::kAddress, AddressCell, 94, 3, true, ColumnInfo::Order::kAddress},
    {Column::kSerial,
     [](const RowSource& source) { return IdentityCell(source, MergeKey::kSerial); }, 105, 6,
     false},
    {Column::kMac, [](const RowSource& source) { return IdentityCell(source, MergeKey::kMac); },
     120, 7, false},
    {Column::kState,
     [](const RowSource& source) { return StateText(source.standing, source.summary); }, 163, 0,
     true, ColumnInfo::Order::kSeverity},
    {Column::kSupplies, [](const RowSource& source) { return source.summary.supply; }, 146, 5, true,
     ColumnInfo::Order::kLevel, ColumnInfo::Look::kBar},
    {Column::kProtocols, ProtocolCell, 100, 8, false},
    {Column::kNetwork, NetworkCell, 100, 9, false},
    {Column::kLastSeen, [](const RowSource& source) { return source.standing.lastAnswer; }, 140, 10,
     false, ColumnInfo::Order::kText, ColumnInfo::Look::kTime},
    {Column::kSupplyList,
     [](const RowSource& source) { return SuppliesText(*source.device.facts); }, 300, 11, false},
    {Column::kLocation, [](const RowSource& source) { return source.device.facts->location; }, 78,
     4},
    {Column::kPageCount, [](const RowSource& source) { return CountText(*source.device.facts); },
     80, 12, false, ColumnInfo::Order::kNumber},
    {Column::kFirmware, [](const RowSource& source) { return source.device.facts->description; },
     200, 13, false},
};
constexpr size_t kColumnCount = std::size(kColumns);

constexpr const ColumnInfo& InfoOf(Column column) { return kColumns[static_cast<size_t>(column)]; }

// Each row is at the place of its Column, and each place is taken once.
constexpr bool AreColumnsInOrder() {
    unsigned places = 0;
    for (size_t index = 0; index < kColumnCount; ++index) {
        if (kColumns[index].column != static_cast<Column>(index)) return false;
        places |= 1u << kColumns[index].place;
    }
    return places == (1u << kColumnCount) - 1;
}
static_assert(kColumnCount < 32 && AreColumnsInOrder());

}  // namespace vndiscover::host
