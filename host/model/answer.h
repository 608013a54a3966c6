// What a device answered to one question, or why there is no answer.
#ifndef VNDISCOVER_HOST_MODEL_ANSWER_H
#define VNDISCOVER_HOST_MODEL_ANSWER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "values/oid_text.h"

namespace vndiscover::host {

enum class Status {
    kAnswered,  // type and bytes are the answer's; IsNoValue(type): the device has no such variable
    kNoAnswer,
    kSendFailed,
    kUnreadable,      // an answer came that holds no variable
    kOnlyDiscovered,  // SNMPv3: the device told its engine ID, but no answer came that can be read
    kRefused,         // an SNMPv3 report: note says why
};

struct Answer {
    Status status = Status::kNoAnswer;
    Oid oid;  // the answer's, or else the one asked for
    uint32_t type = 0;
    std::string bytes;
    size_t wholeSize =
        0;             // of the value at the device; more than bytes.size(): the rest did not come
    std::string note;  // details of a problem, may be empty
};

// An answer with a value as the module delivers it.
Answer AnsweredWith(const Oid& oid, uint32_t type, std::string_view raw);

// An answer without a value.
Answer Failed(Status status, const Oid& asked, std::string note = "");

// Why there is no variable: "no answer", ...
std::string Problem(const Answer& answer);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_ANSWER_H
