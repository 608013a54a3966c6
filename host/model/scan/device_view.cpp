#include "model/scan/device_view.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include "values/ip_address.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::vector<std::string> AddressesOf(const FoundDevice& device) {
    const auto& known = device.identity.Of(MergeKey::kAddress);
    std::vector<std::string> addresses(known.begin(), known.end());
    std::sort(addresses.begin(), addresses.end(), [](const auto& one, const auto& other) {
        return AddressOrder(one) < AddressOrder(other);
    });
    for (std::string& address : addresses) address = PlainText(address);
    return addresses;
}

// Only what a device says of itself makes it no printer. Silence does not.
bool IsNoPrinter(const FoundDevice& device, const Standing& standing) {
    if (device.facts->deviceIndex) return false;
    const bool isRead = device.hasVariables && standing.kind != Standing::Kind::kIncomplete;
    if (isRead || standing.kind == Standing::Kind::kRead) return true;
    return IsOtherByType(device);
}

std::string ProtocolsText(const Scan& scan, const FoundDevice& device) {
    constexpr const char* kNames[] = {"SNMPv1", "SNMPv3", "WSD"};
    std::set<SweepKind> kinds;
    for (const size_t index : device.answers) {
        const ScanSweep& sweep = scan.sweeps[scan.answers[index].sweep];
        if (sweep.form != AnswerForm::kAdded) kinds.insert(sweep.kind);
    }
    return JoinedAs(kinds, [&](SweepKind kind) { return kNames[static_cast<size_t>(kind)]; });
}

std::string NetworkText(const AdapterList& ipv4, const std::string& address) {
    const auto known = ParseIpAddress(address);
    if (!known) return "";
    if (!known->IsIPv4()) return "fe80::/64";
    for (const AdapterAddress& adapter : ipv4.addresses) {
        std::string network = CommonNetwork(*known, adapter.address, adapter.mask);
        if (!network.empty()) return network;
    }
    return "";
}

DeviceRow RowOf(const RowContext& context, FoundDevice device, Standing standing) {
    DeviceRow row;
    static_cast<FoundDevice&>(row) = std::move(device);
    row.summary = SummaryOf(*row.facts, context.limits);
    row.standing = std::move(standing);
    if (row.standing.Holds()) row.severity = row.summary.severity;
    row.isNoPrinter = IsNoPrinter(row, row.standing);
    if (const auto addresses = AddressesOf(row); !addresses.empty()) {
        row.addresses = Joined(addresses);
        row.addressOrder = AddressOrder(addresses.front());
        row.network = NetworkText(context.ipv4, addresses.front());
    }
    row.protocols = ProtocolsText(context.scan, row);
    for (const ColumnInfo& info : kColumns) row.Text(info.column) = info.text(row);
    return row;
}

}  // namespace

std::string IdentityText(const DeviceRow& row, MergeKey key) {
    return JoinedAs(row.identity.Of(key),
                    [](const std::string& value) { return PlainText(value); });
}

std::vector<DeviceRow> MakeRows(const RowContext& context, std::vector<FoundDevice> devices,
                                const std::function<Standing(const FoundDevice&)>& standing,
                                std::vector<DeviceRow> known) {
    std::unordered_map<size_t, DeviceRow*> knownBy;  // the first answer
    for (DeviceRow& row : known) knownBy.emplace(row.answers.front(), &row);
    std::vector<DeviceRow> rows;
    rows.reserve(devices.size());
    for (FoundDevice& device : devices) {
        Standing now = standing(device);
        const auto found = knownBy.find(device.answers.front());
        DeviceRow* const same = found == knownBy.end() ? nullptr : found->second;
        // A time of yesterday has a date now.
        const bool isSame = same && same->answers == device.answers && same->standing == now &&
                            same->Text(Column::kState) == StateText(now, same->summary);
        rows.push_back(isSame ? std::move(*same)
                              : RowOf(context, std::move(device), std::move(now)));
    }
    return rows;
}

void DeviceView::SetRows(std::vector<DeviceRow> rows) {
    rows_ = std::move(rows);
    Arrange();
}

std::vector<DeviceRow> DeviceView::ReleaseRows() {
    shown_.clear();
    return std::exchange(rows_, {});
}

