#include "model/asking/progress.h"

#include <algorithm>

namespace vndiscover::host {

void Progress::BeginSearch(size_t sweeps) {
    searchMs_ = nowMs_();
    sweepsLeft_ = sweeps;
    answers_ = 0;
    isSearching_ = true;
    isStopping_ = false;
    last_ = Kind::kStopped;
    note_.clear();  // of a former one, perhaps
}

void Progress::Stop() {
    if (!isStopping_) stopMs_ = nowMs_();
    isStopping_ = true;
}

bool Progress::EndSweep() {
    if (sweepsLeft_ == 0 || --sweepsLeft_ != 0) return false;
    isSearching_ = false;
    searchEndMs_ = nowMs_();
    last_ = isStopping_ ? Kind::kStopped : Kind::kDone;
    return true;
}

Progress::Status Progress::Now(const Work& work) const {
    const int64_t now = nowMs_();
    const auto since = [now](int64_t start) { return (now - start) / 1000; };
    if (!note_.empty() && now - noteMs_ < kNoteMs) return {Kind::kNote};
    if (isStopping_) {
        const int64_t leftMs = kMaxRequestMs - std::max(now - stopMs_, work.waitMs);
        return {Kind::kStopping, std::max<int64_t>(1, leftMs / 1000)};
    }
    if (isSearching_) return {Kind::kSearching, since(searchMs_), networks_};
    const int64_t waitSeconds = work.waitMs / 1000;
    if (!asked_.address.empty())
        return {Kind::kAsking, since(asked_.startMs), work.waiting, asked_.address, waitSeconds};
    if (IsWalking()) return {Kind::kWalking, since(walked_.startMs), values_, walked_.address};
    if (work.read.total != 0) {
        const std::string address = work.waitMs >= kWaitMs ? work.address : "";
        return {Kind::kReadingAll, since(readMs_), 0, address, waitSeconds, work.read};
    }
    if (!note_.empty()) return {Kind::kNote};
    if (last_ == Kind::kReady) return {};
    if (last_ == Kind::kRead) return {last_, (readEndMs_ - readMs_) / 1000, 0, "", 0, read_};
    return {last_, (searchEndMs_ - searchMs_) / 1000};
}

}  // namespace vndiscover::host
