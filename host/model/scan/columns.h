// The columns of a table of devices. A new one is a row here, and its heading is a text of the
// window.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "model/computer/computer.h"
#include "model/printer/printer_summary.h"
#include "model/scan/found_device.h"
#include "model/scan/scan.h"

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
};

struct RowSource {
    const Scan& scan;
    const FoundDevice& device;
    const AdapterList& ipv4;
    std::vector<std::string> addresses;  // plain text, in the order of their numbers
    PrinterSummary summary;
};
// The cells of columns. Text is plain; empty: unknown.
std::string AddressCell(const RowSource& source);
std::string IdentityCell(const RowSource& source, MergeKey key);
std::string StateCell(const RowSource& source);     // errors, or what it is doing
std::string SupplyCell(const RowSource& source);    // the lowest level, "40 %"
std::string ProtocolCell(const RowSource& source);  // by which it answered
std::string NetworkCell(const RowSource& source);   // of this computer, "10.77.1.0/24"
std::string LastSeenCell(const RowSource& source);  // UTC, as in ScanAnswer

struct ColumnInfo {
    Column column;
    std::string (*text)(const RowSource& source);
    int width;              // in pixels at 96 DPI
    unsigned place;         // from the left, at first
    bool isVisible = true;  // likewise
    enum class Order { kText, kAddress, kLevel } order = Order::kText;
    enum class Look { kText, kBar, kTime } look = Look::kText;
};

// In the order of Column. The most important ones are visible without scrolling.
inline constexpr ColumnInfo kColumns[] = {
    {Column::kName, [](const RowSource& source) { return source.device.facts->name; }, 90, 0},
    {Column::kModel, [](const RowSource& source) { return source.device.facts->model; }, 125, 1},
    {Column::kAddress, AddressCell, 105, 2, true, ColumnInfo::Order::kAddress},
    {Column::kSerial,
     [](const RowSource& source) { return IdentityCell(source, MergeKey::kSerial); }, 105, 5},
    {Column::kMac, [](const RowSource& source) { return IdentityCell(source, MergeKey::kMac); },
     120, 6},
    {Column::kState, StateCell, 130, 3},
    {Column::kSupplies, SupplyCell, 105, 4, true, ColumnInfo::Order::kLevel,
     ColumnInfo::Look::kBar},
    {Column::kProtocols, ProtocolCell, 100, 7},
    {Column::kNetwork, NetworkCell, 100, 8},
    {Column::kLastSeen, LastSeenCell, 140, 9, true, ColumnInfo::Order::kText,
     ColumnInfo::Look::kTime},
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
