// By which protocols a device answered, and why not by the others.
#pragma once

#include <string>
#include <vector>

#include "model/printer/printer_reader.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

enum class ProtocolState {
    kAnswered,
    kNoValue,   // it answered, but does not have what was asked for
    kRefused,   // or its answer could not be read; the note says why
    kPending,   // a sweep that asks it is still running
    kSilent,    // though it was asked
    kNotAsked,  // or the request could not be sent; then the note says so
};

struct ProtocolLine {
    SweepKind kind = SweepKind::kSnmpV1;
    bool useIPv6 = false;
    ProtocolState state = ProtocolState::kNotAsked;
    std::string note;  // on the last reading if it ended early, otherwise empty
};

// The requests to one address by one protocol.
struct Reading {
    std::string address;
    SweepKind kind = SweepKind::kSnmpV1;
    PrinterAnswers end;  // without the values, which are in the scan
    bool hasValues{};    // there were some
    std::string time{};  // of its end, as in ScanAnswer
};

// A line for each protocol over IPv4; over IPv6 only for those that were used over it, and not for
// a sweep's silence if the device answers otherwise. `answers`
// are the device's in the scan, `readings` those of its addresses, `running` the indexes of sweeps
// that have not ended. A sweep over SNMPv3 shows a refusal as silence: only a reading says why.
std::vector<ProtocolLine> ProtocolsOf(const Scan& scan, const std::vector<size_t>& answers,
                                      const std::vector<Reading>& readings,
                                      const std::vector<size_t>& running);

}  // namespace vndiscover::host
