// Devices as rows of a table: what each column shows, the order, and the selected row. It is
// independent of any window; the table may be a list on the screen, a file or the clipboard.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "model/computer/computer.h"
#include "model/scan/columns.h"

namespace vndiscover::host {

// What rows are made of, besides the devices.
struct RowContext {
    const Scan& scan;
    const AdapterList& ipv4;
    const LevelLimits& limits;
};
// Called after each batch of answers. `standing` returns a device's. Rows of `known` with the same
// answers and standing are used again.
std::vector<DeviceRow> MakeRows(const RowContext& context, std::vector<FoundDevice> devices,
                                const std::function<Standing(const FoundDevice&)>& standing,
                                std::vector<DeviceRow> known = {});

// The rows that pass a filter, sorted. The selection stays with its device.
class DeviceView {
  public:
    void SetRows(std::vector<DeviceRow> rows);
    std::vector<DeviceRow> ReleaseRows();
    void Sort(Column column, bool isDescending);
    Column SortColumn() const { return column_; }
    bool IsDescending() const { return isDescending_; }
    void ShowOnlyPrinters(bool isOnly);
    // Shows rows that contain every word of the text, ignoring the case of ASCII letters.
    void Filter(const std::string& text);
    // The filter leaves out these columns, a bit for each Column. At first none.
    void Hide(uint32_t columns);

    size_t Count() const { return shown_.size(); }
    size_t Total() const { return rows_.size() - Others(); }  // without the filter
    size_t Others() const { return others_; }                 // that are no printers, not shown
    const DeviceRow& Row(size_t index) const { return rows_[shown_[index]]; }
    bool ShowsOnlyPrinters() const { return areOnlyPrinters_; }
    bool IsOther(const DeviceRow& row) const { return areOnlyPrinters_ && row.isNoPrinter; }
    const std::vector<DeviceRow>& AllRows() const { return rows_; }

    // Several devices may be selected, of which `focused` is the one with the focus.
    void Select(const std::vector<size_t>& rows, std::optional<size_t> focused);
    // Those that are shown, in their order.
    std::vector<size_t> Selection() const;
    // The one with the focus, or if that is hidden, the first of the others; empty or null: none.
    std::optional<size_t> Selected() const;
    const DeviceRow* SelectedRow() const;
    // After RemoveFormerAnswers.
    void Renumber(const std::vector<size_t>& places);

  private:
    bool Passes(const DeviceRow& row) const;
    int Compare(const DeviceRow& left, const DeviceRow& right, ColumnInfo::Order order) const;
    void Arrange();

    std::vector<DeviceRow> rows_;
    std::vector<size_t> shown_;  // indexes in rows_
    std::vector<std::string> words_;
    Column column_ = Column::kState;
    bool isDescending_ = false;
    uint32_t hidden_ = 0;
    bool areOnlyPrinters_ = false;
    size_t others_ = 0;
    std::set<size_t> selected_;      // an answer of each device: it survives a merge
    std::optional<size_t> focused_;  // one of them
};

}  // namespace vndiscover::host
