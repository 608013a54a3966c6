#include "model/scan/protocols.h"

#include <algorithm>

#include "values/ranges.h"

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

}  // namespace vndiscover::host
