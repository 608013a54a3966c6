// The shown rows of a table of devices as documents for other programs.
#pragma once

#include <string>
#include <vector>

#include "model/scan/device_view.h"

namespace vndiscover::host {

struct Heading {
    Column column;
    std::string text;
};

// CSV with these columns: UTF-8 with a byte order mark, CR LF, and a line of headings. A cell that
// a spreadsheet would run as a formula starts with an apostrophe.
std::string CsvOf(const DeviceView& view, const std::vector<Heading>& headings);

// The rows' answers to SNMP sweeps, in the form of `vndiscover sweep --format json`. A device
// without one, found by WS-Discovery, has an empty value.
std::string JsonOf(const DeviceView& view, const Scan& scan);

}  // namespace vndiscover::host
