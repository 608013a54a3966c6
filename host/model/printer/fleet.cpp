#include "model/printer/fleet.h"

#include <algorithm>
#include <utility>

#include "values/ranges.h"
#include "values/utc_time.h"

namespace vndiscover::host {

FleetDevice ReadJob(FleetDevice job, const Asker& asker) {
    bool isSlow = false;
    Asker timed = asker;
    timed.mayGoOn = [&] { return (job.isLate || !isSlow) && asker.MayGoOn(); };
    timed.getNext = [&](const Oid& oid) {
        const int64_t start = asker.NowMs();
        Answer answer = asker.getNext(oid);
        isSlow |= asker.NowMs() - start > kSlowRequestMs;
        answer.time = UtcNow();  // kept: a later round or attempt begins with this answer
        return answer;
    };
    PrinterAnswers known;
    known.values = std::move(job.answers.values);
    if (!job.isState) known.gaps = std::move(job.answers.gaps);
    job.answers = (job.isState ? ReadState : ReadForList)(timed, std::move(known));
    if (isSlow && job.answers.lastStatus != Status::kAnswered) job.isLate = true;
    return job;
}

void Fleet::Add(std::string address, size_t login, std::map<Oid, Answer> known) {
    devices_.push_back({devices_.size(), std::move(address), login, {std::move(known)}});
}

std::optional<FleetDevice> Fleet::Next() {
    const auto rank = [](const FleetDevice& device) {
        return std::pair(device.isRead || device.isBeingRead,
                         2 * static_cast<int>(device.isLate) + (device.isState ? 0 : 1));
    };
    const auto next = std::min_element(
        devices_.begin(), devices_.end(),
        [&](const auto& one, const auto& other) { return rank(one) < rank(other); });
    if (next == devices_.end() || next->isRead || next->isBeingRead) return std::nullopt;
    FleetDevice job = *next;
    next->isBeingRead = true;
    return job;
}

void Fleet::Done(FleetDevice job) {
    const bool isPostponed = job.isLate != devices_[job.index].isLate;
    if (!isPostponed) {
        if (job.isState && (HasPrinter(job.answers) || IsStateUnread(job.answers)))
            job.severity = SummaryOf(FactsOf(job.answers)).severity;
        const bool isCutShort = job.answers.lastStatus != Status::kAnswered;
        job.isRead = isCutShort || !job.isState || !job.severity;
        job.isState = false;
    }
    devices_[job.index] = std::move(job);
}

size_t Fleet::CountRead() const {
    return CountIf(devices_, [](const FleetDevice& device) { return device.isRead; });
}

std::optional<size_t> Fleet::CountStates() const {
    if (!AnyOf(devices_, [](auto& device) { return device.isState && !device.isLate; })) return {};
    return CountIf(devices_, [](auto& device) { return !device.isState || device.isLate; });
}

std::string Fleet::Progress() const {
    const auto are = [&](Severity severity) {
        return std::to_string(
            CountIf(devices_, [=](auto& device) { return device.severity == severity; }));
    };
    const std::string total = " of " + std::to_string(devices_.size());
    if (const auto states = CountStates()) return "state of " + std::to_string(*states) + total;
    return std::to_string(CountRead()) + total + ", " + are(Severity::kCritical) + " critical, " +
           are(Severity::kAttention) + " need attention";
}

}  // namespace vndiscover::host
