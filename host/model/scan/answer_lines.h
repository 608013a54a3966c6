// The raw answers of one device as lines of a list.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "model/scan/scan.h"

namespace vndiscover::host {

// All text is plain.
struct AnswerLine {
    std::string time;  // as in ScanAnswer
    SweepKind kind = SweepKind::kSnmpV1;
    AnswerForm form = AnswerForm::kValue;
    std::string address;
    std::string object;               // its name or OID, for kValue and kVariable
    std::string value;                // one line
    std::optional<size_t> wholeSize;  // in bytes, if the end of the value is missing
};

// `answers` are indexes in Scan::answers.
std::vector<AnswerLine> AnswerLines(const Scan& scan, const std::vector<size_t>& answers);

}  // namespace vndiscover::host
