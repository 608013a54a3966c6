#pragma once

#include <string>
#include <vector>

#include "model/scan/found_device.h"

namespace vndiscover::host {

struct FieldChange {
    // "address", "name", "firmware", "device", "printer", "errors", "alerts", the name of a supply,
    // "page count", "page count 2"
    std::string field;
    std::string before, after;
    bool isPageCount = false;
};

struct DeviceChange {
    size_t before, after;  // indexes
    MergeKey key;          // that identifies them as the same device
    std::vector<FieldChange> fields;
    bool HasOnlyPageCounts() const;
};

struct Comparison {
    std::string beforeName = "the earlier scan", afterName = "the later scan";  // for a report
    std::vector<FoundDevice> before, after;
    std::vector<size_t> added, gone;  // indexes in `after` and in `before`
    std::vector<DeviceChange> changed;
    size_t same = 0;
    // Page counts grow with each job, so they make a difference only if asked for.
    bool IsEqual(bool withPageCounts) const;
};

// Devices are matched by the rules of MakeDevices. A field that only one of the scans has does not
// count as changed. A supply changes by one percentage point at least.
Comparison CompareDevices(std::vector<FoundDevice> before, std::vector<FoundDevice> after);

}  // namespace vndiscover::host
