#include "model/scan/scan_report.h"

#include <algorithm>
#include <utility>

#include "values/plain_text.h"

namespace vndiscover::host {
namespace {

void AddDevice(ReportSection& section, const char* label, const FoundDevice& device, Mark mark) {
    section.Add(label, DeviceLine(device), Severity::kAttention);
    if (!section.rows.empty()) section.rows.back().mark = mark;
}

std::string Counts(const Comparison& comparison) {
    const auto named = [](const std::string& name, size_t devices) {
        return PlainText(name) + " (" + std::to_string(devices) +
               (devices == 1 ? " device)" : " devices)");
    };
    const auto printed = static_cast<size_t>(
        std::count_if(comparison.changed.begin(), comparison.changed.end(),
                      [](const DeviceChange& change) { return change.HasOnlyPageCounts(); }));
    return named(comparison.beforeName, comparison.before.size()) + ", " +
           named(comparison.afterName, comparison.after.size()) + ": " +
           std::to_string(comparison.added.size()) + " new, " +
           std::to_string(comparison.gone.size()) + " gone, " +
           std::to_string(comparison.changed.size() - printed) + " changed, " +
           std::to_string(comparison.same + printed) + " equal" +
           (printed == 0 ? "" : ", of which " + std::to_string(printed) + " have printed");
}

}  // namespace

Report ReportOf(const FoundDevice& device, const DeviceRow& row, std::vector<Gap> gaps) {
    PrinterFacts facts = *device.facts;
    // Those of all answers.
    facts.serialNumber = row.Text(Column::kSerial);
    facts.macAddress = row.Text(Column::kMac);
    facts.gaps = std::move(gaps);
    Report report = ReportOf(
        facts, {row.Text(Column::kAddress), row.Text(Column::kProtocols), device.hasVariables});
    ReportSection section;
    for (const std::string& endpoint : device.identity.Of(MergeKey::kEndpoint))
        section.Add("Endpoint", PlainText(endpoint));
    for (const Merge& merge : device.merges) {
        const std::string text =
            "by its " + std::string(KeyName(merge.key)) + " " + PlainText(merge.value);
        // Several answers are often merged by the same key.
        if (section.rows.empty() || section.rows.back().text != text)
            section.Add("One device", text);
    }
    report.push_back(std::move(section));
    return report;
}

Report ReportOf(const Comparison& comparison) {
    ReportSection section;
    section.Add("compared", Counts(comparison));
    for (const size_t index : comparison.added)
        AddDevice(section, "new", comparison.after[index], Mark::kNew);
    for (const size_t index : comparison.gone)
        AddDevice(section, "gone", comparison.before[index], Mark::kGone);
    for (const DeviceChange& change : comparison.changed) {
        const bool hasPrinted = change.HasOnlyPageCounts();
        AddDevice(section, hasPrinted ? "printed" : "changed", comparison.after[change.after],
                  hasPrinted ? Mark::kNone : Mark::kChanged);
        for (const FieldChange& field : change.fields) {
            section.Add(
                "", field.field + ": " + PlainText(field.before) + " -> " + PlainText(field.after));
        }
    }
    return {section};
}

}  // namespace vndiscover::host
