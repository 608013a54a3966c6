// The network interfaces of a device (RFC 1213, ifTable).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/printer/printer_reader.h"

namespace vndiscover::host {

// All text is plain; empty: not given.
struct Interface {
    std::string description;
    std::string type;             // "ethernet csmacd"
    std::string speed;            // "100 Mbit/s"
    std::string physicalAddress;  // "02:00:5E:10:00:01"
    std::string adminStatus;      // what the interface should be: "up"
    std::string operStatus;       // what it is
};

// In the order of their indexes, from what ReadPrinter and ReadInterfaces have read.
std::vector<Interface> InterfacesOf(const PrinterAnswers& answers);

// "9.6 kbit/s", "2.5 Gbit/s"; empty for 0, by which devices say that they do not know.
std::string SpeedText(uint64_t bitsPerSecond);

}  // namespace vndiscover::host
