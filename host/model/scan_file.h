// Scans as text: a JSON document, an answer a line.
//
//   {"format": "vndiscover-scan", "version": 1,
//    "sweeps": [{"kind": "snmpv1", "form": "value", "ipv6": false, "oid": ".1.3...", "time":
//    "..."}], "answers": [{"sweep": 0, "time": "...", "address": "10.77.1.20", "text": "VN LaserPro
//    410"}], "splits": [[0, 4]], "devices": [...]}
//
// kind: snmpv1, snmpv3, wsd; form: value, document, variable, reply, as in scan.h. "oid" has a
// sweep of the form "value". The bytes of an answer are "text" where JSON can hold them as they
// are, else "hex". An answer of the form "variable" has "oid" and "type" too, and "wholeSize" where
// it was cut. Numbers in "splits" and "devices" count answers from 0. The devices are there for
// other programs: a reader makes them anew. Members that are not known are passed over.
#ifndef VNDISCOVER_HOST_MODEL_SCAN_FILE_H
#define VNDISCOVER_HOST_MODEL_SCAN_FILE_H

#include <cstddef>
#include <optional>
#include <string>

#include "model/scan.h"

namespace vndiscover::host {

constexpr size_t kMaxScanSize = size_t{128} << 20;  // bytes

// Empty, with `problem`: too large to be read again.
std::optional<std::string> WriteScan(const Scan& scan, std::string& problem);

// Takes any text. Empty, with `problem` naming the line and the reason: it is none of this version,
// broken, or larger than a scan gets.
std::optional<Scan> ReadScan(const std::string& text, std::string& problem);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_SCAN_FILE_H
