// How the portable code asks a device.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "model/asking/answer.h"

namespace vndiscover::host {

// Asks the device for the variable that follows an OID; the call blocks until there is a result.
// See AskerOf in device/device.h.
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

}  // namespace vndiscover::host
