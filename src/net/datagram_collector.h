// The receive loop that every sweep shares.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "net/sckraw.h"

namespace vndiscover {

struct Datagram {
    uint8_t* data;       // kMaxDatagram bytes, zero behind the datagram, and one zero byte more
    int length;          // 1 to kMaxDatagram
    const char* sender;  // numeric address without zone suffix
};

struct CollectionLimits {
    int waitMs;         // one receive wait; counted in whole seconds
    uint32_t totalMs;   // no new wait begins after this
    bool logsTimeouts;  // "tszRecvAddr = SCKRAW_ERROR_TIMEOUT\n" at a silent wait
};

// A stop request: a byte that another thread, or the host within a result message, may write.
using StopRequest = std::atomic<uint8_t>;

// Receives until a wait passes silently, totalMs have gone by, `stop` is set, the sockets are not
// initialised, or `take` returns false (it can hold no more). Other receive errors do not end it.
void CollectDatagrams(SCKRAW& socket, SOCKET sock, const CollectionLimits& limits,
                      const StopRequest& stop, const std::function<bool(const Datagram&)>& take);

}  // namespace vndiscover
