#include "model/scan/compare.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "model/printer/report.h"
#include "model/scan/device_merge.h"
#include "model/scan/device_view.h"
#include "values/ip_address.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::string Addresses(const FoundDevice& device, bool isIPv6) {
    return JoinedAs(device.identity.Of(MergeKey::kAddress), [&](const std::string& address) {
        return IsIPv6(address) == isIPv6 ? address : "";
    });
}

// "none" if there are none; empty if they were not read.
std::string AlertsText(const FoundDevice& device) {
    const std::vector<Alert>& alerts = device.facts->alerts;
    if (!device.areAlertsKnown) return "";
    return alerts.empty() ? "none" : JoinedAs(alerts, AlertText, "; ");
}

// By the supply's name and how often it came before.
std::map<std::pair<std::string, int>, Level> LevelsOf(const PrinterFacts& facts) {
    std::map<std::pair<std::string, int>, Level> levels;
    std::map<std::string, int> counts;
    for (const Supply& supply : facts.supplies) {
        const std::string name = SupplyName(supply);
        const int same = counts[name]++;
        if (supply.level.level) levels[{name, same}] = supply.level;
    }
    return levels;
}

std::vector<FieldChange> ChangedFields(const FoundDevice& before, const FoundDevice& after) {
    std::vector<FieldChange> changes;
    const auto compare = [&](const std::string& field, const std::string& old,
                             const std::string& now) {
        if (!old.empty() && !now.empty() && old != now) changes.push_back({field, old, now});
    };
    // Each family separately, since a sweep uses only one of them.
    for (const bool isIPv6 : {false, true})
        compare("address", Addresses(before, isIPv6), Addresses(after, isIPv6));
    compare("name", before.facts->name, after.facts->name);
    compare("firmware", before.facts->description, after.facts->description);
    for (const auto& [field, status] : {std::pair("device", &PrinterFacts::deviceStatus),
                                        {"printer", &PrinterFacts::printerStatus}})
        compare(field, PlainWords((*before.facts).*status), PlainWords((*after.facts).*status));
    compare("errors", ErrorText(*before.facts), ErrorText(*after.facts));
    compare("alerts", AlertsText(before), AlertsText(after));
    const auto levels = LevelsOf(*after.facts);
    for (const auto& [name, old] : LevelsOf(*before.facts)) {
        const auto now = levels.find(name);
        if (now == levels.end() || now->second.maximum.has_value() != old.maximum.has_value())
            continue;
        const auto percent = PercentOf(old);
        const bool isEmptied = (old.level == 0) != (now->second.level == 0);
        if (!percent || isEmptied || percent != PercentOf(now->second))
            compare(name.first, LevelText(old), LevelText(now->second));
    }
    return changes;
}

std::vector<FieldChange> PageCountChanges(const PrinterFacts& before, const PrinterFacts& after) {
    std::vector<FieldChange> changes;
    const size_t counts = std::min(before.pageCounts.size(), after.pageCounts.size());
    for (size_t i = 0; i < counts; ++i) {
        const auto old = before.pageCounts[i].count, now = after.pageCounts[i].count;
        const std::string field = i == 0 ? "page count" : "page count " + std::to_string(i + 1);
        if (old != now) changes.push_back({field, std::to_string(old), std::to_string(now)});
    }
    return changes;
}

// For each later device, which earlier one it is and by which key; empty: it is new.
using Matches = std::vector<std::optional<std::pair<size_t, MergeKey>>>;
Matches MatchesOf(const std::vector<FoundDevice>& before, const std::vector<FoundDevice>& after) {
    std::vector<const Identity*> identities;
    for (const auto* devices : {&before, &after}) {
        for (const FoundDevice& device : *devices) identities.push_back(&device.identity);
    }
    Matches matches(after.size());
    std::vector<bool> isMatched(before.size());
    IdentityGroups(identities)
        .Unite(
            [&](size_t first, size_t second, const Merge&) {
                return first < before.size() && second >= before.size() && !isMatched[first] &&
                       !matches[second - before.size()];
            },
            [&](size_t first, size_t second, const Merge& merge) {
                isMatched[first] = true;
                matches[second - before.size()] = {first, merge.key};
            });
    return matches;
}

