#include "net/datagram_collector.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr DWORD kErrorPauseMs = 10;

// The zone of an IPv6 address has a meaning on this computer only.
void CutZone(char* address) {
    if (char* zone = std::strrchr(address, '%')) *zone = '\0';
}

// An empty or oversized datagram has left the queue, so the next receive waits or makes progress.
bool TookNothing(int error) { return error != 0 && error != WSAEMSGSIZE; }

}  // namespace

bool DatagramCollector::Next(Datagram& datagram) {
    while (isFirst_ || !IsOver()) {
        isFirst_ = false;
        datagram = {};
        socket_.lastError = 0;  // left alone by an empty datagram, which is no time-out
        datagram.length = socket_.RecvFromSocket(sock_, datagram.data, kMaxDatagram,
                                                 datagram.sender, limits_.waitMs, takesQueued_);
        if (datagram.length >= 1) {
            errorsInARow_ = 0;
            CutZone(datagram.sender);
            DebugLogA("tszRecvAddr = [%s]\n", datagram.sender);
            return true;
        }
        if (socket_.lastError == SCKRAW_ERROR_TIMEOUT) {
            if (limits_.logsTimeouts) DebugLogA("tszRecvAddr = SCKRAW_ERROR_TIMEOUT\n");
            return false;
        }
        if (socket_.lastError == WSANOTINITIALISED) {
            DebugLogA("tszRecvAddr = WSAStartup failed\n");
            return false;
        }
        // A single error, such as an unreachable port, passes. A socket that keeps failing does so
        // without waiting, and must not keep a core busy until the time is up.
        if (TookNothing(socket_.lastError) && ++errorsInARow_ > 1) Sleep(kErrorPauseMs);
    }
    return false;
}

bool DatagramCollector::IsOver() const {
    return stop_.load(std::memory_order_relaxed) != 0 ||
           GetTickCount() - started_ >= limits_.totalMs;
}

}  // namespace vndiscover
