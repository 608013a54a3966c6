#include "model/scan/scan_report.h"

#include <utility>

#include "model/asking/json_request.h"
#include "model/scan/device_view.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::string NameOf(const FoundDevice& device) {
    return Joined({device.facts->name, DeviceLine(device)});
}

std::string StateOf(const FoundDevice& device) { return SummaryOf(*device.facts).state; }

void AddDevice(ReportSection& section, const char* label, const FoundDevice& device,
               const std::string& state = "") {
    section.Add(label, NameOf(device));
    section.rows.back().repeatsLabel = true;
    if (!state.empty()) section.Add("", "state: " + state);
}

AnswerLine LineOf(const ScanSweep& sweep, const ScanAnswer& one) {
    AnswerLine line = {"", "", sweep.kind, PlainText(one.address), one.time};
    const Answer& answer = one.answer;
    if (sweep.form == AnswerForm::kVariable) {
        line.object = NameText(answer.oid);
        line.value = FormatNamedValue(answer.oid, answer.type, answer.bytes) + CutNote(answer);
    } else if (sweep.form == AnswerForm::kValue) {
        const Answer text = AnsweredWith(sweep.oid, kOctetString, answer.bytes);
        line.object = NameText(sweep.oid);
        line.value = ShownValue(text.bytes) + CutNote(text);
    } else {
        line.object = sweep.form == AnswerForm::kReply      ? "reply"
                      : sweep.form == AnswerForm::kDocument ? "JSON document"
                                                            : "added by hand";
        line.value = PlainText(answer.bytes);
        if (sweep.form == AnswerForm::kDocument && IsCutDocument(answer.bytes))
            line.value += " [the first " + std::to_string(answer.bytes.size()) + " bytes]";
    }
    if (line.value.empty()) line.value = "(empty)";
    return line;
}

}  // namespace

Report ReportOf(const DeviceRow& device, std::optional<std::vector<Gap>> gaps,
                const LevelLimits& limits) {
    PrinterFacts facts = *device.facts;
    // From all of the device's answers. A placeholder, which identifies nothing, is not among them.
    for (const auto& [column, fact] : {std::pair(Column::kSerial, &PrinterFacts::serialNumber),
                                       {Column::kMac, &PrinterFacts::macAddress}})
        if (!device.Text(column).empty()) facts.*fact = device.Text(column);
    const bool isRead = device.hasVariables && gaps;
    if (isRead) SetGaps(facts, *std::move(gaps));
    Report parts = ReportOf(
        facts, {device.Text(Column::kAddress), device.Text(Column::kProtocols), isRead, limits});
    // What needs attention comes first, the identity last.
    const PrinterSummary summary = SummaryOf(facts, limits);
    ReportSection first;
    first.Add("State", StateLine(device.standing, summary, facts.readTime), device.severity);
    // Neither the state nor the name of a supply is said twice.
    EraseIf(parts[static_cast<size_t>(ReportPart::kState)].rows,
            [&](const ReportRow& one) { return one.text == summary.state; });
    for (ReportRow& one : parts[static_cast<size_t>(ReportPart::kSupplies)].rows) {
        const size_t what = one.text.rfind(", " + Lower(one.label));
        if (what != one.text.npos && what + 2 + one.label.size() == one.text.size())
            one.text.erase(what);
    }
    Report report = {std::move(first)};
    for (const ReportPart part : {ReportPart::kState, ReportPart::kSupplies, ReportPart::kTrays,
                                  ReportPart::kAlerts, ReportPart::kIdentity, ReportPart::kNotes})
        report.push_back(std::move(parts[static_cast<size_t>(part)]));
    ReportSection section;
    if (!device.added.empty()) section.Add("Added", "by hand, as " + device.added);
    section.Add("Types", Joined(device.types));
    for (const std::string& endpoint : device.identity.Of(MergeKey::kEndpoint))
        section.Add("Endpoint", PlainText(endpoint));
    for (const Merge& merge : device.merges) {
        const std::string text = std::string(KeyName(merge.key)) + " " + PlainText(merge.value);
        // Several answers are often merged by the same key.
        if (!AnyOf(section.rows, [&](const ReportRow& row) { return row.text == text; }))
            section.Add("Joined by", text);
    }
    report.push_back(std::move(section));
    return report;
}

std::vector<ChangeRow> ChangesOf(const Comparison& comparison) {
    std::vector<ChangeRow> rows;
    for (const DeviceChange& change : comparison.changed) {
        for (const FieldChange& field : change.fields)
            rows.push_back({NameOf(comparison.after[change.after]), field.field,
                            PlainText(field.before), PlainText(field.after)});
    }
    for (const size_t index : comparison.added)
        rows.push_back(
            {NameOf(comparison.after[index]), "new", "", StateOf(comparison.after[index])});
    for (const size_t index : comparison.gone)
        rows.push_back(
            {NameOf(comparison.before[index]), "gone", StateOf(comparison.before[index]), ""});
    return rows;
}

std::string CountsOf(const Comparison& comparison) {
    const auto named = [](const std::string& name, size_t devices) {
        return PlainText(name) + " (" + std::to_string(devices) +
               (devices == 1 ? " device)" : " devices)");
    };
    const size_t printed = comparison.printed;
    return named(comparison.beforeName, comparison.before.size()) + ", " +
           named(comparison.afterName, comparison.after.size()) + ": " +
           std::to_string(comparison.added.size()) + " new, " +
           std::to_string(comparison.gone.size()) + " gone, " +
           std::to_string(comparison.changed.size() - printed) + " changed, " +
           std::to_string(comparison.same) + " equal" +
           (printed == 0 ? "" : ", of which " + std::to_string(printed) + " have printed") +
           (comparison.unread == 0
                ? ""
                : "; equal without a reading: " + std::to_string(comparison.unread));
}

Report ReportOf(const Comparison& comparison) {
    ReportSection section;
    section.Add("compared", CountsOf(comparison));
    for (const size_t index : comparison.added)
        AddDevice(section, "new", comparison.after[index], StateOf(comparison.after[index]));
    for (const size_t index : comparison.gone)
        AddDevice(section, "gone", comparison.before[index], StateOf(comparison.before[index]));
    for (const DeviceChange& change : comparison.changed) {
        AddDevice(section, change.isPrinted ? "printed" : "changed",
                  comparison.after[change.after]);
        for (const FieldChange& field : change.fields) {
            section.Add(
                "", field.field + ": " + PlainText(field.before) + " -> " + PlainText(field.after));
        }
    }
    return {section};
}

std::vector<AnswerLine> AnswerLines(const Scan& scan, const std::vector<size_t>& answers) {
    std::vector<AnswerLine> lines;
    for (const size_t index : CurrentAnswers(scan, answers)) {
        const ScanAnswer& answer = scan.answers[index];
        lines.push_back(LineOf(scan.sweeps[answer.sweep], answer));
    }
    return lines;
}

}  // namespace vndiscover::host
