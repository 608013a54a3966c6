// A printer in a few words, for a list.
#pragma once

#include <optional>
#include <string>

#include "model/printer/report.h"

namespace vndiscover::host {

// "critical", "attention", "unknown", "fine".
const char* SeverityName(Severity severity);
// Sorts the worst first: critical, attention, unknown, fine.
int SeverityOrder(Severity severity);

struct PrinterSummary {
    Severity severity = Severity::kUnknown;
    std::string state;                // "no paper, door open", "idle"; empty: unknown
    std::optional<int> lowestSupply;  // percent
    std::string supply;               // "4 % Toner T410"; empty: no level is known
};

PrinterSummary SummaryOf(const PrinterFacts& facts);

}  // namespace vndiscover::host
