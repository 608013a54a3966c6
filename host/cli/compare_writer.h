// The output of `compare` for a program.
#pragma once

#include <string>

#include "model/scan/compare.h"

namespace vndiscover::host {

// One line.
std::string ComparisonJson(const Comparison& comparison);

}  // namespace vndiscover::host
