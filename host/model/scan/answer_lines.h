// The raw answers of one device as lines of a list.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/scan/scan.h"

namespace vndiscover::host {

// All text is plain.
struct AnswerLine {
    std::string object;  // its name or OID; otherwise "JSON document" or "reply"
    std::string value;   // one line
    SweepKind kind = SweepKind::kSnmpV1;
    std::string address, time;  // as in ScanAnswer
};

// `answers` are indexes in Scan::answers.
std::vector<AnswerLine> AnswerLines(const Scan& scan, const std::vector<size_t>& answers);

}  // namespace vndiscover::host
