#include "model/scan/standing.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "model/scan/device_merge.h"
#include "values/ip_address.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

using Lines = std::map<std::pair<SweepKind, bool>, ProtocolLine>;

// The states are in the order of how much they say. The best one that is known counts.
ProtocolLine& Add(Lines& lines, SweepKind kind, bool useIPv6, ProtocolState state) {
    ProtocolLine& line = lines[{kind, useIPv6}];
    line.kind = kind;
    line.useIPv6 = useIPv6;
    line.state = std::min(line.state, state);
    return line;
}

void AddSweeps(Lines& lines, const std::vector<ScanSweep>& sweeps,
               const std::vector<size_t>& running) {
    for (size_t index = 0; index < sweeps.size(); ++index) {
        const ScanSweep& sweep = sweeps[index];
        if (sweep.form == AnswerForm::kVariable || sweep.form == AnswerForm::kAdded) continue;
        const bool wasStopped = sweep.search != 0 && !sweep.isComplete;  // or not sent
        Add(lines, sweep.kind, sweep.useIPv6,
            Contains(running, index) ? ProtocolState::kPending
            : wasStopped             ? ProtocolState::kNotAsked
                                     : ProtocolState::kSilent);
    }
}

ProtocolState StateOf(const Reading& reading) {
    if (reading.IsRefused()) return ProtocolState::kRefused;
    if (reading.end.lastStatus == Status::kNoAnswer) return ProtocolState::kSilent;
    if (reading.end.lastStatus == Status::kSendFailed) return ProtocolState::kNotAsked;
    return ProtocolState::kNoValue;
}

using Kind = Standing::Kind;

bool IsSameQuestion(const ScanSweep& one, const ScanSweep& other) {
    const bool isLogin = one.login == other.login || one.login == 0 || other.login == 0;
    return isLogin && one.kind == other.kind && one.form == other.form &&
           one.useIPv6 == other.useIPv6 && one.oid == other.oid;
}

void SetEnd(Standing& standing, const Reading& reading) {
    const PrinterAnswers& end = reading.end;
    standing.kind = Kind::kIncomplete;
    standing.note = end.lastProblem;
    if (end.lastStatus == Status::kAnswered) {
        const bool isUnread = IsStateUnread(end);
        standing.kind = isUnread ? Kind::kIncomplete : Kind::kRead;
        standing.note = isUnread ? "state not read" : "";
    } else if (end.isStopped) {
        if (!reading.hasValues) standing.kind = Kind::kNeverRead;
    } else if (reading.IsRefused()) {
        standing.kind = Kind::kRefused;
    } else if (end.lastStatus == Status::kNoAnswer) {
        if (!reading.hasValues) standing.kind = Kind::kNoAnswer;
        const int64_t seconds = std::max<int64_t>(1, end.spentMs / 1000);
        standing.note = "no answer after " + std::to_string(seconds) + " s";
    }
}

}  // namespace

bool Standing::operator==(const Standing& other) const {
    return std::tie(kind, lastAnswer, note, isStateOnly) ==
           std::tie(other.kind, other.lastAnswer, other.note, other.isStateOnly);
}

LastSearches::LastSearches(const Scan& scan, bool isSearching) {
    size_t last = 0;
    for (const ScanSweep& sweep : scan.sweeps) last = std::max(last, sweep.search);
    std::map<size_t, size_t> firsts;  // by the number of a search
    for (size_t index = 0; index < scan.sweeps.size(); ++index)
        firsts.try_emplace(scan.sweeps[index].search, index);
    for (const size_t index : LastCompleteSweeps(scan, isSearching ? last : 0)) {
        const size_t first = firsts.at(scan.sweeps[index].search);
        questions_.push_back({scan.sweeps[index], first, scan.sweeps[first].time});
    }
}

std::optional<std::string> LastSearches::SilentSince(const Scan& scan,
                                                     const std::vector<size_t>& answers) const {
    size_t search = 0, variable = 0;  // the last ones that it answered
    for (const size_t index : answers) {
        const size_t sweep = scan.answers[index].sweep;
        search = std::max(search, scan.sweeps[sweep].search);
        if (scan.sweeps[sweep].form == AnswerForm::kVariable) variable = std::max(variable, sweep);
    }
    std::optional<std::string> time;
    for (const Question& asked : questions_) {
        if (asked.sweep.search <= search || asked.first < variable || (time && asked.time <= *time))
            continue;
        const bool wasAsked = AnyOf(answers, [&](size_t index) {
            return IsSameQuestion(asked.sweep, scan.sweeps[scan.answers[index].sweep]);
        });
        if (wasAsked) time = asked.time;
    }
    return time;
}

std::vector<FoundDevice> PresentDevices(const Scan& scan) {
    const LastSearches searches(scan, false);
    std::vector<FoundDevice> devices = MakeDevices(scan);
    EraseIf(devices, [&](const auto& one) {
        return one.isReplaced || searches.SilentSince(scan, one.answers);
    });
    return devices;
}

