// What a printer's variables mean (RFC 2790, 3805, 6933).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/printer/printer_reader.h"

namespace vndiscover::host {

// How much of a supply or in a tray is left. Levels of the Printer MIB are signed: -1 "no limit",
// -2 "unknown", -3 "some left" (RFC 3805, prtMarkerSuppliesLevel and prtInputCurrentLevel).
constexpr int64_t kUnknownLevel = -2;

struct Level {
    std::optional<int64_t> level, maximum;  // as the device gave them; empty: see `missing`
    std::string unit;                       // "impressions"; empty: none or unknown
    bool isPercent = false;                 // the level itself is the percentage
    bool isReceptacle = false;              // the level is the remaining capacity
    const char* missing = "not read";       // why there is no level
};

// 0 to 100, rounded down; empty if unknown. A level above its maximum counts as 100.
std::optional<int> PercentOf(const Level& level);

// The same as "40 %", of a level that is known; "under 1 %" if there is something left.
std::string PercentText(const Level& level);

// For a person: "40 % (400 of 1000 impressions)", "some left", "room left: 80 %".
std::string LevelText(const Level& level);

// All text is plain (see text.h); empty: not given.
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
// Of ifTable, in the order of their indexes (RFC 1213).
struct Interface {
    std::string description;
    std::string type;             // "ethernet csmacd"
    std::string speed;            // "100 Mbit/s"
    std::string physicalAddress;  // "02:00:5E:10:00:01"
    std::string adminStatus;      // what the interface should be: "up"
    std::string operStatus;       // what it is
};

struct PrinterFacts {
    // The printer's index in hrDeviceTable. Empty: the device has no printer.
    std::optional<uint32_t> deviceIndex;
    std::vector<uint32_t> otherPrinters;  // indexes, if the device has several
    std::string model, serialNumber, name, location, description, macAddress;
    std::optional<uint64_t> upTicks;
    // When the state and upTicks were read, as in ScanAnswer; FactsOf leaves them empty.
    std::string readTime, upTicksTime;
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

// Whether the facts would have a deviceIndex, without the work of making them.
bool HasPrinter(const PrinterAnswers& answers);

// Sets the gaps of a device that was read, which say why levels are missing.
void SetGaps(PrinterFacts& facts, std::vector<Gap> gaps);

// "not given" if the subject, or the object, was asked for and is missing; otherwise "not read".
const char* MissingText(const std::vector<Gap>& gaps, std::string_view subject,
                        std::string_view object = "");

}  // namespace vndiscover::host
