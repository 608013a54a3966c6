#include "model/scan/change_log.h"

#include <utility>

#include "model/scan/device_view.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kMaxChanges = 10000;

std::string KeyOf(const DeviceRow& row) {
    const std::string& serial = row.Text(Column::kSerial);
    return serial.empty() ? row.Text(Column::kAddress) : serial;
}

// What counts as a change: not the level of a supply, but that it has become low or empty.
std::string StateOf(const DeviceRow& row) {
    const std::string& state = row.Text(Column::kState);
    if (!row.standing.Holds() || row.supplySeverity == Severity::kFine) return state;
    return state + (row.lowestSupply == 0 ? ", a supply is empty" : ", a supply is low");
}

}  // namespace

bool ChangeLog::Add(const DeviceRow& row, const std::string& time) {
    const Standing::Kind kind = row.standing.kind;
    if (kind == Standing::Kind::kBeingRead || kind == Standing::Kind::kNeverRead) return false;
    const std::string state = StateOf(row);
    const std::string before = std::exchange(states_[KeyOf(row)], state);
    if (before.empty() || before == state) return false;
    const std::string name =
        Joined({row.Text(Column::kName), row.Text(Column::kModel), row.Text(Column::kAddress)});
    changes_.push_front({time, name, before, state});
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
