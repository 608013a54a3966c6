#include "window/work/session.h"

#include <algorithm>

#include "values/module_types.h"
#include "values/object_names.h"
#include "values/ranges.h"

namespace vndiscover::host {

void Session::BeginSearch() {
    view.Renumber(RemoveFormerAnswers(scan_));
    deviceMaker_ = DeviceMaker();  // descriptions are of answers by their numbers
    rowMaker_ = RowMaker(limits_);
    for (const ScanSweep& sweep : scan_.sweeps) search_ = std::max(search_, sweep.search);
    ++search_;
    isSearching_ = isChanged_ = true;
    Refresh();  // no row may have the former numbers
    isChanged_ = true;
}

void Session::BeginSweep(WorkerId worker, const SweepStep& step, const std::string& time) {
    const AnswerForm form = FormOf(step.kind, step.oid);
    const auto index = static_cast<size_t>(worker);
    sweeps_[index] = scan_.sweeps.size();
    isSweeping_[index] = true;
    scan_.sweeps.push_back({step.kind, form, step.useIPv6,
                            form == AnswerForm::kValue ? step.oid : Oid(), time, search_, false,
                            LoginOf(step.kind, step.credentials.community)});
}

// Users are all one: the settings have the one that is valid.
size_t Session::LoginOf(SweepKind kind, const std::string& community) {
    return 1 + IndexOrAppend(logins_, std::pair(kind, kind == SweepKind::kSnmpV1 ? community
                                                                                 : std::string()));
}

void Session::AddAnswer(WorkerId worker, ScanAnswer answer) {
    answer.sweep = sweeps_[static_cast<size_t>(worker)];
    scan_.answers.push_back(std::move(answer));
    isChanged_ = isUnsaved_ = true;
}

void Session::EndSweep(WorkerId worker, bool isComplete) {
    const auto index = static_cast<size_t>(worker);
    // One that was dropped has not begun.
    if (std::exchange(isSweeping_[index], false))
        scan_.sweeps[sweeps_[index]].isComplete = isComplete;
}

void Session::EndSearch() {
    isSearching_ = false;
    isChanged_ = true;
}

void Session::BeginReading(const std::string& address) {
    beingRead_.insert(address);
    isChanged_ = true;
}

void Session::AddReading(Results::Read read) {
    const std::string& address = read.target.address;
    if (const auto known = beingRead_.find(address); known != beingRead_.end())
        beingRead_.erase(known);
    isChanged_ = true;
    if (read.isPostponed) return;
    const SweepKind kind = read.target.kind;
    const bool isWhole = read.answers.lastStatus == Status::kAnswered;
    ScanAnswer answer = {scan_.sweeps.size(), read.time, address, {}};
    const bool isComplete = !read.isForList && isWhole;
    const size_t login = LoginOf(kind, read.target.credentials.community);
    scan_.sweeps.push_back(
        {kind, AnswerForm::kVariable, false, {}, read.time, 0, isComplete, login});
    for (auto& [oid, variable] : read.answers.values) {
        answer.answer = std::move(variable);
        scan_.answers.push_back(answer);
    }
    const bool hasValues = !read.answers.values.empty();
    if (!hasValues && isWhole) {
        // It has answered that it is no printer.
        answer.answer = AnsweredWith(OidOf("hrPrinterStatus"), kNull, "");
        scan_.answers.push_back(answer);
    }
    isUnsaved_ |= hasValues;
    read.answers.values.clear();
    std::vector<Reading>& known = readings_[address];
    EraseIf(known, [&](const Reading& one) { return one.kind == kind; });
    known.push_back(
        {address, kind, std::move(read.answers), hasValues, read.time, read.isStateOnly});
}

void Session::EndReadings() {
    if (beingRead_.empty()) return;
    beingRead_.clear();
    isChanged_ = true;
}

void Session::SetAdapters(const AdapterList& adapters) {
    adapters_ = adapters;
    SetLimits(limits_);  // new rows, which name the networks
}

void Session::SetLimits(const LevelLimits& limits) {
    limits_ = limits;
    rowMaker_ = RowMaker(limits_);
    isChanged_ = true;
}

bool Session::Refresh() {
    if (!std::exchange(isChanged_, false)) return false;
    devices_ = deviceMaker_.Make(scan_);
    view.SetRows(rowMaker_.Make(scan_, devices_, adapters_, Standings()));
    return true;
}

std::vector<Standing> Session::Standings() const {
    const LastSearch search(scan_, isSearching_);
    std::vector<Standing> standings;
    standings.reserve(devices_.size());
    for (const FoundDevice& device : devices_) {
        const auto reading = readings_.empty() ? std::nullopt : LastReadingOf(device.answers);
        const auto& addresses = device.identity.Of(MergeKey::kAddress);
        const bool isBeingRead =
            AnyOf(beingRead_, [&](const auto& one) { return addresses.count(one) != 0; });
        standings.push_back(
            StandingOf(scan_, device, reading ? &*reading : nullptr, isBeingRead, search));
    }
    return standings;
}

void Session::SetScan(Scan scan) {
    scan_ = std::move(scan);
    search_ = 0;
    isSearching_ = false;
    logins_.clear();
    added_.clear();
    deviceMaker_ = DeviceMaker();
    rowMaker_ = RowMaker(limits_);
    readings_.clear();
    beingRead_.clear();
    isSweeping_ = {};
    isUnsaved_ = false;
    view.Select({}, std::nullopt);
    isChanged_ = true;
}

bool Session::HasAnsweredSearch(const std::vector<size_t>& answers) const {
    return AnyOf(answers, [this](size_t index) {
        const ScanSweep& sweep = scan_.sweeps[scan_.answers[index].sweep];
        return sweep.search != 0 && sweep.search == search_;
    });
}

std::vector<FoundDevice> Session::PresentDevices() const {
    const std::vector<Standing> standings = Standings();
    std::vector<FoundDevice> present;
    for (size_t i = 0; i < devices_.size(); ++i) {
        const Standing::Kind kind = standings[i].kind;
        const bool isSilent =
            kind == Standing::Kind::kNoAnswer && !HasAnsweredSearch(devices_[i].answers);
        if (kind != Standing::Kind::kMissed && !isSilent) present.push_back(devices_[i]);
    }
    return present;
}

size_t Session::CountFound() const {
    return CountIf(view.AllRows(), [&](const DeviceRow& row) {
        return !view.IsOther(row) && HasAnsweredSearch(row.answers);
    });
}

void Session::AddByHand(const std::vector<std::pair<std::string, std::string>>& addresses,
                        const std::string& time) {
    for (const auto& [address, typed] : addresses) {
        if (!added_.insert(address).second) continue;
        scan_.answers.push_back({scan_.sweeps.size(), time, address, Received(typed)});
    }
    scan_.sweeps.push_back({SweepKind::kSnmpV1, AnswerForm::kAdded, false, {}, time});
    isChanged_ = isUnsaved_ = true;
}

void Session::AdoptAdded() {
    for (const ScanAnswer& answer : scan_.answers) {
        if (scan_.sweeps[answer.sweep].form == AnswerForm::kAdded) added_.insert(answer.address);
    }
}

const FoundDevice* Session::DeviceOf(const DeviceRow& row) const {
    return FindIf(devices_, [&](const auto& device) { return device.answers == row.answers; });
}

PrinterLine Session::LineOf(const DeviceRow& row) const {
    PrinterLine line;
    const FoundDevice* const device = DeviceOf(row);
    if (!device) return line;
    line.facts = *device->facts;
    line.facts.serialNumber = row.Text(Column::kSerial);
    line.summary = SummaryOf(line.facts, limits_);
    const auto& addresses = device->identity.Of(MergeKey::kAddress);
    line.addresses.assign(addresses.begin(), addresses.end());
    if (row.standing.kind != Standing::Kind::kRead &&
        row.standing.kind != Standing::Kind::kBeingRead)
        line.problem = StateText(row.standing, {});
    if (!row.standing.Holds()) line.summary = {};
    return line;
}

std::optional<AskTarget> Session::TargetOf(const std::vector<size_t>& answers) const {
    // SNMPv3 before SNMPv1; a device that has only replied to a Probe may support SNMPv1 too.
    const auto rank = [](const ScanSweep& sweep) {
        return sweep.form == AnswerForm::kAdded   ? 0
               : sweep.kind == SweepKind::kSnmpV3 ? 3
               : sweep.kind == SweepKind::kSnmpV1 ? 2
                                                  : 1;
    };
    std::optional<AskTarget> target;
    int best = -1;
    for (const size_t index : answers) {
        const ScanAnswer& answer = scan_.answers[index];
        const ScanSweep& sweep = scan_.sweeps[answer.sweep];
        if (rank(sweep) <= best) continue;
        best = rank(sweep);
        target.emplace();
        target->address = answer.address;
        target->kind = sweep.kind == SweepKind::kSnmpV3 ? sweep.kind : SweepKind::kSnmpV1;
        target->isLoginKnown = sweep.login != 0 && best >= 2;
        if (target->isLoginKnown) target->credentials.community = logins_[sweep.login - 1].second;
    }
    return target;
}

std::vector<AskTarget> Session::TargetsToRead() const {
    std::vector<AskTarget> targets;
    for (const DeviceRow& row : view.AllRows()) {
        const auto target = TargetOf(row);
        const bool isAdded = added_.count(target->address) != 0;
        // A computer that has only replied to a Probe is not asked.
        const bool hasAnswered = (target->isLoginKnown || !row.isNoPrinter) &&
                                 HasAnsweredHere(row.answers, target->address) &&
                                 row.standing.kind != Standing::Kind::kMissed;
        if (isAdded || hasAnswered) targets.push_back(*target);
    }
    return targets;
}

std::optional<AskTarget> Session::WhomToAskForARefusal() const {
    const auto isOfSearch = [&](const ScanSweep& sweep) {
        return sweep.search == search_ && sweep.kind == SweepKind::kSnmpV3;
    };
    const auto isAnswer = [&](const ScanAnswer& answer) {
        return isOfSearch(scan_.sweeps[answer.sweep]);
    };
    if (!AnyOf(scan_.sweeps, isOfSearch) || AnyOf(scan_.answers, isAnswer)) return std::nullopt;
    // Best one that has SNMPv3, or at least SNMP.
    std::optional<AskTarget> best;
    int bestRank = 0;
    for (const FoundDevice& device : devices_) {
        const auto target = TargetOf(device.answers);
        if (!target || !HasAnsweredHere(device.answers, target->address)) continue;
        const int rank = target->kind == SweepKind::kSnmpV3 ? 3 : target->isLoginKnown ? 2 : 1;
        if (rank > std::exchange(bestRank, std::max(rank, bestRank))) best = target;
    }
    if (best) best->kind = SweepKind::kSnmpV3;
    return best;
}

bool Session::HasAnsweredHere(const std::vector<size_t>& answers,
                              const std::string& address) const {
    return added_.count(address) != 0 || AnyOf(answers, [&](size_t index) {
               const ScanAnswer& answer = scan_.answers[index];
               return answer.address == address && scan_.sweeps[answer.sweep].login != 0;
           });
}

std::vector<Reading> Session::ReadingsOf(const std::vector<size_t>& answers) const {
    std::set<std::string> addresses;
    for (const size_t index : answers) addresses.insert(scan_.answers[index].address);
    std::vector<Reading> readings;
    for (const std::string& address : addresses) {
        const auto found = readings_.find(address);
        if (found != readings_.end())
            readings.insert(readings.end(), found->second.begin(), found->second.end());
    }
    return readings;
}

// By the protocol that it is asked by: another one only shows whether it answers by that.
std::optional<Reading> Session::LastReadingOf(const std::vector<size_t>& answers) const {
    const auto target = TargetOf(answers);
    std::optional<Reading> last;
    for (Reading& reading : ReadingsOf(answers)) {
        if (target && reading.kind == target->kind && (!last || reading.time >= last->time))
            last = std::move(reading);
    }
    return last;
}

std::vector<Gap> Session::GapsOf(const DeviceRow& row) const {
    const auto last = LastReadingOf(row.answers);
    return last ? last->end.gaps : std::vector<Gap>();
}

void Session::ForgetRefusals() {
    for (auto& [address, readings] : readings_) {
        EraseIf(readings, [](const Reading& one) {
            return one.end.lastStatus == Status::kRefused ||
                   one.end.lastStatus == Status::kOnlyDiscovered;
        });
    }
    isChanged_ = true;
}

std::vector<ProtocolLine> Session::ProtocolsOf(const DeviceRow& row) const {
    std::vector<size_t> running;
    for (size_t worker = 0; worker < kWorkerCount; ++worker) {
        if (isSweeping_[worker]) running.push_back(sweeps_[worker]);
    }
    return host::ProtocolsOf(scan_, row.answers, ReadingsOf(row.answers), running);
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
