// What has changed in a list that is watched: the states of its devices.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>

#include "model/scan/device_view.h"

namespace vndiscover::host {

struct StateChange {
    std::string time;  // UTC, as in ScanAnswer
    std::string device, before, after;
};

class ChangeLog {
  public:
    // Takes a row as it is now. A device that is being read, or has never been, is left out.
    // Returns whether its state has changed.
    bool Take(const DeviceRow& row, const std::string& time);
    // The latest first; of a long time, the last 10,000.
    const std::deque<StateChange>& Changes() const { return changes_; }
    // Whether the device has changed and was not looked at since.
    bool IsMarked(const DeviceRow& row) const;
    void Unmark(const DeviceRow& row);
    // The list is another one, whose states are no changes. The changes so far are kept.
    void ForgetStates() { known_.clear(); }

  private:
    struct Known {
        std::string state;
        bool isMarked = false;
    };
    std::map<std::string, Known> known_;  // by serial number, otherwise by address
    std::deque<StateChange> changes_;
};

}  // namespace vndiscover::host
