#include "model/asking/progress.h"

#include <algorithm>
#include <iterator>

namespace vndiscover::host {

void Progress::BeginSearch(size_t sweeps) {
    searchMs_ = nowMs_();
    sweepsLeft_ = sweeps;
    answers_ = 0;
    isSearching_ = true;
    isStopping_ = false;
    last_ = {Kind::kStopped};
    note_.clear();  // of a former one, perhaps
}

void Progress::Stop() {
    if (!isStopping_) stopMs_ = nowMs_();
    isStopping_ = true;
}

bool Progress::EndSweep() {
    if (sweepsLeft_ == 0 || --sweepsLeft_ != 0) return false;
    isSearching_ = false;
    last_ = {isStopping_ ? Kind::kStopped : Kind::kDone, SecondsSince(searchMs_)};
    return true;
}

void Progress::EndAsking(const std::string& address) {
    for (auto one = asked_.rbegin(); one != asked_.rend(); ++one)
        if (one->address == address) return void(asked_.erase(std::next(one).base()));
}

Progress::Status Progress::Now(const Work& work) const {
    if (!note_.empty() && nowMs_() - noteMs_ < kNoteMs) return {Kind::kNote};
    if (isStopping_) {
        const int64_t leftMs = kMaxRequestMs - std::max(nowMs_() - stopMs_, work.waitMs);
        return {Kind::kStopping, std::max<int64_t>(1, leftMs / 1000)};
    }
    if (isSearching_) return {Kind::kSearching, SecondsSince(searchMs_), networks_};
    if (work.read.total != 0) {
        const std::string address = work.waitMs >= kWaitMs ? work.address : "";
        return {Kind::kReadingAll, SecondsSince(readMs_), 0,
                address,           work.waitMs / 1000,    work.read};
    }
    if (!asked_.empty()) {
        const auto& [address, startMs] = asked_.back();
        const int64_t waitMs = work.address == address ? work.waitMs : 0;
        return {Kind::kAsking, SecondsSince(startMs), work.waiting, address, waitMs / 1000};
    }
    if (IsWalking())
        return {Kind::kWalking, SecondsSince(walked_.startMs), values_, walked_.address};
    return note_.empty() ? last_ : Status{Kind::kNote};
}

}  // namespace vndiscover::host
