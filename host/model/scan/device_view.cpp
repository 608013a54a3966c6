#include "model/scan/device_view.h"

#include <algorithm>

#include "model/printer/level.h"
#include "values/plain_text.h"

namespace vndiscover::host {
namespace {

std::string Lower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

std::optional<uint32_t> ParseIPv4(const std::string& text) {
    uint32_t address = 0;
    size_t at = 0;
    for (int part = 0; part < 4; ++part) {
        const size_t start = at;
        uint32_t number = 0;
        while (at < text.size() && text[at] >= '0' && text[at] <= '9' && at - start < 3)
            number = number * 10 + static_cast<uint32_t>(text[at++] - '0');
        if (at == start || number > 255) return std::nullopt;
        if (part < 3 && (at == text.size() || text[at++] != '.')) return std::nullopt;
        address = address << 8 | number;
    }
    if (at != text.size()) return std::nullopt;
    return address;
}

std::string IPv4Text(uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += (text.empty() ? "" : ".") + std::to_string(address >> shift & 0xFF);
    return text;
}

// Groups of up to four hexadecimal digits, two bytes each.
std::optional<std::string> ParseGroups(const std::string& text) {
    std::string bytes;
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find(':', at), text.size());
        if (end == at || end - at > 4 || end + 1 == text.size()) return std::nullopt;
        uint32_t group = 0;
        for (; at < end; ++at) {
            const size_t digit = std::string_view("0123456789abcdef").find(text[at]);
            if (digit == std::string_view::npos) return std::nullopt;
            group = group << 4 | static_cast<uint32_t>(digit);
        }
        bytes += static_cast<char>(group >> 8);
        bytes += static_cast<char>(group & 0xFF);
        ++at;
    }
    return bytes;
}

std::optional<std::string> ParseIPv6(const std::string& address) {
    constexpr size_t kSize = 16;
    const std::string text = Lower(address.substr(0, address.find('%')));
    const size_t gap = text.find("::");
    const auto head = ParseGroups(text.substr(0, gap));
    if (!head) return std::nullopt;
    if (gap == std::string::npos) return head->size() == kSize ? head : std::nullopt;
    const auto tail = ParseGroups(text.substr(gap + 2));
    if (!tail || head->size() + tail->size() >= kSize) return std::nullopt;
    return *head + std::string(kSize - head->size() - tail->size(), '\0') + *tail;
}

std::string Joined(const std::vector<std::string>& texts) {
    std::string line;
    for (const std::string& text : texts) line += (line.empty() ? "" : ", ") + text;
    return line;
}

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

std::string PlainValues(const FoundDevice& device, MergeKey key) {
    std::vector<std::string> values;
    for (const std::string& value : device.identity.Of(key)) values.push_back(PlainText(value));
    return Joined(values);
}

std::string NetworkOf(const std::string& address, const AdapterList& ipv4) {
    const auto number = ParseIPv4(address);
    if (!number) return ParseIPv6(address) ? "fe80::/64" : "";
    for (const AdapterAddress& adapter : ipv4.addresses) {
        const auto own = ParseIPv4(adapter.address);
        const auto mask = ParseIPv4(adapter.mask);
        if (!own || !mask || *mask == 0 || ((*own ^ *number) & *mask) != 0) continue;
        int bits = 0;
        for (uint32_t rest = *mask; rest & 0x80000000; rest <<= 1) ++bits;
        return IPv4Text(*own & *mask) + "/" + std::to_string(bits);
    }
    return "";
}

std::string ProtocolsOf(const Scan& scan, const std::vector<size_t>& answers) {
    bool has[3] = {};
    for (const size_t index : answers)
        has[static_cast<size_t>(scan.sweeps[scan.answers[index].sweep].kind)] = true;
    constexpr const char* kNames[] = {"SNMPv1", "SNMPv3", "WSD"};
    std::vector<std::string> names;
    for (size_t kind = 0; kind < 3; ++kind) {
        if (has[kind]) names.emplace_back(kNames[kind]);
    }
    return Joined(names);
}

// Errors come before the state: a printer with an open door may still be "idle".
std::string StateOf(const PrinterFacts& facts) {
    std::vector<std::string> words;
    for (const std::string& error : facts.errors) words.push_back(SpacedWords(error));
    if (!words.empty()) return Joined(words);
    return SpacedWords(facts.printerStatus.empty() ? facts.deviceStatus : facts.printerStatus);
}

std::optional<int> LowestSupply(const PrinterFacts& facts) {
    std::optional<int> lowest;
    for (const Supply& supply : facts.supplies) {
        const auto percent = PercentOf(supply.level);
        if (percent && (!lowest || *percent < *lowest)) lowest = percent;
    }
    return lowest;
}

DeviceRow RowOf(const Scan& scan, const FoundDevice& device, const AdapterList& ipv4) {
    DeviceRow row;
    row.answers = device.answers;
    row.Text(Column::kName) = device.facts->name;
    row.Text(Column::kModel) = device.facts->model;
    const std::vector<std::string> addresses = AddressesOf(device);
    row.Text(Column::kAddress) = Joined(addresses);
    if (!addresses.empty()) {
        row.addressOrder = AddressOrder(addresses.front());
        row.Text(Column::kNetwork) = NetworkOf(addresses.front(), ipv4);
    }
    row.Text(Column::kSerial) = PlainValues(device, MergeKey::kSerial);
    row.Text(Column::kMac) = PlainValues(device, MergeKey::kMac);
    row.Text(Column::kProtocols) = ProtocolsOf(scan, device.answers);
    for (const size_t index : device.answers)
        row.Text(Column::kLastSeen) =
            std::max(row.Text(Column::kLastSeen), scan.answers[index].time);
    row.Text(Column::kState) = StateOf(*device.facts);
    row.lowestSupply = LowestSupply(*device.facts);
    if (row.lowestSupply) row.Text(Column::kSupplies) = std::to_string(*row.lowestSupply) + " %";
    return row;
}

}  // namespace

std::string AddressOrder(const std::string& address) {
    if (const auto number = ParseIPv4(address)) {
        std::string order = "4";
        for (int shift = 24; shift >= 0; shift -= 8) order += static_cast<char>(*number >> shift);
        return order;
    }
    const auto bytes = ParseIPv6(address);
    return bytes ? "6" + *bytes : kNameOrder + address;
}

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
    all = Lower(std::move(all));
    return std::all_of(words_.begin(), words_.end(), [&](const std::string& word) {
        return all.find(word) != std::string::npos;
    });
}

// Unknown values come last in either direction; equal rows keep their order of arrival.
bool DeviceView::IsBefore(size_t one, size_t other) const {
    const DeviceRow& left = rows_[one];
    const DeviceRow& right = rows_[other];
    int order = 0;
    if (column_ == Column::kAddress) {
        order = left.addressOrder.compare(right.addressOrder);
    } else if (column_ == Column::kSupplies) {
        if (left.lowestSupply.has_value() != right.lowestSupply.has_value())
            return left.lowestSupply.has_value();
        if (left.lowestSupply) order = *left.lowestSupply - *right.lowestSupply;
    } else {
        const std::string& a = left.Text(column_);
        const std::string& b = right.Text(column_);
        if (a.empty() != b.empty()) return b.empty();
        order = Lower(a).compare(Lower(b));
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
