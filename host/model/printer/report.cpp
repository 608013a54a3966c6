#include "model/printer/report.h"

#include <algorithm>

#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// Ticks of a hundredth of a second in whole seconds: "5 days, 3:04:05".
std::string Duration(uint64_t ticks) {
    const std::string text = TickText(ticks);
    return text.substr(0, text.size() - 3);
}

// "" for words that say nothing about a part or a kind.
std::string KindText(const std::string& word) {
    return word == "other" || word == "unknown" ? "" : PlainWords(word);
}

// A device that is down and warms up is on its way (RFC 3805, the table of printer states).
Severity DeviceSeverity(const PrinterFacts& facts) {
    if (facts.deviceStatus == "down" && facts.printerStatus != "warmup") return Severity::kCritical;
    return facts.deviceStatus == "warning" ? Severity::kAttention : Severity::kFine;
}

ReportSection State(const PrinterFacts& facts) {
    ReportSection section;
    section.Add("Device", PlainWords(facts.deviceStatus), DeviceSeverity(facts));
    section.Add("Printer", PlainWords(facts.printerStatus));
    section.Add("Errors", ErrorText(facts), ErrorSeverity(facts));
    return section;
}

ReportSection Alerts(const PrinterFacts& facts) {
    ReportSection section;
    for (const Alert& alert : facts.alerts) {
        std::string text = AlertText(alert);
        // The time of an alert from before the device's restart would be in the future.
        // 0 is of a device that records no times.
        if (alert.upTicks.value_or(0) > 0 && facts.upTicks && *alert.upTicks <= *facts.upTicks)
            text += ", for " + Duration(*facts.upTicks - *alert.upTicks);
        section.Add("Alerts", text,
                    alert.severity == "critical" ? Severity::kCritical
                    : alert.severity == "other"  ? Severity::kFine
                                                 : Severity::kAttention);
    }
    for (const std::string& line : facts.panel) section.Add("Panel", line);
    for (const PageCount& count : facts.pageCounts)
        section.Add("Printed", Joined({std::to_string(count.count), count.unit}, " "));
    return section;
}

ReportSection Identity(const PrinterFacts& facts, const ReportContext& context) {
    ReportSection section;
    const auto add = [&](const char* label, const std::string& text, const char* subject) {
        const bool isMissing = text.empty() && context.isRead;
        section.Add(label,
                    isMissing ? "(" + std::string(MissingText(facts.gaps, subject)) + ")" : text);
    };
    // Without a model, the description would have been shown as the model.
    const bool isUndescribed =
        AnyOf(facts.gaps, [](const Gap& gap) { return gap.subject == "description"; });
    add("Model", facts.model, isUndescribed ? "description" : "model and state");
    add("Serial number", facts.serialNumber, "serial number");
    add("Name", facts.name, "name");
    add("Location", facts.location, "location");
    section.Add("Address", context.addresses);
    add("MAC address", facts.macAddress, "MAC address");
    section.Add("Protocols", context.protocols);
    if (facts.model.find(facts.description) == std::string::npos)
        section.Add("Description", facts.description);
    if (facts.upTicks) {
        const std::string start = LocalTimeBefore(facts.upTicksTime, *facts.upTicks / 100);
        section.Add("Up since", Joined({start, "(" + Duration(*facts.upTicks) + ")"}, " "));
    }
    return section;
}

ReportSection Supplies(const PrinterFacts& facts, const LevelLimits& limits) {
    ReportSection section = {"Supplies", {}};
    for (const Supply& supply : facts.supplies) {
        const std::string name = SupplyName(supply), kind = KindText(supply.type);
        const std::string what = Joined({KindText(supply.colour), kind == name ? "" : kind}, " ");
        section.Add({name, Joined({LevelText(supply.level), what}), PercentOf(supply.level),
                     SeverityOf(supply.level, limits), ColourWords(supply)});
    }
    return section;
}

ReportSection Trays(const PrinterFacts& facts, const LevelLimits& limits) {
    ReportSection section = {"Trays", {}};
    for (const Tray& tray : facts.trays) {
        const std::string number = "Tray " + std::to_string(section.rows.size() + 1);
        // An empty tray prevents only some jobs.
        section.Add({tray.name.empty() ? number : tray.name,
                     Joined({LevelText(tray.level), tray.medium}), PercentOf(tray.level),
                     std::max(SeverityOf(tray.level, limits), Severity::kAttention)});
    }
    return section;
}

