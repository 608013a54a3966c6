#include "model/printer/printer_summary.h"

#include <algorithm>

#include "values/text.h"

namespace vndiscover::host {
namespace {

Severity StateSeverity(const PrinterFacts& facts) {
    const Severity errors = ErrorSeverity(facts);
    if (facts.deviceStatus == "down" || errors == Severity::kCritical) return Severity::kCritical;
    if (facts.deviceStatus == "warning") return Severity::kAttention;
    return facts.deviceStatus.empty() && facts.printerStatus.empty() && !facts.errors
               ? Severity::kUnknown
               : errors;
}

// Errors come before the state: a printer with an open door may still be "idle".
std::string StateText(const PrinterFacts& facts) {
    if (facts.errors && !facts.errors->empty()) return ErrorText(facts);
    const std::string& status = facts.printerStatus;
    const bool isTold = !status.empty() && status != "other" && status != "unknown";
    return PlainWords(isTold && facts.deviceStatus != "down" ? status : facts.deviceStatus);
}

}  // namespace

const char* SeverityName(Severity severity) {
    constexpr const char* kNames[] = {"fine", "attention", "critical", "unknown"};
    return kNames[static_cast<size_t>(severity)];
}

int SeverityOrder(Severity severity) {
    constexpr int kOrders[] = {3, 1, 0, 2};
    return kOrders[static_cast<size_t>(severity)];
}

PrinterSummary SummaryOf(const PrinterFacts& facts, const LevelLimits& limits) {
    PrinterSummary summary;
    summary.severity = StateSeverity(facts);
    summary.state = StateText(facts);
    for (const Supply& supply : facts.supplies) {
        const Severity severity = SeverityOf(supply.level, limits);
        if (severity != Severity::kUnknown)
            summary.supplySeverity = std::max(summary.supplySeverity, severity);
        const auto percent = PercentOf(supply.level);
        if (!percent || (summary.lowestSupply && *percent >= *summary.lowestSupply)) continue;
        summary.lowestSupply = percent;
        summary.supply = std::to_string(*percent) + " % " + SupplyName(supply);
        summary.supplyColour = ColourWords(supply);
    }
    // It still prints, as far as its state tells.
    if (summary.severity == Severity::kFine && summary.supplySeverity != Severity::kFine)
        summary.severity = Severity::kAttention;
    return summary;
}

std::string SuppliesText(const PrinterFacts& facts) {
    return JoinedAs(
        facts.supplies,
        [](const Supply& supply) { return SupplyName(supply) + ": " + LevelText(supply.level); },
        "; ");
}

std::string CountText(const PrinterFacts& facts) {
    return facts.pageCounts.empty() ? "" : std::to_string(facts.pageCounts.front().count);
}

}  // namespace vndiscover::host
