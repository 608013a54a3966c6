#include "model/scan/device_view.h"

#include <algorithm>

#include "values/ip_address.h"
#include "values/plain_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

// In the order of their numbers.
std::vector<std::string> AddressesOf(const FoundDevice& device) {
    const auto& known = device.identity.Of(MergeKey::kAddress);
    std::vector<std::string> addresses(known.begin(), known.end());
    std::sort(addresses.begin(), addresses.end(), [](const auto& one, const auto& other) {
        return AddressOrder(one) < AddressOrder(other);
    });
    for (std::string& address : addresses) address = PlainText(address);
    return addresses;
}

DeviceRow RowOf(const Scan& scan, const FoundDevice& device, const AdapterList& ipv4) {
    const RowSource source = {scan, device, ipv4, AddressesOf(device), SummaryOf(*device.facts)};
    DeviceRow row;
    row.answers = device.answers;
    for (const ColumnInfo& info : kColumns) row.Text(info.column) = info.text(source);
    if (!source.addresses.empty()) row.addressOrder = AddressOrder(source.addresses.front());
    row.lowestSupply = source.summary.lowestSupply;
    return row;
}

}  // namespace

std::vector<DeviceRow> RowMaker::Make(const Scan& scan, const std::vector<FoundDevice>& devices,
                                      const AdapterList& ipv4) {
    std::unordered_map<size_t, DeviceRow> known = std::move(rows_);
    rows_.clear();
    std::vector<DeviceRow> rows;
    rows.reserve(devices.size());
    for (const FoundDevice& device : devices) {
        const auto found = known.find(device.answers.front());
        const bool isKept = found != known.end() && found->second.answers == device.answers;
        rows.push_back(isKept ? std::move(found->second) : RowOf(scan, device, ipv4));
        rows_.emplace(device.answers.front(), rows.back());
    }
    return rows;
}

void DeviceView::SetRows(std::vector<DeviceRow> rows) {
    rows_ = std::move(rows);
    Arrange();
}

void DeviceView::Sort(Column column, bool isDescending) {
    column_ = column;
    isDescending_ = isDescending;
    Arrange();
}

void DeviceView::Filter(const std::string& text) {
    words_.clear();
    const std::string lower = Lower(text);
    size_t at = 0;
    while ((at = lower.find_first_not_of(' ', at)) != std::string::npos) {
        const size_t end = std::min(lower.find(' ', at), lower.size());
        words_.push_back(lower.substr(at, end - at));
        at = end;
    }
    Arrange();
}

void DeviceView::Hide(uint32_t columns) {
    hidden_ = columns;
    Arrange();
}

bool DeviceView::Passes(const DeviceRow& row) const {
    if (words_.empty()) return true;
    std::string all;  // one column per line: words contain no line break, so they match within one
    for (size_t index = 0; index < kColumnCount; ++index) {
        if (!(hidden_ >> index & 1)) all += row.texts[index] + "\n";
    }
    all = Lower(all);
    return std::all_of(words_.begin(), words_.end(), [&](const std::string& word) {
        return all.find(word) != std::string::npos;
    });
}

// Unknown values come last in either direction; equal rows keep their order of arrival.
bool DeviceView::IsBefore(size_t one, size_t other) const {
    const DeviceRow& left = rows_[one];
    const DeviceRow& right = rows_[other];
    int order = 0;
    switch (InfoOf(column_).order) {
        case ColumnInfo::Order::kAddress:
            order = left.addressOrder.compare(right.addressOrder);
            break;
        case ColumnInfo::Order::kLevel:
            if (left.lowestSupply.has_value() != right.lowestSupply.has_value())
                return left.lowestSupply.has_value();
            if (left.lowestSupply) order = *left.lowestSupply - *right.lowestSupply;
            break;
        case ColumnInfo::Order::kText: {
            const std::string& a = left.Text(column_);
            const std::string& b = right.Text(column_);
            if (a.empty() != b.empty()) return b.empty();
            order = Lower(a).compare(Lower(b));
        }
    }
    return isDescending_ ? order > 0 : order < 0;
}

void DeviceView::Arrange() {
    shown_.clear();
    for (size_t index = 0; index < rows_.size(); ++index) {
        if (Passes(rows_[index])) shown_.push_back(index);
    }
    std::stable_sort(shown_.begin(), shown_.end(),
                     [this](size_t one, size_t other) { return IsBefore(one, other); });
}

void DeviceView::Select(std::optional<size_t> index) {
    selectedAnswer_.reset();
    if (index && *index < Count()) selectedAnswer_ = Row(*index).answers.front();
}

std::optional<size_t> DeviceView::Selected() const {
    const DeviceRow* row = SelectedRow();
    for (size_t index = 0; row && index < shown_.size(); ++index) {
        if (&rows_[shown_[index]] == row) return index;
    }
    return std::nullopt;
}

const DeviceRow* DeviceView::SelectedRow() const {
    if (!selectedAnswer_) return nullptr;
    for (const DeviceRow& row : rows_) {
        if (std::binary_search(row.answers.begin(), row.answers.end(), *selectedAnswer_))
            return &row;
    }
    return nullptr;
}

}  // namespace vndiscover::host
