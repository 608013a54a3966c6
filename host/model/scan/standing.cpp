#include "model/scan/standing.h"

#include <algorithm>
#include <tuple>

#include "model/scan/device_merge.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {
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
    return std::tie(kind, lastAnswer, note) == std::tie(other.kind, other.lastAnswer, other.note);
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
    } else if (reading && reading->time >= standing.lastAnswer) {
        SetEnd(standing, *reading);
    } else {
        standing.kind = device.hasVariables ? Kind::kRead : Kind::kNeverRead;
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
