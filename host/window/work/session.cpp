#include "window/work/session.h"

#include <algorithm>
#include <tuple>

#include "model/scan/device_view.h"
#include "values/ip_address.h"
#include "values/module_types.h"
#include "values/object_names.h"
#include "values/ranges.h"

namespace vndiscover::host {

Session::Session(const Credentials& credentials)
    : view_(std::make_unique<DeviceView>()), view(*view_), credentials_(credentials) {}

Session::~Session() = default;

void Session::BeginSearch() {
    view.Renumber(RemoveFormerAnswers(scan_));
    deviceMaker_ = DeviceMaker();  // it and the rows refer to answers by their indexes
    view.SetRows({});
    for (const ScanSweep& sweep : scan_.sweeps) search_ = std::max(search_, sweep.search);
    ++search_;
    isSearching_ = isChanged_ = true;
    Refresh();
    isChanged_ = true;
}

void Session::BeginSweep(WorkerId worker, const SweepStep& step, const std::string& time) {
    const AnswerForm form = FormOf(step.kind, step.oid);
    sweeps_[worker] = scan_.sweeps.size();
    ScanSweep sweep = {step.kind, form, step.useIPv6, {}, time, search_};
    if (form == AnswerForm::kValue) sweep.oid = step.oid;
    sweep.login = NumberOf(step.login);
    scan_.sweeps.push_back(std::move(sweep));
}

size_t Session::NumberOf(const Login& login) {
    const auto known = login.security ? std::pair(SweepKind::kSnmpV3, std::string())
                                      : std::pair(SweepKind::kSnmpV1, login.community);
    return 1 + IndexOrAppend(logins_, known);
}

void Session::AddAnswer(WorkerId worker, ScanAnswer answer) {
    answer.sweep = sweeps_.at(worker);
    scan_.answers.push_back(std::move(answer));
    isChanged_ = isUnsaved_ = true;
}

void Session::EndSweep(WorkerId worker, bool isComplete) {
    const auto running = sweeps_.find(worker);
    if (running == sweeps_.end()) return;  // it was dropped before it began
    scan_.sweeps[running->second].isComplete = isComplete;
    sweeps_.erase(running);
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
    const bool isByUser = read.answers.isStopped && read.answers.spentMs < kMaxReadMs;
    if (read.isPostponed || (isByUser && read.answers.values.empty())) return;
    const SweepKind kind = read.target.Kind();
    const bool isWhole = read.answers.lastStatus == Status::kAnswered;
    ScanAnswer answer = {scan_.sweeps.size(), read.time, address, {}};
    const std::set<Oid> older = OlderObjects(read);
    ScanSweep sweep = {kind, AnswerForm::kVariable, false, {}, read.time};
    sweep.isComplete = !read.isForList && isWhole;
    sweep.isCut = !isWhole;
    sweep.isList = read.isForList && isWhole && !read.isStateOnly;
    sweep.login = NumberOf(read.target.login);
    scan_.sweeps.push_back(std::move(sweep));
    for (auto& [oid, variable] : read.answers.values) {
        if (older.count(ObjectOf(oid)) != 0) continue;
        answer.time = variable.time.empty() ? read.time : std::exchange(variable.time, "");
        answer.answer = std::move(variable);
        scan_.answers.push_back(answer);
    }
    const bool hasValues = !read.answers.values.empty();
    if (!hasValues && isWhole && !IsStateUnread(read.answers)) {
        // The answer was that the device is no printer.
        answer.time = read.time;
        answer.answer = AnsweredWith(OidOf("hrPrinterStatus"), kNull, "");
        scan_.answers.push_back(answer);
    }
    isUnsaved_ |= hasValues;
    read.answers.values.clear();
    readings_[{address, kind}] = {address,   kind,      std::move(read.answers),
                                  hasValues, read.time, read.isStateOnly};
}

// A reading for the list may arrive after a newer one for the details. Returns what is older in it.
std::set<Oid> Session::OlderObjects(const Results::Read& read) {
    std::set<Oid> older;
    for (const auto& [oid, variable] : read.answers.values) {
        const Oid object = ObjectOf(oid);
        if (!read.isForList) {
            std::string& time = detailTimes_[read.target.address][object];
            time = std::max(time, variable.time);
        } else if (const auto known = detailTimes_.find(read.target.address);
                   known != detailTimes_.end()) {
            const auto time = known->second.find(object);
            if (time != known->second.end() && variable.time <= time->second) older.insert(object);
        }
    }
    return older;
}

void Session::EndReadings() {
    if (beingRead_.empty()) return;
    beingRead_.clear();
    isChanged_ = true;
}

void Session::SetAdapters(const AdapterList& adapters) {
    adapters_ = adapters;
    SetLimits(limits_);  // the rows name the networks
}

void Session::SetLimits(const LevelLimits& limits) {
    limits_ = limits;
    areRowsOld_ = isChanged_ = true;
}

bool Session::Refresh() {
    if (!isChanged_) return false;
    const LastSearches searches(scan_, isSearching_);
    const auto standing = [&](const FoundDevice& device) {
        const bool isBeingRead = AnyOf(device.identity.Of(MergeKey::kAddress),
                                       [&](auto& one) { return beingRead_.count(one) != 0; });
        return StandingOf(scan_, device, LastReadingOf(device), isBeingRead, searches);
    };
    std::vector<DeviceRow> known = view.ReleaseRows();
    if (std::exchange(areRowsOld_, false)) known.clear();
    view.SetRows(MakeRows({scan_, adapters_, limits_}, deviceMaker_.Make(scan_), standing,
                          std::move(known)));
    isChanged_ = false;
    return true;
}

void Session::SetScan(Scan scan) {
    scan_ = std::move(scan);
    search_ = 0;
    isSearching_ = false;
    logins_.clear();
    added_.clear();
    deviceMaker_ = DeviceMaker();
    view.SetRows({});
    readings_.clear();
    detailTimes_.clear();
    beingRead_.clear();
    sweeps_.clear();
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
    const LastSearches searches(scan_, isSearching_);
    std::vector<FoundDevice> present;
    for (const DeviceRow& row : view.AllRows()) {
        const bool isSilent =
            row.standing.kind == Standing::Kind::kNoAnswer && !HasAnsweredSearch(row.answers);
        if (!isSilent && !row.isReplaced && !searches.SilentSince(scan_, row.answers))
            present.push_back(row);
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

PrinterLine Session::LineOf(const DeviceRow& row) const {
    PrinterLine line;
    line.facts = *row.facts;
    if (!row.Text(Column::kSerial).empty()) line.facts.serialNumber = row.Text(Column::kSerial);
    if (auto gaps = GapsOf(row)) SetGaps(line.facts, *std::move(gaps));
    line.summary = SummaryOf(line.facts, limits_);
    const auto& addresses = row.identity.Of(MergeKey::kAddress);
    line.addresses.assign(addresses.begin(), addresses.end());
    if (row.standing.kind != Standing::Kind::kRead &&
        row.standing.kind != Standing::Kind::kBeingRead)
        line.problem =
            row.standing.kind == Standing::Kind::kNotFound && !row.standing.lastAnswer.empty()
                ? "no answer since " + row.standing.lastAnswer
                : StateText(row.standing, {});
    if (!row.standing.Holds()) line.summary = {};
    return line;
}

AskTarget Session::TargetAt(const std::string& address) const {
    const std::vector<std::string>& all = credentials_.communities;
    AskTarget target = {address, {all.front(), nullptr}};
    target.otherCommunities.assign(all.begin() + 1, all.end());
    return target;
}

std::optional<AskTarget> Session::TargetOf(const std::vector<size_t>& answers) const {
    // With a user, SNMPv3 comes before SNMPv1. A device that has only replied to a Probe may
    // support SNMPv1 too.
    const auto rank = [&](size_t answer) {
        const ScanSweep& sweep = scan_.sweeps[scan_.answers[answer].sweep];
        return sweep.form == AnswerForm::kAdded                            ? 0
               : sweep.kind == SweepKind::kSnmpV3 && credentials_.security ? 3
               : sweep.kind == SweepKind::kSnmpV1                          ? 2
                                                                           : 1;
    };
    // Its address or protocol may have changed, so SNMP answers of the last search come first. Then
    // comes the rank, then IPv4 before IPv6, and then later answers before earlier ones.
    const auto order = [&](size_t index) {
        const ScanAnswer& answer = scan_.answers[index];
        const bool isOfNow = rank(index) >= 2 && HasAnsweredSearch({index});
        return std::tuple(isOfNow, rank(index), !IsIPv6(answer.address), answer.time);
    };
    const auto best =
        std::max_element(answers.begin(), answers.end(),
                         [&](size_t one, size_t other) { return order(one) < order(other); });
    if (best == answers.end()) return std::nullopt;
    const ScanAnswer& answer = scan_.answers[*best];
    const size_t login = scan_.sweeps[answer.sweep].login;
    AskTarget target = TargetAt(answer.address);
    // A community that was removed from the settings is not used again.
    target.isLoginKnown =
        login != 0 && rank(*best) >= 2 &&
        (rank(*best) == 3 || Contains(credentials_.communities, logins_[login - 1].second));
    if (target.isLoginKnown) {
        target.login.community = logins_[login - 1].second;
        target.otherCommunities.clear();
        // No search finds out that a device behind a router has another community now.
        if (added_.count(answer.address) != 0) target.otherCommunities = credentials_.communities;
        EraseIf(target.otherCommunities,
                [&](const std::string& one) { return one == target.login.community; });
    }
    if (rank(*best) == 3) target.UseUser(credentials_.security);
    return target;
}

std::vector<AskTarget> Session::TargetsToRead() const {
    std::vector<AskTarget> targets;
    for (const DeviceRow& row : view.AllRows()) {
        const auto target = TargetOf(row.answers);
        const bool isAdded = added_.count(target->address) != 0;
        // A computer that has only replied to a Probe is not asked.
        const bool hasAnswered = (target->isLoginKnown || !row.isNoPrinter) &&
                                 HasAnsweredHere(row.answers, target->address) &&
                                 HasAnsweredSearch(row.answers);
        if ((isAdded || hasAnswered) && !row.isReplaced) targets.push_back(*target);
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
    if (!credentials_.security || !AnyOf(scan_.sweeps, isOfSearch) ||
        AnyOf(scan_.answers, isAnswer))
        return std::nullopt;
    // A device with SNMPv3 is best, then one with SNMPv1.
    std::optional<AskTarget> best;
    int bestRank = 0;
    for (const DeviceRow& device : view.AllRows()) {
        const auto target = TargetOf(device.answers);
        if (!target || !HasAnsweredHere(device.answers, target->address)) continue;
        const int rank = target->login.security ? 3 : target->isLoginKnown ? 2 : 1;
        if (rank > std::exchange(bestRank, std::max(rank, bestRank))) best = target;
    }
    if (best) best->UseUser(credentials_.security);
    return best;
}

bool Session::HasAnsweredHere(const std::vector<size_t>& answers,
                              const std::string& address) const {
    return added_.count(address) != 0 || AnyOf(answers, [&](size_t index) {
               const ScanAnswer& answer = scan_.answers[index];
               return answer.address == address && scan_.sweeps[answer.sweep].login != 0;
           });
}

// Only by the protocol and at the address by which the device is asked now. Another protocol shows
// only whether it supports that, and another device may have its former address.
const Reading* Session::LastReadingOf(const FoundDevice& device) const {
    const auto target = readings_.empty() ? std::nullopt : TargetOf(device.answers);
    if (!target) return nullptr;
    const auto found = readings_.find({target->address, target->Kind()});
    // If the reading has values and the device has none, they are those of another row.
    const bool isOwn =
        found != readings_.end() && (device.hasVariables || !found->second.hasValues);
    return isOwn ? &found->second : nullptr;
}

std::optional<std::vector<Gap>> Session::GapsOf(const DeviceRow& row) const {
    const Reading* const last = LastReadingOf(row);
    return last ? std::optional(last->end.gaps) : std::nullopt;
}

void Session::ForgetRefusals() {
    for (auto one = readings_.begin(); one != readings_.end();)
        one = one->second.IsRefused() ? readings_.erase(one) : std::next(one);
    isChanged_ = true;
}

std::vector<ProtocolLine> Session::ProtocolsOf(const DeviceRow& row) const {
    std::vector<Reading> readings;
    for (const auto& [origin, reading] : readings_)
        if (row.identity.Of(MergeKey::kAddress).count(reading.address) != 0)
            readings.push_back(reading);
    std::vector<size_t> running;
    for (const auto& [worker, sweep] : sweeps_) running.push_back(sweep);
    return host::ProtocolsOf(scan_, row.answers, readings, running);
}

std::vector<std::pair<size_t, size_t>> Session::SplitsOf(const DeviceRow& row) const {
    std::vector<std::pair<size_t, size_t>> splits;
    const auto isAsked = [&](size_t index) {
        return scan_.sweeps[scan_.answers[index].sweep].form == AnswerForm::kVariable;
    };
    for (const Merge& merge : row.merges) {
        if (merge.key != MergeKey::kAddress) splits.emplace_back(merge.first, merge.second);
    }
    if (!splits.empty()) return splits;
    // Several protocols at one address. Variables stay with the answers of their protocol.
    for (const Merge& merge : row.merges) {
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
