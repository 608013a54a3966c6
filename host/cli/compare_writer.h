// The output of `compare`.
#ifndef VNDISCOVER_HOST_CLI_COMPARE_WRITER_H
#define VNDISCOVER_HOST_CLI_COMPARE_WRITER_H

#include <string>

#include "model/compare.h"

namespace vndiscover::host {

// The devices before and after, and the differences.
struct ComparedScans {
    std::vector<FoundDevice> before, after;
    Comparison changes;
};

std::string ComparisonText(const ComparedScans& scans);
std::string ComparisonJson(const ComparedScans& scans);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_CLI_COMPARE_WRITER_H
