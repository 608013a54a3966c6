#include "window/work/session.h"

#include <algorithm>
#include <set>

namespace vndiscover::host {

void Session::BeginSweep(const Event& event, AnswerForm form) {
    sweeps_[static_cast<size_t>(event.worker)] = scan_.sweeps.size();
    const bool hasOid = form == AnswerForm::kValue;
    scan_.sweeps.push_back(
        {event.step.kind, form, event.step.useIPv6, hasOid ? event.step.oid : Oid(), event.time});
}

void Session::Take(const Event& event) {
    ScanAnswer answer;
    answer.time = event.time;
    answer.address = event.address;
    switch (event.kind) {
        case Event::kSweepBegan:
            BeginSweep(event, FormOf(event.step.kind, event.step.oid));
            isSweeping_[static_cast<size_t>(event.worker)] = true;
            break;
        case Event::kAnswer:
            answer.sweep = sweeps_[static_cast<size_t>(event.worker)];
            answer.answer = Received(event.bytes);
            scan_.answers.push_back(std::move(answer));
            isChanged_ = isUnsaved_ = true;
            break;
        case Event::kAsked:
            BeginSweep(event, AnswerForm::kVariable);
            answer.sweep = scan_.sweeps.size() - 1;
            for (const auto& [oid, variable] : event.read.values) {
                answer.answer = variable;
                scan_.answers.push_back(answer);
            }
            TakeReading(event);
            isChanged_ = true;
            isUnsaved_ |= !event.read.values.empty();
            break;
        case Event::kAdapters:
            adapters_ = event.adapters;
            rowMaker_ = RowMaker();  // rows name the networks
            isChanged_ = true;
            break;
        case Event::kSweepEnded:
            isSweeping_[static_cast<size_t>(event.worker)] = false;
            break;
        default:
            break;
    }
}

void Session::TakeReading(const Event& event) {
    std::vector<Reading>& known = readings_[event.address];
    const auto isSame = [&](const Reading& one) { return one.kind == event.step.kind; };
    known.erase(std::remove_if(known.begin(), known.end(), isSame), known.end());
    known.push_back({event.address, event.step.kind, event.read});
    known.back().end.values.clear();
}

bool Session::Refresh() {
    if (!std::exchange(isChanged_, false)) return false;
    devices_ = deviceMaker_.Make(scan_);
    view.SetRows(rowMaker_.Make(scan_, devices_, adapters_));
    return true;
}

void Session::SetScan(Scan scan) {
    scan_ = std::move(scan);
    givenAnswers_ = scan_.answers.size();
    deviceMaker_ = DeviceMaker();
    rowMaker_ = RowMaker();
    readings_.clear();
    isSweeping_ = {};
    isUnsaved_ = false;
    view.Select(std::nullopt);
    isChanged_ = true;
}

const FoundDevice* Session::DeviceOf(const DeviceRow& row) const {
    const auto found =
        std::find_if(devices_.begin(), devices_.end(),
                     [&](const FoundDevice& device) { return device.answers == row.answers; });
    return found == devices_.end() ? nullptr : &*found;
}

std::optional<AskTarget> Session::TargetOf(const DeviceRow& row) const {
    // SNMPv3 before SNMPv1; a device that has only replied to a Probe may support SNMPv1 too.
    const auto rank = [](SweepKind kind) {
        return kind == SweepKind::kSnmpV3 ? 2 : kind == SweepKind::kSnmpV1 ? 1 : 0;
    };
    std::optional<AskTarget> target;
    int best = -1;
    for (const size_t index : row.answers) {
        const ScanAnswer& answer = scan_.answers[index];
        const SweepKind kind = scan_.sweeps[answer.sweep].kind;
        if (rank(kind) <= best) continue;
        best = rank(kind);
        target.emplace();
        target->address = answer.address;
        target->kind = kind == SweepKind::kSnmpV3 ? kind : SweepKind::kSnmpV1;
    }
    return target;
}

bool Session::WasAsked(const DeviceRow& row) const {
    return std::any_of(row.answers.begin(), row.answers.end(), [&](size_t index) {
        return readings_.count(scan_.answers[index].address) != 0;
    });
}

bool Session::HasAnsweredHere(const DeviceRow& row, const std::string& address) const {
    return std::any_of(row.answers.begin(), row.answers.end(), [&](size_t index) {
        return index >= givenAnswers_ && scan_.answers[index].address == address;
    });
}

std::vector<Reading> Session::ReadingsOf(const DeviceRow& row) const {
    std::set<std::string> addresses;
    for (const size_t index : row.answers) addresses.insert(scan_.answers[index].address);
    std::vector<Reading> readings;
    for (const std::string& address : addresses) {
        const auto found = readings_.find(address);
        if (found != readings_.end())
            readings.insert(readings.end(), found->second.begin(), found->second.end());
    }
    return readings;
}

std::vector<Gap> Session::GapsOf(const DeviceRow& row) const {
    const auto target = TargetOf(row);
    std::vector<Gap> gaps;
    for (const Reading& reading : ReadingsOf(row)) {
        // Otherwise it only shows whether the device answers by another protocol.
        if (target && reading.kind == target->kind) gaps = reading.end.gaps;
    }
    return gaps;
}

std::vector<ProtocolLine> Session::ProtocolsOf(const DeviceRow& row) const {
    std::vector<size_t> running;
    for (size_t worker = 0; worker < kWorkerCount; ++worker) {
        if (isSweeping_[worker]) running.push_back(sweeps_[worker]);
    }
    return JudgeProtocols(scan_, row.answers, ReadingsOf(row), running);
}

bool Session::Split(const DeviceRow& row) {
    const FoundDevice* device = DeviceOf(row);
    if (!device) return false;
    const auto isAsked = [&](size_t index) {
        return scan_.sweeps[scan_.answers[index].sweep].form == AnswerForm::kVariable;
    };
    const size_t before = scan_.splits.size();
    for (const Merge& merge : device->merges) {
        if (merge.key != MergeKey::kAddress) scan_.splits.emplace_back(merge.first, merge.second);
    }
    // Several protocols at one address; variables stay with the answers of their protocol.
    for (const Merge& merge : device->merges) {
        if (before == scan_.splits.size() && !isAsked(merge.first) && !isAsked(merge.second))
            scan_.splits.emplace_back(merge.first, merge.second);
    }
    if (before == scan_.splits.size()) return false;
    isChanged_ = isUnsaved_ = true;
    return true;
}

}  // namespace vndiscover::host
