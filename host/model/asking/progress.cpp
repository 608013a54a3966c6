#include "model/asking/progress.h"

#include <algorithm>
#include <utility>

namespace vndiscover::host {

void Progress::BeginSearch(size_t sweeps) {
    searchMs_ = nowMs_();
    sweepsLeft_ = sweeps;
    answers_ = 0;
    isSearching_ = true;
    isStopping_ = false;
    last_ = Kind::kStopped;
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

void Progress::BeginAsking(const std::string& address) {
    asked_ = address;
    askMs_ = nowMs_();
}

void Progress::BeginWalk(const std::string& address) {
    walked_ = address;
    walkMs_ = nowMs_();
    values_ = 0;
}

void Progress::SetNote(std::wstring note) {
    note_ = std::move(note);
    noteMs_ = nowMs_();
}

Progress::Status Progress::Now(const Work& work) const {
    const int64_t now = nowMs_();
    const auto since = [now](int64_t start) { return (now - start) / 1000; };
    if (!note_.empty() && now - noteMs_ < kNoteMs) return {Kind::kNote, 0, 0, 0, "", 0};
    if (isStopping_) {
        const int64_t leftMs = kMaxRequestMs - std::max(now - stopMs_, work.waitMs);
        return {Kind::kStopping, std::max<int64_t>(1, leftMs / 1000), 0, 0, "", 0};
    }
    if (isSearching_) return {Kind::kSearching, since(searchMs_), answers_, addresses_, "", 0};
    if (!asked_.empty())
        return {Kind::kAsking, since(askMs_), work.waiting, 0, asked_, work.waitMs / 1000};
    if (!walked_.empty()) return {Kind::kWalking, since(walkMs_), values_, 0, walked_, 0};
    if (work.read.total != 0) {
        const bool isLong = work.waitMs >= kWaitMs;
        return {Kind::kReadingAll,          since(readMs_),    work.read.done, work.read.total,
                isLong ? work.address : "", work.waitMs / 1000};
    }
    if (!note_.empty()) return {Kind::kNote, 0, 0, 0, "", 0};
    if (last_ == Kind::kReady) return {};
    if (last_ == Kind::kRead) {
        const int64_t seconds = (readEndMs_ - readMs_) / 1000;
        return {last_, seconds, read_.done, read_.total, "", 0, read_.unread};
    }
    return {last_, (searchEndMs_ - searchMs_) / 1000, answers_, 0, "", 0};
}

}  // namespace vndiscover::host
