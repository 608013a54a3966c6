#include "model/printer/fleet.h"

#include <algorithm>
#include <utility>

namespace vndiscover::host {

FleetResult ReadJob(const FleetJob& job, const Asker& asker) {
    FleetResult result;
    Asker timed = asker;
    timed.mayGoOn = [&] {
        return (job.isLate || !result.isSlow) && (!asker.mayGoOn || asker.mayGoOn());
    };
    timed.getNext = [&](const Oid& oid) {
        const int64_t start = NowMs(asker);
        Answer answer = asker.getNext(oid);
        if (NowMs(asker) - start > kSlowRequestMs) result.isSlow = true;
        return answer;
    };
    result.answers = job.isState ? ReadState(timed, job.known) : ReadForList(timed, job.known);
    return result;
}

void Fleet::Add(std::string address, size_t login, std::map<Oid, Answer> known) {
    jobs_.push_back({devices_.size(), true});
    FleetDevice device;
    device.address = std::move(address);
    device.login = login;
    device.answers.values = std::move(known);
    devices_.push_back(std::move(device));
}

std::optional<FleetJob> Fleet::Next() {
    const bool isLate = jobs_.empty();
    std::deque<Waiting>& queue = isLate ? late_ : jobs_;
    if (queue.empty()) return std::nullopt;
    const Waiting next = queue.front();
    queue.pop_front();
    ++running_;
    const FleetDevice& device = devices_[next.device];
    FleetJob job = {next.device, device.address, device.login, next.isState, isLate, {}};
    job.known.values = device.answers.values;
    return job;
}

void Fleet::Return(const FleetJob& job) {
    --running_;
    (job.isLate ? late_ : jobs_).push_front({job.device, job.isState});
}

void Fleet::Done(const FleetJob& job, FleetResult result) {
    --running_;
    FleetDevice& device = devices_[job.device];
    device.answers = std::move(result.answers);
    const bool isCutShort = device.answers.lastStatus != Status::kAnswered;
    if (isCutShort && result.isSlow && !job.isLate) {
        late_.push_back({job.device, job.isState});
        return;
    }
    if (job.isState) {
        ++states_;
        const PrinterFacts facts = FactsOf(device.answers);
        if (facts.deviceIndex) device.severity = SummaryOf(facts).severity;
    }
    if (job.isState && !isCutShort && device.severity) {
        (job.isLate ? late_ : jobs_).push_back({job.device, false});
    } else {
        device.isRead = true;
    }
}

std::string Fleet::Progress() const {
    const auto count = [&](auto&& isCounted) {
        return std::to_string(std::count_if(devices_.begin(), devices_.end(), isCounted));
    };
    const std::string total = " of " + std::to_string(devices_.size());
    if (states_ < devices_.size() && !jobs_.empty() && jobs_.front().isState)
        return "state of " + std::to_string(states_) + total;
    const auto are = [&](Severity severity) {
        return count([=](const FleetDevice& device) { return device.severity == severity; });
    };
    return count([](const FleetDevice& device) { return device.isRead; }) + total + ", " +
           are(Severity::kCritical) + " critical, " + are(Severity::kAttention) + " need attention";
}

}  // namespace vndiscover::host
