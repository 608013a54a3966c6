// The output of `vndiscover printers`.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/printer/printer_facts.h"
#include "model/printer/printer_summary.h"

namespace vndiscover::host {

struct PrinterLine {
    PrinterFacts facts;
    PrinterSummary summary;
    std::vector<std::string> addresses;
    std::string problem;  // why not everything was read; empty: everything was
};

void SortWorstFirst(std::vector<PrinterLine>& printers);

// One line each, of at most `width` characters if the columns' contents can be cut to it.
std::string PrintersText(const std::vector<PrinterLine>& printers, size_t width);
std::string PrintersCsv(const std::vector<PrinterLine>& printers);

}  // namespace vndiscover::host
