#include "model/asking/asker.h"

namespace vndiscover::host {
namespace {

// A device that may not tell, or cannot, is silent over SNMPv3 after the engine discovery.
bool IsSilence(const Answer& answer) {
    return answer.status == Status::kNoAnswer || answer.status == Status::kOnlyDiscovered;
}

}  // namespace

// Whether the device answers a request that does not lead to the variable after `oid`.
bool PatientAsker::HasSign(const Oid& oid) {
    const Oid objectId = {1, 3, 6, 1, 2, 1, 1, 2}, upTime = {1, 3, 6, 1, 2, 1, 1, 3},
              name = {1, 3, 6, 1, 2, 1, 1, 5};
    const bool leadsThere = IsWithin(oid, objectId) || oid == upTime;
    const Answer sign = asker_.getNext(leadsThere ? name : upTime);
    return !IsSilence(sign) && sign.status != Status::kSendFailed;
}

Answer PatientAsker::Ask(const Oid& oid, const std::function<Answer()>& ask) {
    const auto mayGoOn = [&] { return !asker_.mayGoOn || asker_.mayGoOn(); };
    if (const auto known = silent_.find(oid); known != silent_.end()) return known->second;
    Answer answer = ask();
    if (IsSilence(answer) && hasAnswered_ && mayGoOn()) answer = ask();
    if (!IsSilence(answer)) {
        hasAnswered_ = hasAnswered_ || answer.status != Status::kSendFailed;
        return answer;
    }
    if (!mayGoOn() || !HasSign(oid)) return answer;
    hasAnswered_ = true;
    if (mayGoOn()) answer = ask();
    if (!IsSilence(answer)) return answer;
    const bool isV3 = answer.status == Status::kOnlyDiscovered;
    return silent_[oid] =
               Failed(Status::kSilentHere, oid, isV3 ? "perhaps it has more than 126 bytes" : "");
}

}  // namespace vndiscover::host
