// The report on a printer, for a person and for a program.
#pragma once

#include <string>

#include "model/printer/printer_facts.h"

namespace vndiscover::host {

// `upSince` is the local time at which the device started; empty if unknown. Lines end in LF.
std::string PrinterText(const PrinterFacts& facts, const std::string& upSince);

// One object in one line. Members that the device did not give are null.
std::string PrinterJson(const PrinterFacts& facts, const std::string& host);

}  // namespace vndiscover::host