// One gap for those with the same `key`; the other texts of each are joined, none twice.
std::vector<Gap> Merged(const std::vector<Gap>& gaps, std::string Gap::*key) {
    std::vector<Gap> merged;
    for (const Gap& gap : gaps) {
        Gap* known = FindIf(merged, [&](const Gap& one) { return one.*key == gap.*key; });
        // The rest of a subject was not asked for since the reading ended.
        if (known && key == &Gap::subject && gap.object.empty()) continue;
        if (!known) known = &merged.emplace_back();
        for (const auto& [text, separator] :
             {std::pair(&Gap::subject, ", "), {&Gap::object, ", "}, {&Gap::reason, "; "}}) {
            if ((known->*text).find(gap.*text) == std::string::npos)
                known->*text = Joined({known->*text, gap.*text}, separator);
        }
    }
    return merged;
}

// One row for what is missing for the same reasons: "trays, alerts: no answer".
void AddGaps(ReportSection& section, const std::vector<Gap>& gaps) {
    for (const Gap& row : Merged(Merged(gaps, &Gap::subject), &Gap::reason)) {
        if (row.reason.empty()) continue;
        section.Add(
            {"Not read", row.subject + ": " + row.reason, {}, Severity::kUnknown, "", row.object});
    }
}

// The others are warnings: it still prints.
bool StopsPrinting(std::string_view error) {
    constexpr std::string_view kStops[] = {"noPaper",
                                           "noToner",
                                           "doorOpen",
                                           "jammed",
                                           "offline",
                                           "inputTrayMissing",
                                           "outputTrayMissing",
                                           "outputFull",
                                           "markerSupplyMissing"};
    return Contains(kStops, error);
}

bool IsKnown(const std::string& status) {
    return !status.empty() && status != "other" && status != "unknown";
}

Severity StateSeverity(const PrinterFacts& facts) {
    const Severity severity = std::min(ErrorSeverity(facts), DeviceSeverity(facts));
    if (severity != Severity::kFine) return severity;
    return IsKnown(facts.deviceStatus) || IsKnown(facts.printerStatus) || facts.errors
               ? Severity::kFine
               : Severity::kUnknown;
}

// Of a level that is critical or needs attention.
const char* ProblemOf(const Level& level) {
    if (level.isReceptacle)
        return level.level == 0 ? "a waste container is full" : "a waste container is nearly full";
    return level.level == 0 ? kSupplyEmpty : kSupplyLow;
}

// Errors come before the state: a printer with an open door may still be "idle".
std::string StateText(const PrinterFacts& facts) {
    if (facts.errors && !facts.errors->empty()) return ErrorText(facts);
    const bool isDeviceStatus =
        DeviceSeverity(facts) == Severity::kCritical || !IsKnown(facts.printerStatus);
    return PlainWords(isDeviceStatus ? facts.deviceStatus : facts.printerStatus);
}

}  // namespace

Severity ErrorSeverity(const PrinterFacts& facts) {
    if (!facts.errors || facts.errors->empty()) return Severity::kFine;
    const bool prints = facts.printerStatus == "printing" && facts.deviceStatus != "down";
    const auto isCritical = [&](const std::string& error) {
        const bool isOfOneTray = error == "noPaper" || error == "inputTrayMissing";
        return StopsPrinting(error) && !(prints && isOfOneTray);
    };
    return AnyOf(*facts.errors, isCritical) ? Severity::kCritical : Severity::kAttention;
}

Severity SeverityOf(const Level& level, const LevelLimits& limits) {
    if (level.level == 0) return Severity::kCritical;
    if (const auto percent = PercentOf(level))
        return std::max(1, *percent) < limits.low ? Severity::kAttention : Severity::kFine;
    return level.level.value_or(kUnknownLevel) == kUnknownLevel ? Severity::kUnknown
                                                                : Severity::kFine;
}

std::string PlainWords(const std::string& word) {
    constexpr std::pair<std::string_view, const char*> kPlain[] = {
        {"opc", "photoconductor"},
        {"other", "another state"},
        {"warmup", "warming up"},
        {"markerOpcLifeAlmostOver", "photoconductor life almost over"},
        {"markerOpcLifeOver", "photoconductor life over"},
        {"finDevice", "finisher"},
        {"finSupply", "finisher supply"},
        {"finSupplyMediaInput", "finisher supply input"},
        {"finAttribute", "finisher attribute"},
        {"overduePreventMaint", "maintenance overdue"}};
    for (const auto& [known, plain] : kPlain) {
        if (word == known) return plain;
    }
    return SpacedWords(word);
}

std::string ColourWords(const Supply& supply) {
    return supply.colour.empty() ? supply.description : supply.colour;
}

std::string SupplyName(const Supply& supply) {
    if (!supply.description.empty()) return supply.description;
    const std::string kind = KindText(supply.type);
    return kind.empty() ? "supply" : kind;
}

std::string ErrorText(const PrinterFacts& facts) {
    if (!facts.errors) return "";
    return facts.errors->empty() ? "none" : JoinedAs(*facts.errors, PlainWords);
}

