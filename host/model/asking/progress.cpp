#include "model/asking/progress.h"

#include <utility>

namespace vndiscover::host {

void Progress::BeginSearch(size_t sweeps) {
    searchMs_ = nowMs_();
    sweepsLeft_ = sweeps;
    answers_ = 0;
    isSearching_ = hasSearched_ = true;
    isStopping_ = false;
}

bool Progress::EndSweep() {
    if (sweepsLeft_ == 0 || --sweepsLeft_ != 0) return false;
    isSearching_ = false;
    searchEndMs_ = nowMs_();
    return true;
}

void Progress::BeginAsking(const std::string& address, bool isReading) {
    asked_ = address;
    isReading_ = isReading;
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

Progress::Status Progress::Now(size_t waiting) const {
    const int64_t now = nowMs_();
    const auto since = [now](int64_t start) { return (now - start) / 1000; };
    const Status note = {Kind::kNote, 0, 0, 0, ""};
    if (!note_.empty() && now - noteMs_ < kNoteMs) return note;
    if (isSearching_) return {Kind::kSearching, since(searchMs_), answers_, addresses_, ""};
    if (!asked_.empty()) return {Kind::kAsking, since(askMs_), waiting, 0, asked_};
    if (!walked_.empty()) return {Kind::kWalking, since(walkMs_), values_, 0, walked_};
    if (!note_.empty()) return note;
    if (!hasSearched_) return {};
    return {isStopping_ ? Kind::kStopped : Kind::kDone, (searchEndMs_ - searchMs_) / 1000, answers_,
            0, ""};
}

}  // namespace vndiscover::host
