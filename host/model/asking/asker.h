#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>

#include "model/asking/answer.h"

namespace vndiscover::host {

// Asks the device for the variable after an OID; blocks until there is a result. See AskerOf.
struct Asker {
    std::function<Answer(const Oid&)> getNext;
    bool isV3 = false;
    std::function<bool()> mayGoOn;   // called before each request; empty: always
    std::function<int64_t()> nowMs;  // for the time limit; empty: the system's clock
};

inline int64_t NowMs(const Asker& asker) {
    using std::chrono::milliseconds;
    if (asker.nowMs) return asker.nowMs();
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<milliseconds>(now).count();
}

// Repeats what gets no answer. The datagram may have been lost, so it is sent once more. If there
// is still no answer, sysUpTime tells whether the device is silent or only this variable. If the
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
    // `ask` sends the request for `oid`.
    Answer Ask(const Oid& oid, const std::function<Answer()>& ask);

  private:
    bool HasSign(const Oid& oid);

    const Asker& asker_;
    bool hasAnswered_;
    std::map<Oid, Answer> silent_;  // by what was asked for
};

}  // namespace vndiscover::host
