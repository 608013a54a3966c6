#include "model/scan/standing.h"

#include <algorithm>
#include <tuple>

#include "model/scan/device_merge.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {

namespace {

bool IsIPv6(const std::string& address) { return address.find(':') != std::string::npos; }

class LineMaker {
  public:
    LineMaker(SweepKind kind, bool useIPv6) : line_{kind, useIPv6, ProtocolState::kNotAsked, ""} {}

    void AddSweep(const ScanSweep& sweep, bool isRunning) {
        const bool isOther = sweep.kind != line_.kind || sweep.useIPv6 != line_.useIPv6;
        if (isOther || sweep.form == AnswerForm::kVariable || sweep.form == AnswerForm::kAdded)
            return;
        Raise(isRunning ? ProtocolState::kPending : ProtocolState::kSilent);
    }

    void AddReading(const Reading& reading) {
        const PrinterAnswers& end = reading.end;
        if (IsOther(reading.kind, reading.address) || end.isStopped) return;
        line_.note = end.lastProblem;
        switch (end.lastStatus) {
            case Status::kAnswered:
            case Status::kUnreadable:
            case Status::kSilentHere:
                return Raise(ProtocolState::kNoValue);
            case Status::kRefused:
            case Status::kOnlyDiscovered:
                return Raise(ProtocolState::kRefused);
            case Status::kNoAnswer:
                return Raise(ProtocolState::kSilent);
            case Status::kSendFailed:
                return Raise(ProtocolState::kNotAsked);
        }
    }

    void AddAnswer(const ScanSweep& sweep, const ScanAnswer& answer) {
        if (IsOther(sweep.kind, answer.address) || sweep.form == AnswerForm::kAdded) return;
        const bool isEmpty = sweep.form == AnswerForm::kValue && answer.answer.bytes.empty();
        Raise(isEmpty ? ProtocolState::kNoValue : ProtocolState::kAnswered);
    }

    bool WasUsed() const { return wasUsed_; }
    const ProtocolLine& Line() const { return line_; }

  private:
    bool IsOther(SweepKind kind, const std::string& address) const {
        return kind != line_.kind || IsIPv6(address) != line_.useIPv6;
    }
    // The states are in the order of what they tell; the best that is known counts.
    void Raise(ProtocolState state) {
        wasUsed_ = true;
        line_.state = std::min(line_.state, state);
    }

    ProtocolLine line_;
    bool wasUsed_ = false;
};

}  // namespace

std::vector<ProtocolLine> ProtocolsOf(const Scan& scan, const std::vector<size_t>& answers,
                                      const std::vector<Reading>& readings,
                                      const std::vector<size_t>& running) {
    std::vector<ProtocolLine> lines;
    for (const SweepKind kind : {SweepKind::kSnmpV1, SweepKind::kSnmpV3, SweepKind::kWsd}) {
        for (const bool useIPv6 : {false, true}) {
            LineMaker maker(kind, useIPv6);
            for (size_t index = 0; index < scan.sweeps.size(); ++index)
                maker.AddSweep(scan.sweeps[index], Contains(running, index));
            for (const Reading& reading : readings) maker.AddReading(reading);
            for (const size_t index : answers) {
                const ScanAnswer& answer = scan.answers[index];
                maker.AddAnswer(scan.sweeps[answer.sweep], answer);
            }
            if (!useIPv6 || maker.WasUsed()) lines.push_back(maker.Line());
        }
    }
    const bool hasAnswered = AnyOf(
        lines, [](const ProtocolLine& line) { return line.state <= ProtocolState::kRefused; });
    // A device may have no address there, so that a sweep's silence says nothing of it.
    EraseIf(lines, [&](const ProtocolLine& line) {
        return hasAnswered && line.useIPv6 && line.note.empty() &&
               line.state == ProtocolState::kSilent;
    });
    return lines;
}

