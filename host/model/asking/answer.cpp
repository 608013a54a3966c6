#include "model/asking/answer.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "values/module_types.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// Announces a long-form length, but is read as the length itself.
constexpr size_t kLongFormSize = 0x81;

const Oid kSnmpModules = {1, 3, 6, 1, 6, 3};

// By counters below it: RFC 3412 (snmpMPDStats), 3413 (snmpUnavailableContexts ...), 3414
// (usmStats).
const std::pair<Oid, const char*> kReasons[] = {
    {{15, 1, 1, 1, 0}, "the device does not support this security level"},
    {{15, 1, 1, 2, 0}, "the request is outside the device's time window"},
    {{15, 1, 1, 3, 0}, "the device does not know this user"},
    {{15, 1, 1, 4, 0}, "the device does not know its own engine ID"},
    {{15, 1, 1, 5, 0}, "wrong authentication password or protocol"},
    {{15, 1, 1, 6, 0}, "the device cannot decrypt it: wrong privacy password or protocol"},
    {{11, 2, 1, 1, 0}, "the device does not support the user-based security model"},
    {{11, 2, 1, 2, 0}, "the device considers the message invalid"},
    {{11, 2, 1, 3, 0},
     "the device requires a context engine ID, which these requests do not carry"},
    {{12, 1, 4, 0}, "the device's context is not available"},
    {{12, 1, 5, 0}, "the device does not know the default context"},
};

}  // namespace

Answer AnsweredWith(const Oid& oid, uint32_t type, std::string_view raw) {
    Answer answer = {Status::kAnswered, oid, type, std::string(raw), raw.size(), ""};
    const bool isLong = type == kOctetString && raw.size() == kLongFormSize;
    const size_t wholeSize = isLong ? static_cast<uint8_t>(raw.front()) : 0;
    // A size that needs no long form is the device's error: show the bytes as received.
    if (!isLong || wholeSize < raw.size() - 1) return answer;
    answer.bytes.erase(0, 1);
    answer.wholeSize = wholeSize;
    return answer;
}

Answer Received(std::string_view bytes) { return AnsweredWith({}, 0, bytes); }

Answer Failed(Status status, const Oid& asked, std::string note) {
    return {status, asked, 0, "", 0, std::move(note)};
}

bool IsSilence(const Answer& answer) {
    return answer.status == Status::kNoAnswer || answer.status == Status::kOnlyDiscovered;
}

bool IsOnlyThisOne(const Answer& failure) {
    return failure.status == Status::kUnreadable || failure.status == Status::kSilentHere;
}

std::string CutNote(const Answer& answer) {
    if (answer.wholeSize <= answer.bytes.size()) return "";
    return " [the first " + std::to_string(answer.bytes.size()) + " of " +
           std::to_string(answer.wholeSize) + " bytes]";
}

std::string Problem(const Answer& answer) {
    constexpr std::pair<Status, const char*> kTexts[] = {
        {Status::kAnswered, ""},
        {Status::kSendFailed, "the request could not be sent"},
        {Status::kUnreadable, "the answer could not be read"},
        {Status::kSilentHere, "no answer to this, although the device answers"},
        {Status::kOnlyDiscovered,
         "no readable answer, though the device gave its engine ID: wrong privacy password or "
         "protocol, or a value of more than 126 bytes"},
        {Status::kRefused, "refused: "}};
    const auto* known = FindIf(kTexts, [&](const auto& one) { return one.first == answer.status; });
    const std::string text = known ? known->second : "no answer";
    if (answer.status == Status::kRefused) return text + answer.note;
    if (answer.status == Status::kSilentHere) return Joined({text, answer.note}, ": ");
    return answer.status == Status::kUnreadable && !answer.note.empty() ? answer.note : text;
}

