#include "model/asking/answer.h"

#include <utility>

#include "values/value_text.h"

namespace vndiscover::host {

Answer AnsweredWith(const Oid& oid, uint32_t type, std::string_view raw) {
    Content content = ContentOf(type, raw);
    return {Status::kAnswered, oid, type, std::move(content.bytes), content.wholeSize, ""};
}

Answer Received(std::string_view bytes) { return AnsweredWith({}, 0, bytes); }

Answer Failed(Status status, const Oid& asked, std::string note) {
    Answer answer;
    answer.status = status;
    answer.oid = asked;
    answer.note = std::move(note);
    return answer;
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
    switch (answer.status) {
        case Status::kAnswered:
            return "";
        case Status::kSendFailed:
            return "the request could not be sent";
        case Status::kUnreadable:
            return answer.note.empty() ? "the answer could not be read" : answer.note;
        case Status::kSilentHere:
            return "no answer to this, although the device answers" +
                   (answer.note.empty() ? "" : ": " + answer.note);
        case Status::kRefused:
            return "refused: " + answer.note;
        case Status::kOnlyDiscovered:
            return "no readable answer, though the device gave its engine ID: wrong privacy "
                   "password or protocol, or a value of more than 126 bytes";
        case Status::kNoAnswer:
            break;
    }
    return "no answer";
}

}  // namespace vndiscover::host
