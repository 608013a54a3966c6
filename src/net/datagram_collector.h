// The receive loop of all sweeps.
#pragma once

#include <atomic>
#include <cstdint>

#include "net/sckraw.h"

namespace vndiscover {

// A received datagram, or none.
struct Datagram {
    uint8_t data[kMaxDatagram + 1];  // zero after the datagram
    int length;                      // up to kMaxDatagram; 0: nothing was received
    char sender[kSenderTextSize];    // numeric address
};

struct CollectionLimits {
    int waitMs;         // one receive wait; counted in whole seconds
    uint32_t totalMs;   // no new wait begins after this
    bool logsTimeouts;  // "tszRecvAddr = SCKRAW_ERROR_TIMEOUT\n" when a wait times out
};

// A stop request: a byte that another thread, or the host within a result message, may write.
using StopRequest = std::atomic<uint8_t>;

// Receives what arrives on a socket from now on:
//
//     for (Datagram answer; answers.Next(answer);) ...
//
// What is passed in must outlive it.
class DatagramCollector {
  public:
    // Starts the time and makes `sock` non-blocking.
    DatagramCollector(SCKRAW& socket, SOCKET sock, const CollectionLimits& limits,
                      const StopRequest& stop)
        : socket_(socket),
          sock_(sock),
          limits_(limits),
          stop_(stop),
          started_(GetTickCount()),
          takesQueued_(SCKRAW::StopBlocking(sock)) {}

    // Takes the next datagram, and waits if none is queued; the sender's zone suffix is removed.
    // False: a wait timed out, totalMs have passed, `stop` is set, or WinSock is not initialised.
    // The first call receives whether or not `stop` is set. Other receive errors do not end the
    // loop.
    bool Next(Datagram& datagram);

  private:
    bool IsOver() const;

    SCKRAW& socket_;
    const SOCKET sock_;
    const CollectionLimits limits_;
    const StopRequest& stop_;
    const DWORD started_;
    const bool takesQueued_;
    bool isFirst_ = true;
    uint32_t errorsInARow_ = 0;
};

}  // namespace vndiscover
