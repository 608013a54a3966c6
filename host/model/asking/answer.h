// A device's answer to one request, or why there is none.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "values/oid_text.h"

namespace vndiscover::host {

enum class Status {
    kAnswered,  // with type and bytes; if IsNoValue(type), the device has no such variable
    kNoAnswer,
    kSendFailed,
    kUnreadable,      // an answer came, but without a variable; or it is too long to ask for
    kSilentHere,      // no answer to this request, although the device answers another one
    kOnlyDiscovered,  // SNMPv3: the device gave its engine ID, but no readable answer came
    kRefused,         // by an SNMPv3 report; note says why
};

struct Answer {
    Status status = Status::kNoAnswer;
    Oid oid;  // of the answer, or of the request if there is none
    uint32_t type = 0;
    std::string bytes;
    size_t wholeSize = 0;  // at the device; if more than bytes.size(), the rest is missing
    std::string note;      // details of a problem, may be empty
    std::string sender{};  // numeric address; empty: unknown
    std::string time{};    // when it came, as in ScanAnswer; empty: unknown
};

// An answer with a value as the module delivers it. Over SNMPv1 the module reads one-byte lengths,
// so an OCTET STRING of more than 127 bytes arrives as 129 bytes: its real length and its first 128
// bytes.
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

constexpr char kErrorAnswer[] = "an error instead of a value";

// No answer, over SNMPv3 also none after the engine discovery: so is a device that may not or
// cannot explain a refusal.
bool IsSilence(const Answer& answer);

// Whether other variables of the device may still be read after this failure.
bool IsOnlyThisOne(const Answer& failure);

// " [the first 128 of 175 bytes]" if the end of the value is missing, otherwise empty.
std::string CutNote(const Answer& answer);

// Why there is no variable: "no answer", ...
std::string Problem(const Answer& answer);

// Asks the device for the variable after an OID; blocks until there is a result. See AskerOf.
struct Asker {
    std::function<Answer(const Oid&)> getNext;
    bool isV3 = false;
    std::function<bool()> mayGoOn;   // called before each request; empty: always
    std::function<int64_t()> nowMs;  // for the time limit; empty: the system's clock

    bool MayGoOn() const { return !mayGoOn || mayGoOn(); }
    int64_t NowMs() const {
        using std::chrono::milliseconds;
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return nowMs ? nowMs() : std::chrono::duration_cast<milliseconds>(now).count();
    }
};

// Repeats what gets no answer. The datagram may have been lost, so it is sent once more. If there
// is still no answer, sysUpTime shows whether the device is silent or only this variable. If the
// device answers, the request is sent a third time: of hundreds, some lose two datagrams in a row.
// Then the variable is kSilentHere, and is not asked for again. A device that has not answered
// anything yet is asked for sysUpTime first: one that is switched off costs two waits.
class PatientAsker {
  public:
    // `asker` must outlive it.
    explicit PatientAsker(const Asker& asker, bool hasAnswered = false)
        : asker_(asker), hasAnswered_(hasAnswered) {}
    Answer GetNext(const Oid& oid) {
        return Ask(oid, [&] { return asker_.getNext(oid); });
    }
    // The same with few requests in little time, since each silence takes seconds. A request that
    // may lead to a silent variable again is not repeated; one between two that led to the same
    // silent variable is not sent.
    Answer GetNextSoon(const Oid& oid);
    // `ask` sends the request for `oid`.
    Answer Ask(const Oid& oid, const std::function<Answer()>& ask, bool isRepeated = true);
    // Whether the answer is an error. Over SNMPv1 that repeats what was asked for, as the end of
    // all variables does; but nothing comes after the end. If nothing has come so far, the variable
    // after `beyond` is asked for, once.
    bool IsError(const Oid& oid, const Answer& answer, const Oid& beyond);

  private:
    bool HasSign(const Oid& oid);
    void NoteAnswer(const Answer& answer);

    const Asker& asker_;
    bool hasAnswered_;
    struct Silence {
        Answer failure;
        Oid before, next;  // the nearest variables that came; empty: none did
    };
    std::map<Oid, Silence> silent_;  // by what was asked for
    Oid latest_, last_;              // variables that came: the latest one, and by OID
    Oid beyond_;                     // asked for what follows it
};

}  // namespace vndiscover::host