void DeviceView::Sort(Column column, bool isDescending) {
    column_ = column;
    isDescending_ = isDescending;
    Arrange();
}

void DeviceView::ShowOnlyPrinters(bool isOnly) {
    areOnlyPrinters_ = isOnly;
    Arrange();
}

void DeviceView::Filter(const std::string& text) {
    words_ = SplitText(Lower(text), " ");
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
        if (hidden_ >> index & 1) continue;
        const bool isState = index == static_cast<size_t>(Column::kState);
        all +=
            (isState ? StateCell(row.standing, row.summary, *row.facts) : row.texts[index]) + "\n";
    }
    all = Lower(all);
    return AllOf(words_, [&](const auto& word) { return all.find(word) != std::string::npos; });
}

// Negative: `left` comes first. Unknown values come last in either direction.
int DeviceView::Compare(const DeviceRow& left, const DeviceRow& right,
                        ColumnInfo::Order order) const {
    using Order = ColumnInfo::Order;
    const auto directed = [this](int result) { return isDescending_ ? -result : result; };
    if (order == Order::kAddress) return directed(left.addressOrder.compare(right.addressOrder));
    if (order == Order::kLevel) {
        const auto &one = left.summary.lowestSupply, &other = right.summary.lowestSupply;
        if (one.has_value() != other.has_value()) return one ? -1 : 1;
        return directed(one.value_or(0) - other.value_or(0));
    }
    if (order == Order::kSeverity) {
        const int severity =
            directed(static_cast<int>(left.severity) - static_cast<int>(right.severity));
        if (severity != 0) return severity;
        const int level = Compare(left, right, Order::kLevel);
        return level != 0 ? level : left.addressOrder.compare(right.addressOrder);
    }
    const std::string& a = left.Text(column_);
    const std::string& b = right.Text(column_);
    if (a.empty() != b.empty()) return b.empty() ? -1 : 1;
    if (order == Order::kNumber && a.size() != b.size())
        return directed(a.size() < b.size() ? -1 : 1);
    return directed(Lower(a).compare(Lower(b)));
}

// Equal rows keep their order of arrival.
void DeviceView::Arrange() {
    shown_.clear();
    others_ = 0;
    for (size_t index = 0; index < rows_.size(); ++index) {
        const bool isOther = IsOther(rows_[index]);
        others_ += isOther;
        if (!isOther && Passes(rows_[index])) shown_.push_back(index);
    }
    std::stable_sort(shown_.begin(), shown_.end(), [this](size_t one, size_t other) {
        return Compare(rows_[one], rows_[other], InfoOf(column_).order) < 0;
    });
}

void DeviceView::Select(const std::vector<size_t>& rows, std::optional<size_t> focused) {
    selected_.clear();
    focused_.reset();
    for (const size_t index : rows) {
        if (index < Count()) selected_.insert(Row(index).answers.front());
    }
    if (focused && *focused < Count()) focused_ = Row(*focused).answers.front();
}

std::vector<size_t> DeviceView::Selection() const {
    std::vector<size_t> rows;
    for (size_t index = 0; !selected_.empty() && index < shown_.size(); ++index) {
        if (AnyOf(Row(index).answers, [this](size_t one) { return selected_.count(one) != 0; }))
            rows.push_back(index);
    }
    return rows;
}

std::optional<size_t> DeviceView::Selected() const {
    const std::vector<size_t> rows = Selection();
    const size_t* const focused = FindIf(rows, [this](size_t index) {
        const std::vector<size_t>& answers = Row(index).answers;
        return focused_ && std::binary_search(answers.begin(), answers.end(), *focused_);
    });
    if (focused) return *focused;
    return rows.empty() ? std::nullopt : std::optional(rows.front());
}

const DeviceRow* DeviceView::SelectedRow() const {
    const auto index = Selected();
    return index ? &Row(*index) : nullptr;
}

void DeviceView::Renumber(const std::vector<size_t>& places) {
    std::set<size_t> selected;
    for (const size_t answer : selected_) {
        if (answer < places.size()) selected.insert(places[answer]);
    }
    selected_ = std::move(selected);
    if (focused_ && *focused_ < places.size()) focused_ = places[*focused_];
}

}  // namespace vndiscover::host
