#include "net/datagram_collector.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr DWORD kErrorPauseMs = 10;

// The zone suffix of an IPv6 address belongs to this host and means nothing to the receiver.
void CutZone(char* address) {
    if (char* zone = std::strrchr(address, '%')) *zone = '\0';
}

// An empty or an oversized datagram left the queue, so the next receive waits or makes progress.
bool TookNothing(int error) { return error != 0 && error != WSAEMSGSIZE; }

}  // namespace

void CollectDatagrams(SCKRAW& socket, SOCKET sock, const CollectionLimits& limits,
                      const StopRequest& stop, const std::function<bool(const Datagram&)>& take) {
    const DWORD started = GetTickCount();
    const bool takesQueued = SCKRAW::StopBlocking(sock);
    bool keepGoing = true;
    uint32_t errorsInARow = 0;
    do {
        uint8_t buffer[kMaxDatagram + 1] = {};
        char sender[kSenderTextSize] = {};
        socket.lastError = 0;  // so that an empty datagram is not read as the last wait's silence
        int received = 0;
        if (!takesQueued || !socket.TakeQueued(sock, buffer, kMaxDatagram, sender, received)) {
            received = socket.RecvFromSocket(sock, buffer, kMaxDatagram, sender, limits.waitMs);
        }
        if (received >= 1) {
            errorsInARow = 0;
            CutZone(sender);
            DebugLogA("tszRecvAddr = [%s]\n", sender);
            if (!take(Datagram{buffer, received, sender})) return;
        } else if (socket.lastError == SCKRAW_ERROR_TIMEOUT) {
            if (limits.logsTimeouts) DebugLogA("tszRecvAddr = SCKRAW_ERROR_TIMEOUT\n");
            keepGoing = false;
        } else if (socket.lastError == WSANOTINITIALISED) {
            DebugLogA("tszRecvAddr = WSAStartup failed\n");
            keepGoing = false;
        } else if (TookNothing(socket.lastError) && ++errorsInARow > 1) {
            // One error (an unreachable port) passes. A socket that fails again and again does so
            // without waiting, and must not keep a core busy until the time is up.
            Sleep(kErrorPauseMs);
        }
        if (stop.load(std::memory_order_relaxed) != 0 || !keepGoing) return;
    } while (GetTickCount() - started < limits.totalMs);
}

}  // namespace vndiscover
