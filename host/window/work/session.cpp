#include "window/work/session.h"

#include <algorithm>
#include <set>
#include <utility>

namespace vndiscover::host {

void Session::BeginSweep(WorkerId worker, const SweepStep& step, const std::string& time) {
    const AnswerForm form = FormOf(step.kind, step.oid);
    const auto index = static_cast<size_t>(worker);
    sweeps_[index] = scan_.sweeps.size();
    isSweeping_[index] = true;
    scan_.sweeps.push_back(
        {step.kind, form, step.useIPv6, form == AnswerForm::kValue ? step.oid : Oid(), time});
}

void Session::AddAnswer(WorkerId worker, ScanAnswer answer) {
    answer.sweep = sweeps_[static_cast<size_t>(worker)];
    scan_.answers.push_back(std::move(answer));
    isChanged_ = isUnsaved_ = true;
}

void Session::AddReading(Results::Read read) {
    ScanAnswer answer;
    answer.time = read.time;
    answer.address = read.address;
    answer.sweep = scan_.sweeps.size();
    scan_.sweeps.push_back({read.kind, AnswerForm::kVariable, false, Oid(), read.time});
    for (auto& [oid, variable] : read.answers.values) {
        answer.answer = std::move(variable);
        scan_.answers.push_back(answer);
    }
    isChanged_ = true;
    isUnsaved_ |= !read.answers.values.empty();
    read.answers.values.clear();
    std::vector<Reading>& known = readings_[read.address];
    known.erase(std::remove_if(known.begin(), known.end(),
                               [&](const Reading& one) { return one.kind == read.kind; }),
                known.end());
    known.push_back({read.address, read.kind, std::move(read.answers)});
}

void Session::SetAdapters(const AdapterList& adapters) {
    adapters_ = adapters;
    rowMaker_ = RowMaker();  // rows name the networks
    isChanged_ = true;
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

std::vector<std::pair<size_t, size_t>> Session::SplitsOf(const DeviceRow& row) const {
    std::vector<std::pair<size_t, size_t>> splits;
    const FoundDevice* device = DeviceOf(row);
    if (!device) return splits;
    const auto isAsked = [&](size_t index) {
        return scan_.sweeps[scan_.answers[index].sweep].form == AnswerForm::kVariable;
    };
    for (const Merge& merge : device->merges) {
        if (merge.key != MergeKey::kAddress) splits.emplace_back(merge.first, merge.second);
    }
    if (!splits.empty()) return splits;
    // Several protocols at one address; variables stay with the answers of their protocol.
    for (const Merge& merge : device->merges) {
        if (!isAsked(merge.first) && !isAsked(merge.second))
            splits.emplace_back(merge.first, merge.second);
    }
    return splits;
}

void Session::Split(const DeviceRow& row) {
    const auto splits = SplitsOf(row);
    if (splits.empty()) return;
    scan_.splits.insert(scan_.splits.end(), splits.begin(), splits.end());
    isChanged_ = isUnsaved_ = true;
}

}  // namespace vndiscover::host
