// What has changed in a list that is watched: the states of its devices.
#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vndiscover::host {

struct DeviceRow;

struct StateChange {
    std::string time;  // UTC, as in ScanAnswer
    std::string device, before, after;
};

class ChangeLog {
  public:
    // A row as it is now. True if its state has changed; one that is being read has none.
    bool Add(const DeviceRow& row, const std::string& time);
    // The latest first; of a long time, the last 10,000.
    const std::deque<StateChange>& Changes() const { return changes_; }
    bool IsMarked(const DeviceRow& row) const;
    void Unmark(const DeviceRow& row);
    // The list is another one, whose states are no changes. The changes so far are kept.
    void ForgetStates() {
        states_.clear();
        marked_.clear();
    }
    // The limits of supplies are others: no device has changed, and marks stay.
    void LearnStates(const std::vector<DeviceRow>& rows);

  private:
    // By serial number, otherwise by address.
    std::map<std::string, std::string> states_;
    std::set<std::string> marked_;
    std::deque<StateChange> changes_;
};

}  // namespace vndiscover::host
