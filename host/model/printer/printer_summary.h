// A printer in a few words, for a list.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/printer/report.h"

namespace vndiscover::host {

// "critical", "attention", "unknown", "fine".
const char* SeverityName(Severity severity);
// Sorts the worst first: critical, attention, unknown, fine.
int SeverityOrder(Severity severity);

struct PrinterSummary {
    Severity severity = Severity::kUnknown;
    std::string state;                          // "no paper, door open", "idle"; empty: unknown
    std::optional<int> lowestSupply;            // percent
    std::string supply;                         // "4 % Toner T410"; empty: no level is known
    std::string supplyColour;                   // see ColourWords
    Severity supplySeverity = Severity::kFine;  // of the worst one whose level is known
};

PrinterSummary SummaryOf(const PrinterFacts& facts, const LevelLimits& limits = {});

struct PrinterLine {
    PrinterFacts facts;
    PrinterSummary summary;
    std::vector<std::string> addresses;
    std::string problem;  // why not everything was read; empty: everything was
};

// "Black toner: 62 % (62 of 100); Waste box: room left: 97 % (97 of 100)"
std::string SuppliesText(const PrinterFacts& facts);
// The first page count; empty if there is none.
std::string CountText(const PrinterFacts& facts);

}  // namespace vndiscover::host
