// A report for a terminal.
#pragma once

#include <cstddef>
#include <string>

#include "model/printer/report.h"

namespace vndiscover::host {

constexpr size_t kReportWidth = 80;

// Titles, and labels without a title, on the left; levels as bars. Lines end in LF and have at most
// `width` characters, except for commands and words that are longer.
std::string ReportText(const Report& report, size_t width = kReportWidth);

}  // namespace vndiscover::host
