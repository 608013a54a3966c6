// A device's answer to one request, or why there is none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "values/oid_text.h"

namespace vndiscover::host {

enum class Status {
    kAnswered,  // with type and bytes; if IsNoValue(type), the device has no such variable
    kNoAnswer,
    kSendFailed,
    kUnreadable,      // an answer came, but without a variable
    kSilentHere,      // no answer to this request, although the device answers another one
    kOnlyDiscovered,  // SNMPv3: the device gave its engine ID, but no readable answer came
    kRefused,         // by an SNMPv3 report; note says why
};

struct Answer {
    Status status = Status::kNoAnswer;
    Oid oid;  // of the answer, or of the request if there is none
    uint32_t type = 0;
    std::string bytes;
    size_t wholeSize =
        0;             // of the value at the device; if more than bytes.size(), the rest is missing
    std::string note;  // details of a problem, may be empty
    std::string sender{};  // numeric address; empty: unknown
};

// An answer with a value as the module delivers it.
Answer AnsweredWith(const Oid& oid, uint32_t type, std::string_view raw);

// Bytes whose OID and type are not known.
Answer Received(std::string_view bytes);

// An answer without a value.
Answer Failed(Status status, const Oid& asked, std::string note = "");

// Why a device refuses an SNMPv3 request: instead of a response it sends a report, whose one
// variable is the counter for that reason. `asked` is the OID of the request, `answered` and `type`
// are of the answer's variable. Null if the answer is not a report: these counters are ordinary
// variables if they were requested, or follow what was.
const char* RefusalReason(const Oid& asked, const Oid& answered, uint32_t type);

// Whether other variables of the device may still be read.
bool IsOnlyThisOne(const Answer& failure);

// " [the first 128 of 175 bytes]" if the end of the value is missing, otherwise empty.
std::string CutNote(const Answer& answer);

// Why there is no variable: "no answer", ...
std::string Problem(const Answer& answer);

}  // namespace vndiscover::host
