#pragma once

#include <vector>

#include "model/printer/report.h"
#include "model/scan/compare.h"

namespace vndiscover::host {

struct DeviceRow;

// `gaps`: of the device's last reading; empty: not known.
Report ReportOf(const DeviceRow& device, std::optional<std::vector<Gap>> gaps,
                const LevelLimits& limits = {});

Report ReportOf(const Comparison& comparison);

// The same as a table: a row for each field that differs, and for each device that is new or gone.
struct ChangeRow {
    std::string device, what, before, after;  // plain
};
std::vector<ChangeRow> ChangesOf(const Comparison& comparison);
// "monday.json (3 devices), now (4 devices): 1 new, 0 gone, ..."
std::string CountsOf(const Comparison& comparison);

// A raw answer of a device. All text is plain.
struct AnswerLine {
    std::string object;  // its name or OID; otherwise "JSON document" or "reply"
    std::string value;   // one line
    SweepKind kind = SweepKind::kSnmpV1;
    std::string address, time;  // as in ScanAnswer
};

// Those of these answers, by their indexes, that still hold; see CurrentAnswers.
std::vector<AnswerLine> AnswerLines(const Scan& scan, const std::vector<size_t>& answers);

}  // namespace vndiscover::host
