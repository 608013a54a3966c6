// Facts for a program: one object in one line, or an array of such lines.
#pragma once

#include <optional>
#include <string>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"
#include "model/printer/printer_facts.h"
#include "model/printer/printer_summary.h"
#include "model/scan/compare.h"

namespace vndiscover::host {

// Members that the device did not give are null.
std::string PrinterJson(const PrinterFacts& facts, const std::string& host);
// An array; what was not asked for in a list is not in it.
std::string PrintersJson(const std::vector<PrinterLine>& printers);
std::string ComputerJson(const ComputerReport& report);
// isOnOwnNetwork: see IsOnOwnNetwork.
std::string HostJson(const HostDiagnosis& diagnosis, std::optional<bool> isOnOwnNetwork,
                     const std::string& host);
std::string ComparisonJson(const Comparison& comparison);

}  // namespace vndiscover::host
