// How the portable code asks a device.
#pragma once

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

}  // namespace vndiscover::host