std::string AlertText(const Alert& alert) {
    const std::string what = Joined({KindText(alert.group), KindText(alert.code)});
    const std::string text = Joined(
        {KindText(alert.severity), alert.description.empty() ? what : alert.description}, ": ");
    if (text.empty()) return "alert";
    return alert.description.empty() || what.empty() ? text : text + " (" + what + ")";
}

const char* SeverityMark(Severity severity) {
    return severity == Severity::kCritical ? "!!" : severity == Severity::kAttention ? "!" : "";
}

std::string WholeText(const ReportRow& row) {
    return Joined({SeverityMark(row.severity), row.text}, " ");
}

const SupplyColour* FindSupplyColour(const std::string& words) {
    static constexpr SupplyColour kColours[] = {
        {"black", 0x000000, "90"},  {"cyan", 0x00A0D8, "36"},   {"magenta", 0xD8007C, "35"},
        {"yellow", 0xF0C800, "33"}, {"red", 0xD02020, "31"},    {"green", 0x209020, "32"},
        {"blue", 0x2040C0, "34"},   {"white", 0xFFFFFF, "97"},  {"gray", 0x808080, "37"},
        {"grey", 0x808080, "37"},   {"orange", 0xF08000, "33"}, {"violet", 0x8030A0, "35"}};
    std::string text = Lower(words);
    std::replace_if(
        text.begin(), text.end(), [](char one) { return one < 'a' || one > 'z'; }, ' ');
    const SupplyColour* last = nullptr;
    for (const std::string& word : SplitText(text, " ")) {
        const auto* known = FindIf(kColours, [&](const auto& one) { return word == one.word; });
        if (known) last = known;
    }
    return last;
}

std::vector<ReportRow> RowsOf(const Report& report) {
    std::vector<ReportRow> rows;
    for (const ReportSection& section : report) {
        bool needsTitle = !section.title.empty();
        for (ReportRow row : section.rows) {
            if (needsTitle && !row.label.empty()) rows.emplace_back().label = section.title;
            if (needsTitle && row.label.empty()) {
                row.label = section.title;
            } else if (!section.title.empty() && !row.label.empty()) {
                row.label.insert(0, "   ");
            }
            needsTitle = false;
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

Report ReportOf(const PrinterFacts& facts, const ReportContext& context) {
    Report report = {Identity(facts, context),
                     State(facts),
                     Alerts(facts),
                     Supplies(facts, context.limits),
                     Trays(facts, context.limits),
                     {}};
    for (const uint32_t other : facts.otherPrinters) {
        report.back().Add("Also there", "another printer, device index " + std::to_string(other));
    }
    AddGaps(report.back(), facts.gaps);
    return report;
}

ReportSection InterfaceSection(const PrinterFacts& facts) {
    ReportSection section = {"Interfaces", {}};
    for (const Interface& one : facts.interfaces) {
        const std::string number = "Interface " + std::to_string(section.rows.size() + 1);
        section.Add(one.description.empty() ? number : one.description,
                    Joined({one.operStatus, one.speed, one.physicalAddress, one.type,
                            one.adminStatus.empty() ? "" : "set to " + one.adminStatus}));
    }
    return section;
}

const char* SeverityName(Severity severity) {
    constexpr const char* kNames[] = {"critical", "attention", "unknown", "fine"};
    return kNames[static_cast<size_t>(severity)];
}

PrinterSummary SummaryOf(const PrinterFacts& facts, const LevelLimits& limits) {
    PrinterSummary summary;
    summary.severity = StateSeverity(facts);
    summary.state = StateText(facts);
    std::pair lowest(101, Severity::kFine);  // the worst one of the lowest level
    for (const Supply& supply : facts.supplies) {
        const Severity severity = SeverityOf(supply.level, limits);
        if (severity < summary.supplySeverity && severity != Severity::kUnknown) {
            summary.supplySeverity = severity;
            summary.supplyProblem = ProblemOf(supply.level);
        }
        const auto percent = PercentOf(supply.level);
        if (!percent || std::pair(*percent, severity) >= lowest) continue;
        lowest = {*percent, severity};
        summary.lowestSupply = percent;
        summary.supply = Joined({supply.level.isReceptacle ? "room left" : "",
                                 PercentText(supply.level), SupplyName(supply)},
                                " ");
        summary.supplyColour = ColourWords(supply);
    }
    // It still prints, as far as its state says.
    if (summary.supplySeverity != Severity::kFine)
        summary.severity = std::min(summary.severity, Severity::kAttention);
    return summary;
}

std::string UnreadText(const PrinterLine& printer) {
    std::vector<std::string> subjects;
    for (const Gap& gap : printer.facts.gaps)
        if (!gap.reason.empty()) IndexOrAppend(subjects, gap.subject);
    return printer.problem.empty() ? Joined(subjects) : printer.problem;
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
