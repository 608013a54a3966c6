// The report on a printer, for a person and for a program.
#ifndef VNDISCOVER_HOST_CLI_PRINTER_WRITER_H
#define VNDISCOVER_HOST_CLI_PRINTER_WRITER_H

#include <string>

#include "model/printer_facts.h"

namespace vndiscover::host {

// `upSince` is the local time at which the device started; empty if unknown. Lines end in LF.
std::string PrinterText(const PrinterFacts& facts, const std::string& upSince);

// One object in one line. Members that the device did not give are null.
std::string PrinterJson(const PrinterFacts& facts, const std::string& host);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_CLI_PRINTER_WRITER_H
