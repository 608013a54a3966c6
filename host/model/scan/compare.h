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
    size_t before, after;  // indexes
    MergeKey key;          // that identifies them as the same device
    std::vector<FieldChange> fields;
};

struct Comparison {
    std::vector<FoundDevice> before, after;
    std::vector<size_t> added, gone;  // indexes in `after` and in `before`
    std::vector<DeviceChange> changed;
    size_t same = 0;
    bool IsEqual() const { return added.empty() && gone.empty() && changed.empty(); }
};

// Devices are matched by the rules of MakeDevices. A field that only one of the scans has does not
// count as changed: it may not have been requested.
Comparison CompareDevices(std::vector<FoundDevice> before, std::vector<FoundDevice> after);

}  // namespace vndiscover::host