Standing StandingOf(const Scan& scan, const FoundDevice& device, const Reading* reading,
                    bool isBeingRead, const LastSearches& searches) {
    Standing standing;
    std::string lastRead;  // a device that answers sweeps, but not its reading, has no known state
    for (const size_t index : device.answers) {
        const ScanAnswer& answer = scan.answers[index];
        const AnswerForm form = scan.sweeps[answer.sweep].form;
        std::string& last = standing.lastAnswer;
        if (form != AnswerForm::kAdded) last = std::max(last, answer.time);
        if (form == AnswerForm::kVariable) lastRead = std::max(lastRead, answer.time);
    }
    const bool hasEnd = reading && reading->time >= lastRead;
    // To a sweep, a refusal looks like silence.
    const auto silentSince = searches.SilentSince(scan, device.answers);
    const bool isRefused =
        hasEnd && reading->IsRefused() && silentSince.value_or("") <= reading->time;
    if (device.isReplaced || (silentSince && !isRefused)) {
        standing.kind = Kind::kNotFound;  // until it answers
        return standing;
    }
    standing.kind = device.hasVariables ? Kind::kRead : Kind::kNeverRead;
    standing.isStateOnly = reading && reading->isStateOnly;
    if (hasEnd) SetEnd(standing, *reading);
    // A state that no longer held is not shown meanwhile.
    if (isBeingRead && standing.Holds()) {
        standing.kind = Kind::kBeingRead;
        standing.note.clear();
        standing.isStateOnly = false;
    }
    return standing;
}

std::string StateText(const Standing& standing, const PrinterSummary& summary) {
    switch (standing.kind) {
        case Kind::kNeverRead:
            return "never read";
        case Kind::kBeingRead:
            return summary.state.empty() ? "being read" : summary.state;
        case Kind::kRead:
            return summary.state.empty() ? "no such value" : summary.state;
        case Kind::kIncomplete: {
            const std::string note = Joined({"incomplete", standing.note});
            return summary.state.empty() ? note : summary.state + " (" + note + ")";
        }
        case Kind::kRefused:
            return standing.note.empty() ? "refused" : standing.note;
        case Kind::kNotFound:
            if (!standing.lastAnswer.empty())
                return Joined({"no answer since", ShortTime(standing.lastAnswer)}, " ");
            break;
        case Kind::kNoAnswer:
            break;
    }
    return "no answer";
}

std::string StateCell(const Standing& standing, const PrinterSummary& summary,
                      const PrinterFacts& facts) {
    // An error says it in the device's own words.
    const bool hasErrors = facts.errors && !facts.errors->empty();
    const bool isBySupply =
        standing.Holds() && summary.severity == Severity::kAttention && !hasErrors;
    return Joined({StateText(standing, summary), isBySupply ? summary.supplyProblem : ""});
}

std::string StateLine(const Standing& standing, const PrinterSummary& summary,
                      const std::string& read) {
    const bool isKnown = !summary.state.empty();
    std::string state = StateText(standing, summary);
    if (!isKnown) return state;
    if (state.rfind(summary.state, 0) != 0) state += "; before: " + summary.state;
    const bool isLow =
        summary.severity == Severity::kAttention && summary.supplySeverity != Severity::kFine;
    return Joined(
        {state, isLow ? summary.supply : "", read.empty() ? "" : "as of " + ShortTime(read)});
}

std::vector<ProtocolLine> ProtocolsOf(const Scan& scan, const std::vector<size_t>& answers,
                                      const std::vector<Reading>& readings,
                                      const std::vector<size_t>& running) {
    Lines lines;
    for (const SweepKind kind : {SweepKind::kSnmpV1, SweepKind::kSnmpV3, SweepKind::kWsd})
        Add(lines, kind, false, ProtocolState::kNotAsked);
    // Sweeps reach no device beyond a router, such as one that was only added by hand.
    const bool isReached = answers.empty() || AnyOf(answers, [&](size_t index) {
                               const AnswerForm form = scan.sweeps[scan.answers[index].sweep].form;
                               return form != AnswerForm::kVariable && form != AnswerForm::kAdded;
                           });
    if (isReached) AddSweeps(lines, scan.sweeps, running);
    for (const Reading& reading : readings) {
        if (reading.end.isStopped) continue;
        Add(lines, reading.kind, IsIPv6(reading.address), StateOf(reading)).note =
            reading.end.lastProblem;
    }
    for (const size_t index : answers) {
        const ScanAnswer& answer = scan.answers[index];
        const ScanSweep& sweep = scan.sweeps[answer.sweep];
        if (sweep.form == AnswerForm::kAdded) continue;
        const bool isEmpty = sweep.form == AnswerForm::kValue && answer.answer.bytes.empty();
        Add(lines, sweep.kind, IsIPv6(answer.address),
            isEmpty ? ProtocolState::kNoValue : ProtocolState::kAnswered);
    }
    const bool hasAnswered =
        AnyOf(lines, [](const auto& one) { return one.second.state <= ProtocolState::kRefused; });
    std::vector<ProtocolLine> shown;
    for (const auto& [asked, line] : lines) {
        // A device may have no IPv6 address, so a sweep's silence says nothing about it.
        const bool saysNothing = hasAnswered && line.useIPv6 && line.note.empty() &&
                                 line.state >= ProtocolState::kSilent;
        if (!saysNothing) shown.push_back(line);
    }
    return shown;
}

}  // namespace vndiscover::host
