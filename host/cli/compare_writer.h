// The output of `compare`.
#pragma once

#include <string>

#include "model/scan/compare.h"

namespace vndiscover::host {

// The devices before and after, and the differences.
struct ComparedScans {
    std::vector<FoundDevice> before, after;
    Comparison changes;
};

std::string ComparisonText(const ComparedScans& scans);
std::string ComparisonJson(const ComparedScans& scans);

}  // namespace vndiscover::host