const char* RefusalReason(const Oid& asked, const Oid& answered, uint32_t type) {
    if (type != kCounter32 || IsWithin(asked, kSnmpModules) || !IsWithin(answered, kSnmpModules))
        return nullptr;
    const Oid counter = Tail(answered, kSnmpModules.size());
    const auto* known = FindIf(kReasons, [&](const auto& one) { return one.first == counter; });
    return known ? known->second : nullptr;
}

// Whether the device answers a request that does not lead to the variable after `oid`.
bool PatientAsker::HasSign(const Oid& oid) {
    const Oid objectId = {1, 3, 6, 1, 2, 1, 1, 2}, upTime = {1, 3, 6, 1, 2, 1, 1, 3},
              name = {1, 3, 6, 1, 2, 1, 1, 5};
    const bool leadsThere = IsWithin(oid, objectId) || oid == upTime;
    Answer sign = asker_.getNext(leadsThere ? name : upTime);
    // That request may be lost as well.
    if (IsSilence(sign) && hasAnswered_ && asker_.MayGoOn())
        sign = asker_.getNext(leadsThere ? name : upTime);
    return !IsSilence(sign) && sign.status != Status::kSendFailed;
}

void PatientAsker::NoteAnswer(const Answer& answer) {
    hasAnswered_ = hasAnswered_ || answer.status != Status::kSendFailed;
    if (answer.status != Status::kAnswered) return;
    latest_ = answer.oid;
    if (!IsNoValue(answer.type)) last_ = std::max(last_, answer.oid);
    for (auto& [asked, silence] : silent_) {
        if (latest_ <= asked) {
            silence.before = std::max(silence.before, latest_);
        } else if (silence.next.empty() || latest_ < silence.next) {
            silence.next = latest_;
        }
    }
}

bool PatientAsker::IsError(const Oid& oid, const Answer& answer, const Oid& beyond) {
    const bool isRepeated =
        answer.status == Status::kAnswered && answer.oid == oid && IsNoValue(answer.type);
    if (asker_.isV3 || !isRepeated) return false;
    if (last_ <= oid && beyond_ != beyond && !IsMisencoded(beyond) && asker_.MayGoOn())
        GetNext(beyond_ = beyond);
    return last_ > oid;
}

Answer PatientAsker::GetNextSoon(const Oid& oid) {
    // Whether no variable has come that is between `oid` and what was silent.
    const auto after = silent_.upper_bound(oid);
    bool leadsToSilence = after != silent_.end() && oid >= after->second.before;
    if (after != silent_.begin()) {
        const auto& [failure, before, next] = std::prev(after)->second;
        leadsToSilence |= next.empty() || oid < next;
        const bool isBetween = after != silent_.end() && after->second.before <= failure.oid &&
                               (next.empty() || after->first < next);
        if (isBetween) return failure;
    }
    return Ask(
        oid, [&] { return asker_.getNext(oid); }, !leadsToSilence);
}

Answer PatientAsker::Ask(const Oid& oid, const std::function<Answer()>& ask, bool isRepeated) {
    if (const auto known = silent_.find(oid); known != silent_.end()) return known->second.failure;
    Answer answer = ask();
    if (IsSilence(answer) && isRepeated && hasAnswered_ && asker_.MayGoOn()) answer = ask();
    const bool isSilent = IsSilence(answer);
    if (isSilent && (!asker_.MayGoOn() || !HasSign(oid))) return answer;
    hasAnswered_ = hasAnswered_ || isSilent;
    if (isSilent && isRepeated && asker_.MayGoOn()) answer = ask();
    if (!IsSilence(answer)) {
        NoteAnswer(answer);
        return answer;
    }
    const bool isV3 = answer.status == Status::kOnlyDiscovered;
    Silence& silence = silent_[oid];
    silence.failure =
        Failed(Status::kSilentHere, oid, isV3 ? "perhaps it has more than 126 bytes" : "");
    if (latest_ <= oid) silence.before = latest_;
    return silence.failure;
}

}  // namespace vndiscover::host
