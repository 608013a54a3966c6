#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "model/scan/found_device.h"

namespace vndiscover::host {

struct DeviceRow;

struct FieldChange {
    // "address", "name", "firmware", "device", "printer", "errors", "alerts", the name of a supply,
    // "page count", "page count 2"
    std::string field;
    std::string before, after;
};

struct DeviceChange {
    size_t before, after;  // indexes
    MergeKey key;          // that identifies them as the same device
    std::vector<FieldChange> fields;
    bool isPrinted;  // equal but for page counts, which were not to count
};

struct Comparison {
    std::string beforeName = "the earlier scan", afterName = "the later scan";  // for a report
    std::vector<FoundDevice> before, after;
    std::vector<size_t> added, gone;  // indexes in `after` and in `before`
    std::vector<DeviceChange> changed;
    // `same` includes the other two: `printed` differ only by page counts; of `unread`, one scan at
    // least has no variables.
    size_t same = 0, printed = 0, unread = 0;
    bool IsEqual() const { return added.empty() && gone.empty() && changed.size() == printed; }
};

// Devices are matched by the rules of MakeDevices. A field that only one of the scans has does not
// count as changed. A supply changes by one percentage point at least. Page counts grow with each
// job, so they count only if asked for.
Comparison CompareDevices(std::vector<FoundDevice> before, std::vector<FoundDevice> after,
                          bool withPageCounts = false);

// What has changed in a list that is watched: the states of its devices.
struct StateChange {
    std::string time;  // UTC, as in ScanAnswer
    std::string device, before, after;
};

class ChangeLog {
  public:
    // Compares the row with what it was. Returns true if its state has changed. A device that is
    // being read, or of which only the first of two rounds was read, has no state.
    bool Add(const DeviceRow& row, const std::string& time);
    // The latest first, 10,000 at most.
    const std::deque<StateChange>& Changes() const { return changes_; }
    bool IsMarked(const DeviceRow& row) const;
    void Unmark(const DeviceRow& row);
    // For another list: its states are no changes. The changes so far remain.
    void ForgetStates() {
        states_.clear();
        marked_.clear();
    }
    // For other limits of supplies: no device has changed by them. The marks remain.
    void RecordStates(const std::vector<DeviceRow>& rows);

  private:
    struct State {
        std::string compared, shown, readTime;
        bool isSilent = false;
    };
    // By serial number, otherwise by MAC address or address; a separated one by its addresses and
    // protocols.
    std::map<std::string, State> states_;
    std::set<std::string> marked_;
    std::deque<StateChange> changes_;
};

}  // namespace vndiscover::host
