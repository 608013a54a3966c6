// Scans as text: a JSON document with one answer per line.
//
//   {"format": "vndiscover-scan", "version": 1,
//    "sweeps": [
//      {"kind": "snmpv1", "form": "value", "ipv6": false, "oid": ".1.3...", "time": "..."}],
//    "answers": [
//      {"sweep": 0, "time": "...", "address": "10.77.1.20", "text": "VN LaserPro 410"}],
//    "splits": [[0, 4]], "devices": [...]}
//
// kind: snmpv1, snmpv3, wsd; form: value, document, variable, reply, added, as in scan.h. A sweep
// of the form "value" has an "oid"; one of a search has its number as "search"; "complete" is true
// if it ran to its end, "cut" if it is a reading that ended early, "list" if it read all that a
// list shows. The bytes of an answer are "text" if JSON can hold them unchanged, otherwise "hex".
// An answer of the form "variable" also has "oid" and "type", and "wholeSize" if it was cut.
// Numbers in "splits" and "devices" are indexes of answers, from 0. The devices are for other
// programs; ReadScan derives them again. Unknown members are ignored.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "model/scan/scan.h"

namespace vndiscover::host {

constexpr size_t kMaxScanSize = size_t{128} << 20;  // bytes

// Empty, with the reason in `problem`, if the scan is too large to be read again.
std::optional<std::string> WriteScan(const Scan& scan, std::string& problem);

// Leaves answers out of a scan without splits whose text has over `maxSize` bytes or is too large
// otherwise: those of the largest sweep, first the latest ones from the addresses with the most.
// `leftOut` is their number. Empty, with the reason in `problem`, if too large without any answer.
std::optional<std::string> WriteFittingScan(Scan scan, size_t maxSize, size_t& leftOut,
                                            std::string& problem);

// Accepts any text. Empty, with the line and the reason in `problem`, if it is not a scan of this
// version, is malformed, or is larger than a scan may be.
std::optional<Scan> ReadScan(const std::string& text, std::string& problem);

}  // namespace vndiscover::host