constexpr size_t kMaxChanges = 10000;

std::string KeyOf(const DeviceRow& row) {
    if (row.isSeparated) return Joined({row.Text(Column::kAddress), row.Text(Column::kProtocols)});
    for (const Column column : {Column::kSerial, Column::kMac})
        if (!row.Text(column).empty()) return row.Text(column);
    return row.Text(Column::kAddress);
}

// The state by which changes are seen, and as it is shown. The level of a supply is no change, but
// that it has become low or empty is, unless an error says so. Since when and for how long a device
// is silent is no change.
std::pair<std::string, std::string> StateOf(const DeviceRow& row) {
    Standing standing = row.standing;
    standing.lastAnswer.clear();
    if (standing.kind == Standing::Kind::kIncomplete) standing.note.clear();
    const std::string& problem = row.summary.supplyProblem;
    const auto has = [&](const char* error) {
        return row.facts && row.facts->errors && Contains(*row.facts->errors, error);
    };
    const bool isSaid = (problem == kSupplyLow && (has("lowToner") || has("noToner"))) ||
                        (problem == kSupplyEmpty && has("noToner"));
    const std::string supplies = standing.Holds() && !isSaid ? problem : "";
    return {Joined({StateText(standing, row.summary), supplies}),
            Joined({StateText(row.standing, row.summary), supplies})};
}

}  // namespace

Comparison CompareDevices(std::vector<FoundDevice> before, std::vector<FoundDevice> after,
                          bool withPageCounts) {
    Comparison result;
    std::vector<bool> isGone(before.size(), true);
    const Matches matches = MatchesOf(before, after);
    for (size_t i = 0; i < after.size(); ++i) {
        if (!matches[i]) {
            result.added.push_back(i);
            continue;
        }
        const auto [old, key] = *matches[i];
        isGone[old] = false;
        auto fields = ChangedFields(before[old], after[i]);
        const auto pages = PageCountChanges(*before[old].facts, *after[i].facts);
        const bool isSame = fields.empty() && (pages.empty() || !withPageCounts);
        const bool isPrinted = isSame && !pages.empty();
        result.same += isSame;
        result.printed += isPrinted;
        result.unread += isSame && !(before[old].hasVariables && after[i].hasVariables);
        fields.insert(fields.end(), pages.begin(), pages.end());
        if (!fields.empty()) result.changed.push_back({old, i, key, std::move(fields), isPrinted});
    }
    for (size_t i = 0; i < before.size(); ++i) {
        if (isGone[i]) result.gone.push_back(i);
    }
    result.before = std::move(before);
    result.after = std::move(after);
    return result;
}

bool ChangeLog::Add(const DeviceRow& row, const std::string& time) {
    const Standing::Kind kind = row.standing.kind;
    if (kind == Standing::Kind::kBeingRead || kind == Standing::Kind::kNeverRead) return false;
    if (row.standing.isStateOnly) return false;  // beside former supplies it is no state of its own
    const auto [compared, shown] = StateOf(row);
    const State state = {compared, shown, row.facts ? row.facts->readTime : "",
                         !row.standing.Holds()};
    State& known = states_[KeyOf(row)];
    // One that answers again has to be read before its state is known.
    if (known.isSilent && !state.isSilent && !state.readTime.empty() &&
        known.readTime == state.readTime)
        return false;
    const State before = std::exchange(known, state);
    if (before.compared.empty() || before.compared == state.compared) return false;
    const std::string name =
        Joined({row.Text(Column::kName), row.Text(Column::kModel), row.Text(Column::kAddress)});
    changes_.push_front({time, name, before.shown, state.shown});
    if (changes_.size() > kMaxChanges) changes_.pop_back();
    marked_.insert(KeyOf(row));
    return true;
}

void ChangeLog::RecordStates(const std::vector<DeviceRow>& rows) {
    states_.clear();
    for (const DeviceRow& row : rows) Add(row, "");
}

bool ChangeLog::IsMarked(const DeviceRow& row) const { return marked_.count(KeyOf(row)) != 0; }

void ChangeLog::Unmark(const DeviceRow& row) { marked_.erase(KeyOf(row)); }

}  // namespace vndiscover::host
