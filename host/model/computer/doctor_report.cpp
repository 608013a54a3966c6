#include "model/computer/doctor_report.h"

#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::string Seconds(unsigned seconds) { return std::to_string(seconds) + " s"; }

// "eth0: Ethernet, up"
std::string AdapterText(const SweepRow& row) {
    const std::string words = Joined({row.kind, row.state});
    return words.empty() ? row.adapter : row.adapter + ": " + words;
}

ReportSection PlanSection(const char* title, const SweepPlan& plan) {
    const size_t swept = CountIf(plan.rows, [](const SweepRow& row) { return row.seconds != 0; });
    ReportSection section = {title, {}};
    section.Add("", swept == 0 ? "is not sent"
                               : "from " + std::to_string(swept) +
                                     (swept == 1 ? " address" : " addresses") + ", takes " +
                                     Seconds(plan.seconds) + " at least");
    for (const SweepRow& row : plan.rows) {
        section.Add(row.address, AdapterText(row) + ", " +
                                     (row.seconds == 0 ? "not swept" : Seconds(row.seconds)));
    }
    return section;
}

std::string RouteText(const Route& route) {
    if (route.source.empty()) return "no route";
    return "by " + (route.adapter.empty() ? "" : PlainText(route.adapter) + ", ") + route.source +
           (route.gateway.empty() ? "" : ", gateway " + route.gateway);
}

ReportSection FirewallSection(const FirewallReport& report) {
    ReportSection section = {"Firewall", {}};
    if (!report.isKnown) section.Add("", "not known here");
    for (const PortVerdict& verdict : report.ports) {
        const bool isOpen = verdict.passage == Passage::kOpen;
        section.Add("",
                    verdict.profile + " profile, answers from UDP " + std::to_string(verdict.port) +
                        ": " + PassageText(verdict.passage) + " (" + verdict.reason + ")",
                    isOpen ? Severity::kFine : Severity::kAttention);
    }
    if (report.isOverridden) {
        section.Add("", "a group policy takes precedence over this; ask who manages this computer",
                    Severity::kAttention);
    }
    if (!report.commands.empty()) section.Add("", "to let answers in, run as an administrator:");
    for (const std::string& command : report.commands) {
        section.Add("", command);
        section.rows.back().isCommand = true;
    }
    return section;
}

std::string LogText(const LogSwitches& log) {
    if (!log.file && !log.debugger) return "off";
    return Joined({log.file ? "to VxAdmSvc.log" : "", log.debugger ? "to the debugger" : ""},
                  " and ");
}

void AddStep(ReportSection& section, const char* label, const StepResult& step) {
    const bool isFine = step.outcome == Outcome::kAnswered || step.outcome == Outcome::kNotAsked;
    section.Add(label, StepText(step), isFine ? Severity::kFine : Severity::kAttention);
}

}  // namespace

const char* PassageText(Passage passage) {
    return passage == Passage::kOpen    ? "in"
           : passage == Passage::kBrief ? "in briefly"
                                        : "kept out";
}

const char* OutcomeText(Outcome outcome) {
    constexpr const char* kTexts[] = {"not asked", "answered", "no answer", "refused", "not sent"};
    return kTexts[static_cast<size_t>(outcome)];
}

std::string StepText(const StepResult& step) {
    std::string outcome = OutcomeText(step.outcome);
    if (step.ms > 0) outcome += " after " + SecondsText(step.ms);
    return step.detail.empty() ? outcome : outcome + ": " + step.detail;
}

Report ReportOf(const ComputerReport& computer) {
    ReportSection verdict, log;
    for (const std::string& cause : computer.causes)
        verdict.Add("Verdict", cause, Severity::kCritical);
    if (computer.causes.empty())
        verdict.Add("Verdict", "nothing seen here keeps a sweep from finding devices");
    for (const std::string& note : computer.notes) verdict.Add("Note", note, Severity::kAttention);
    ReportSection routes = {"Routes", {}};
    for (const Route& route : computer.routes) {
        routes.Add(route.target, RouteText(route),
                   route.source.empty() ? Severity::kCritical : Severity::kFine);
    }
    log.Add("Log", LogText(computer.log));
    return {
        verdict, PlanSection("IPv4 sweep", computer.ipv4), PlanSection("IPv6 sweep", computer.ipv6),
        routes,  FirewallSection(computer.firewall),       log};
}

Report ReportOf(const std::optional<HostDiagnosis>& diagnosis, std::optional<bool> isOnOwnNetwork) {
    ReportSection section;
    if (!diagnosis) {
        section.Add("Verdict", "the device is being asked", Severity::kUnknown);
        return {section};
    }
    section.Add("Verdict", VerdictOn(*diagnosis),
                IsUsable(*diagnosis)   ? Severity::kFine
                : diagnosis->isStopped ? Severity::kUnknown
                                       : Severity::kCritical);
    if (isOnOwnNetwork == false) {
        section.Add("Note",
                    "the device is on none of this computer's networks: sweeps do not reach it, "
                    "directed requests do",
                    Severity::kAttention);
    }
    AddStep(section, "Ping", diagnosis->ping);
    AddStep(section, "SNMPv1", diagnosis->v1);
    AddStep(section, "SNMPv3 engine", diagnosis->discovery);
    AddStep(section, "SNMPv3 user", diagnosis->user);
    return {section};
}

}  // namespace vndiscover::host
