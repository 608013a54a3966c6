// Reports on the devices of a scan.
#pragma once

#include <vector>

#include "model/printer/report.h"
#include "model/scan/compare.h"
#include "model/scan/device_view.h"

namespace vndiscover::host {

// `row` is the device's; `gaps` are those of its last reading.
Report ReportOf(const FoundDevice& device, const DeviceRow& row, std::vector<Gap> gaps);

Report ReportOf(const Comparison& comparison);

}  // namespace vndiscover::host
