// The differences between two scans.
#pragma once

#include <string>
#include <vector>

#include "model/scan/found_device.h"

namespace vndiscover::host {

struct FieldChange {
    std::string field;  // "address", "name", "firmware", "page count", "page count 2"
    std::string before, after;
};

struct DeviceChange {
    size_t before, after;  // indexes in the two lists
    MergeKey key;          // that identifies them as the same device
    std::vector<FieldChange> fields;
};

struct Comparison {
    std::vector<size_t> added, gone;  // indexes in the later and in the earlier list
    std::vector<DeviceChange> changed;
    size_t same = 0;
    bool IsEqual() const { return added.empty() && gone.empty() && changed.empty(); }
};

// Devices are matched by the rules of MakeDevices. A field that only one of the scans has does not
// count as changed: it may not have been requested.
Comparison CompareDevices(const std::vector<FoundDevice>& before,
                          const std::vector<FoundDevice>& after);

}  // namespace vndiscover::host
