// The output of `vndiscover printers`.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/printer/printer_summary.h"

namespace vndiscover::host {

void SortWorstFirst(std::vector<PrinterLine>& printers);

// One line each, of at most `width` characters if the columns' contents can be cut to it.
std::string PrintersText(const std::vector<PrinterLine>& printers, size_t width);
std::string PrintersCsv(const std::vector<PrinterLine>& printers);

}  // namespace vndiscover::host
