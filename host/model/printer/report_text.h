// A report for a terminal.
#pragma once

#include <cstddef>
#include <string>

#include "model/printer/report.h"

namespace vndiscover::host {

struct TextStyle {
    size_t width = 80;        // of a line, in characters
    bool hasColours = false;  // as escape sequences, of bars and marks
    bool hasMarks = true;     // "!" and "!!" before what is worth a look
    bool hasDetails = false;
};

// Titles, and labels without a title, on the left; levels as bars. Lines end in LF. Only commands
// and long words exceed the width.
std::string ReportText(const Report& report, const TextStyle& style = {});

}  // namespace vndiscover::host
