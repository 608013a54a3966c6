// The facts of a printer for a program.
#pragma once

#include <string>

#include "model/printer/printer_facts.h"

namespace vndiscover::host {

// One object in one line. Members that the device did not give are null.
std::string PrinterJson(const PrinterFacts& facts, const std::string& host);

}  // namespace vndiscover::host
