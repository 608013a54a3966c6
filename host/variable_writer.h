// What the directed requests print: one line or one JSON element for each variable, as it arrives.
#ifndef VNDISCOVER_HOST_VARIABLE_WRITER_H
#define VNDISCOVER_HOST_VARIABLE_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>

#include "json_output.h"
#include "oid_text.h"

namespace vndiscover::host {

enum class Status {
    kAnswered,  // type and bytes are the answer's; IsNoValue(type): the device has no such variable
    kNoAnswer,
    kSendFailed,
    kUnreadable,  // an answer came that holds no variable
    kRefused,     // an SNMPv3 report: note says why
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

// Why there is no variable: "no answer", ...
std::string Problem(const Answer& answer);

class VariableWriter {
  public:
    explicit VariableWriter(bool isJson) : isJson_(isJson) {}
    // The text to print now; lines end in LF. In text form empty for anything but kAnswered: a
    // problem is told on standard error.
    std::string Row(const Answer& answer);
    // Call it once, at the end.
    std::string End() { return isJson_ ? array_.Finish() : ""; }

  private:
    std::string JsonRow(const Answer& answer);

    bool isJson_;
    JsonArray array_;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_VARIABLE_WRITER_H
