// What a printer's variables mean (RFC 2790, 3805, 6933).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/printer/interfaces.h"
#include "model/printer/level.h"
#include "model/printer/printer_reader.h"

namespace vndiscover::host {

// All text is plain (see plain_text.h), read in the device's character set; empty: not given.
// States are the words of the objects, such as "idle" or "markerTonerEmpty".
struct Supply {
    std::string description, colour, type;
    Level level;
};
struct Tray {
    std::string name, medium;
    Level level;
};
struct PageCount {
    uint64_t count;
    std::string unit;
};
struct Alert {
    std::string severity, group, code, description;
    std::optional<uint64_t> upTicks;  // hundredths of a second since the device started
};

struct PrinterFacts {
    // The printer's index in hrDeviceTable. Empty: the device has no printer.
    std::optional<uint32_t> deviceIndex;
    std::vector<uint32_t> otherPrinters;  // indexes, if the device has several
    std::string model, serialNumber, name, location, description, macAddress;
    std::optional<uint64_t> upTicks;
    std::string readTime;  // as in ScanAnswer; FactsOf leaves it empty
    std::string deviceStatus, printerStatus;
    std::optional<std::vector<std::string>> errors;
    std::string errorBits;           // bytes of which the errors are the names
    std::vector<std::string> panel;  // lines
    std::vector<PageCount> pageCounts;
    std::vector<Supply> supplies;
    std::vector<Tray> trays;
    std::vector<Alert> alerts;  // critical ones first
    std::vector<Interface> interfaces;
    std::vector<Gap> gaps;
};

PrinterFacts FactsOf(const PrinterAnswers& answers);

// Sets the gaps of a device that was read; they tell why levels are missing.
void SetGaps(PrinterFacts& facts, std::vector<Gap> gaps);

// "not given" if the device was asked for all of the subject, or for the object, and does not have
// it; otherwise "not read".
const char* MissingText(const std::vector<Gap>& gaps, std::string_view subject,
                        std::string_view object = "");

}  // namespace vndiscover::host
