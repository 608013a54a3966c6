#include "model/scan/compare.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "model/printer/report.h"
#include "model/scan/device_view.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::string Addresses(const FoundDevice& device, bool isIPv6) {
    return JoinedAs(device.identity.Of(MergeKey::kAddress), [&](const std::string& address) {
        return (address.find(':') != std::string::npos) == isIPv6 ? address : "";
    });
}

// "none" if there are none; empty if it was not asked for them.
std::string AlertsText(const FoundDevice& device) {
    const std::vector<Alert>& alerts = device.facts->alerts;
    return alerts.empty() && device.areAlertsKnown ? "none" : JoinedAs(alerts, AlertText, "; ");
}

// By the supply's name and how often it came before.
std::map<std::pair<std::string, int>, Level> LevelsOf(const PrinterFacts& facts) {
    std::map<std::pair<std::string, int>, Level> levels;
    std::map<std::string, int> counts;
    for (const Supply& supply : facts.supplies) {
        const std::string name = SupplyName(supply);
        if (supply.level.level) levels[{name, counts[name]++}] = supply.level;
    }
    return levels;
}

std::vector<FieldChange> ChangedFields(const FoundDevice& before, const FoundDevice& after) {
    std::vector<FieldChange> changes;
    const auto compare = [&](const std::string& field, const std::string& old,
                             const std::string& now, bool isPageCount = false) {
        if (!old.empty() && !now.empty() && old != now)
            changes.push_back({field, old, now, isPageCount});
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
        if (now == levels.end()) continue;
        const auto percent = PercentOf(old);
        if (!percent || percent != PercentOf(now->second))
            compare(name.first, LevelText(old), LevelText(now->second));
    }
    const auto& oldCounts = before.facts->pageCounts;
    const auto& newCounts = after.facts->pageCounts;
    const size_t counts = std::min(oldCounts.size(), newCounts.size());
    for (size_t i = 0; i < counts; ++i) {
        const std::string field = i == 0 ? "page count" : "page count " + std::to_string(i + 1);
        compare(field, std::to_string(oldCounts[i].count), std::to_string(newCounts[i].count),
                true);
    }
    return changes;
}

class Matcher {
  public:
    Matcher(const std::vector<FoundDevice>& before, const std::vector<FoundDevice>& after)
        : before_(before), after_(after), isTaken_(before.size()), matches_(after.size()) {
        for (const MergeKey key : kMergeKeys) MatchBy(key);
    }

    Comparison Result() const {
        Comparison result;
        for (size_t i = 0; i < after_.size(); ++i) {
            if (!matches_[i]) {
                result.added.push_back(i);
                continue;
            }
            const auto [old, key] = *matches_[i];
            auto fields = ChangedFields(before_[old], after_[i]);
            if (fields.empty()) {
                ++result.same;
            } else {
                result.changed.push_back({old, i, key, std::move(fields)});
            }
        }
        for (size_t i = 0; i < before_.size(); ++i) {
            if (!isTaken_[i]) result.gone.push_back(i);
        }
        return result;
    }

  private:
    void MatchBy(MergeKey key) {
        std::multimap<std::string, size_t> known;
        for (size_t i = 0; i < before_.size(); ++i) {
            for (const std::string& value : before_[i].identity.Of(key))
                if (!isTaken_[i]) known.emplace(value, i);
        }
        for (size_t i = 0; i < after_.size(); ++i) {
            if (matches_[i]) continue;
            for (const std::string& value : after_[i].identity.Of(key)) {
                const auto old = Find(known, value, after_[i].identity, key);
                if (!old) continue;
                isTaken_[*old] = true;
                matches_[i] = {*old, key};
                break;
            }
        }
    }

    // Removes a device from `known` once it has a match.
    std::optional<size_t> Find(std::multimap<std::string, size_t>& known, const std::string& value,
                               const Identity& identity, MergeKey key) const {
        auto [at, end] = known.equal_range(value);
        size_t claims = 0;
        while (at != end && claims < kMaxClaims) {
            if (isTaken_[at->second]) {
                at = known.erase(at);
            } else if (before_[at->second].identity.DiffersByStrongerKey(identity, key)) {
                ++at;
                ++claims;
            } else {
                return at->second;
            }
        }
        return std::nullopt;
    }

    const std::vector<FoundDevice>& before_;
    const std::vector<FoundDevice>& after_;
    std::vector<bool> isTaken_;
    std::vector<std::optional<std::pair<size_t, MergeKey>>> matches_;
};

constexpr size_t kMaxChanges = 10000;

std::string KeyOf(const DeviceRow& row) {
    const std::string& serial = row.Text(Column::kSerial);
    return serial.empty() ? row.Text(Column::kAddress) : serial;
}

// What counts as a change: not the level of a supply, but that it has become low or empty; not
// since when a device is silent, or for how long.
std::pair<std::string, std::string> StateOf(const DeviceRow& row) {
    Standing standing = row.standing;
    standing.lastAnswer.clear();
    if (standing.kind == Standing::Kind::kIncomplete) standing.note.clear();
    const std::string supplies = standing.Holds() ? row.summary.supplyProblem : "";
    return {Joined({StateText(standing, row.summary), supplies}),
            Joined({row.Text(Column::kState), supplies})};
}

}  // namespace

bool DeviceChange::HasOnlyPageCounts() const {
    return AllOf(fields, [](const FieldChange& field) { return field.isPageCount; });
}

bool Comparison::IsEqual(bool withPageCounts) const {
    return added.empty() && gone.empty() && AllOf(changed, [&](const DeviceChange& change) {
               return !withPageCounts && change.HasOnlyPageCounts();
           });
}

Comparison CompareDevices(std::vector<FoundDevice> before, std::vector<FoundDevice> after) {
    Comparison comparison = Matcher(before, after).Result();
    comparison.before = std::move(before);
    comparison.after = std::move(after);
    return comparison;
}
bool ChangeLog::Add(const DeviceRow& row, const std::string& time) {
    const Standing::Kind kind = row.standing.kind;
    if (kind == Standing::Kind::kBeingRead || kind == Standing::Kind::kNeverRead) return false;
    if (row.standing.isStateOnly) return false;  // beside former supplies it is no state of its own
    const auto state = StateOf(row);
    const auto before = std::exchange(states_[KeyOf(row)], state);
    if (before.first.empty() || before.first == state.first) return false;
    const std::string name =
        Joined({row.Text(Column::kName), row.Text(Column::kModel), row.Text(Column::kAddress)});
    changes_.push_front({time, name, before.second, state.second});
    if (changes_.size() > kMaxChanges) changes_.pop_back();
    marked_.insert(KeyOf(row));
    return true;
}

void ChangeLog::LearnStates(const std::vector<DeviceRow>& rows) {
    states_.clear();
    for (const DeviceRow& row : rows) Add(row, "");
}

bool ChangeLog::IsMarked(const DeviceRow& row) const { return marked_.count(KeyOf(row)) != 0; }

void ChangeLog::Unmark(const DeviceRow& row) { marked_.erase(KeyOf(row)); }

}  // namespace vndiscover::host
