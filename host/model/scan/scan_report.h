// Reports on the devices of a scan.
#pragma once

#include <vector>

#include "model/printer/report.h"
#include "model/scan/compare.h"
#include "model/scan/device_view.h"

namespace vndiscover::host {

// `row` is the device's; `gaps` are those of its last reading.
Report ReportOf(const FoundDevice& device, const DeviceRow& row, std::vector<Gap> gaps,
                const LevelLimits& limits = {});

Report ReportOf(const Comparison& comparison);

// The same as a table: a row for each device that is new or gone, and for each field that differs.
struct ChangeRow {
    std::string device, what, before, after;  // plain
};
std::vector<ChangeRow> ChangesOf(const Comparison& comparison);
// "monday.json (3 devices), now (4 devices): 1 new, 0 gone, ..."
std::string CountsOf(const Comparison& comparison);

}  // namespace vndiscover::host
