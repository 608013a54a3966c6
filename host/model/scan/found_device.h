// What the answers of one device say about it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/printer/printer_facts.h"
#include "model/scan/identity.h"
#include "model/scan/scan.h"
#include "values/json_output.h"

namespace vndiscover::host {

// Why two answers were merged into one device. To undo it, add the pair to Scan::splits.
struct Merge {
    MergeKey key;
    std::string value;  // of the key, common to both
    size_t first, second;
};

struct FoundDevice {
    std::vector<size_t> answers;  // indexes in Scan::answers, ascending; the first identifies it
    Identity identity;
    std::vector<std::string> types;             // by WS-Discovery, see ProbeMatch
    std::string added;                          // by hand, as this; empty: it was not
    bool hasVariables = false;                  // was asked after a sweep, and answered
    bool areAlertsKnown = false;                // they were asked for with its state
    std::shared_ptr<const PrinterFacts> facts;  // never null; copies of the device share them
    std::vector<Merge> merges;
};

// Combines those of these answers that still hold; of WS-Discovery replies, the first 256.
FoundDevice DescribeDevice(const Scan& scan, std::vector<size_t> answers);

// A short line: "VN LaserPro 410, LP410-0042, 10.77.1.20".
std::string DeviceLine(const FoundDevice& device);

JsonItem DeviceJson(const FoundDevice& device);

}  // namespace vndiscover::host
