#include "model/computer/doctor_text.h"

namespace vndiscover::host {

const char kElsewhere[] =
    "the device is on none of this computer's networks: sweeps do not reach it, directed "
    "requests do";

const char* PassageText(Passage passage) {
    return passage == Passage::kOpen    ? "in"
           : passage == Passage::kBrief ? "in briefly"
                                        : "kept out";
}

std::vector<std::string> FirewallLines(const FirewallReport& report) {
    std::vector<std::string> lines;
    if (!report.isKnown) lines.emplace_back("not known here");
    for (const PortVerdict& verdict : report.ports) {
        lines.push_back(verdict.profile + " profile, answers from UDP " +
                        std::to_string(verdict.port) + ": " + PassageText(verdict.passage) + " (" +
                        verdict.reason + ")");
    }
    if (report.commands.empty()) return lines;
    lines.emplace_back("to let answers in, run as an administrator:");
    for (const std::string& command : report.commands) lines.push_back("  " + command);
    return lines;
}

std::string LogText(const LogSwitches& log) {
    if (!log.file && !log.debugger) return "off";
    return std::string(log.file ? "to VxAdmSvc.log" : "") +
           (log.file && log.debugger ? " and " : "") + (log.debugger ? "to the debugger" : "");
}

const char* OutcomeText(Outcome outcome) {
    switch (outcome) {
        case Outcome::kNotAsked:
            return "not asked";
        case Outcome::kAnswered:
            return "answered";
        case Outcome::kSilent:
            return "no answer";
        case Outcome::kRefused:
            return "refused";
        case Outcome::kNotSent:
            break;
    }
    return "not sent";
}

std::string StepText(const StepResult& step) {
    const std::string outcome = OutcomeText(step.outcome);
    return step.detail.empty() ? outcome : outcome + ": " + step.detail;
}

}  // namespace vndiscover::host