namespace {

using Kind = Standing::Kind;

std::string LastAnswerOf(const Scan& scan, const FoundDevice& device) {
    std::string last;
    for (const size_t index : device.answers) {
        const ScanAnswer& answer = scan.answers[index];
        if (scan.sweeps[answer.sweep].form != AnswerForm::kAdded)
            last = std::max(last, answer.time);
    }
    return last;
}

bool IsSameQuestion(const ScanSweep& one, const ScanSweep& other) {
    const bool isLogin = one.login == other.login || one.login == 0 || other.login == 0;
    return isLogin && one.kind == other.kind && one.form == other.form &&
           one.useIPv6 == other.useIPv6 && one.oid == other.oid;
}

void SetEnd(Standing& standing, const Reading& reading) {
    const PrinterAnswers& end = reading.end;
    const std::string silence =
        "no answer after " + std::to_string(std::max<int64_t>(1, end.spentMs / 1000)) + " s";
    standing.kind = Kind::kIncomplete;
    standing.note = end.lastProblem;
    if (end.lastStatus == Status::kAnswered) {
        standing.kind = Kind::kRead;
        standing.note.clear();
    } else if (end.isStopped) {
        standing.kind = reading.hasValues ? Kind::kIncomplete : Kind::kNeverRead;
    } else if (end.lastStatus == Status::kRefused || end.lastStatus == Status::kOnlyDiscovered) {
        standing.kind = Kind::kRefused;
    } else if (end.lastStatus == Status::kNoAnswer) {
        standing.kind = reading.hasValues ? Kind::kIncomplete : Kind::kNoAnswer;
        standing.note = silence;
    }
}

std::string Since(const Standing& standing) {
    return Joined(
        {"no answer", standing.lastAnswer.empty() ? "" : "since", ShortTime(standing.lastAnswer)},
        " ");
}

}  // namespace

bool Standing::operator==(const Standing& other) const {
    return std::tie(kind, lastAnswer, note, isStateOnly) ==
           std::tie(other.kind, other.lastAnswer, other.note, other.isStateOnly);
}

LastSearch::LastSearch(const Scan& scan, bool isSearching) {
    size_t last = 0;
    for (const ScanSweep& sweep : scan.sweeps) last = std::max(last, sweep.search);
    for (const ScanSweep& sweep : scan.sweeps) {
        if (!isSearching || sweep.search < last) number_ = std::max(number_, sweep.search);
    }
    for (size_t index = 0; index < scan.sweeps.size(); ++index) {
        const ScanSweep& sweep = scan.sweeps[index];
        if (number_ == 0 || sweep.search != number_) continue;
        first_ = std::min(first_, index);
        if (sweep.isComplete) questions_.push_back(sweep);
    }
}

bool LastSearch::HasMissed(const Scan& scan, const FoundDevice& device) const {
    bool wasAsked = false;
    for (const size_t index : device.answers) {
        const ScanAnswer& answer = scan.answers[index];
        const ScanSweep& sweep = scan.sweeps[answer.sweep];
        const bool isLater = sweep.form == AnswerForm::kVariable && answer.sweep > first_;
        if ((sweep.search != 0 && sweep.search >= number_) || isLater) return false;
        wasAsked |= AnyOf(questions_, [&](auto& asked) { return IsSameQuestion(asked, sweep); });
    }
    return wasAsked;
}

std::vector<FoundDevice> PresentDevices(const Scan& scan) {
    const LastSearch search(scan, false);
    std::vector<FoundDevice> devices = MakeDevices(scan);
    devices.erase(std::remove_if(devices.begin(), devices.end(),
                                 [&](const auto& one) { return search.HasMissed(scan, one); }),
                  devices.end());
    return devices;
}

Standing StandingOf(const Scan& scan, const FoundDevice& device, const Reading* reading,
                    bool isBeingRead, const LastSearch& search) {
    Standing standing;
    standing.lastAnswer = LastAnswerOf(scan, device);
    if (isBeingRead) {
        standing.kind = Kind::kBeingRead;
    } else if (search.HasMissed(scan, device)) {
        standing.kind = Kind::kMissed;
    } else {
        standing.kind = device.hasVariables ? Kind::kRead : Kind::kNeverRead;
        standing.isStateOnly = reading && reading->isStateOnly;
        if (reading && reading->time >= standing.lastAnswer) SetEnd(standing, *reading);
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
        case Kind::kNoAnswer:
            return "no answer";
        case Kind::kRefused:
            return standing.note.empty() ? "refused" : standing.note;
        case Kind::kMissed:
            return Since(standing);
    }
    return "";
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

std::string ShortTime(const std::string& utc) {
    constexpr size_t kTime = 11;  // in "2026-11-25 05:31"
    const std::string local = LocalTimeBefore(utc, 0), now = LocalTimeBefore(UtcNow(), 0);
    return !local.empty() && local.compare(0, kTime, now, 0, kTime) == 0 ? local.substr(kTime)
                                                                         : local;
}

}  // namespace vndiscover::host
