#include "snmp/vx_snmp_mgr.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {

int AddressFamilyOf(const char* host) { return std::strchr(host, ':') ? AF_INET6 : AF_INET; }

VxSnmpMgr::VxSnmpMgr() { DebugLogA("VxSNMP::VxSNMP()\n"); }

VxSnmpMgr::~VxSnmpMgr() { DebugLogA("VxSnmpMgr::~VxSnmpMgr()\n"); }

int32_t VxSnmpMgr::StopDiscover() {
    DebugLogA("VxSnmpMgr::StopDiscover\n");
    stop.store(1, std::memory_order_relaxed);
    return 0;
}

void VxSnmpMgr::EnsureSocket() {
    if (!socket) socket = std::make_unique<SCKRAW>();
}

OwnedSocket VxSnmpMgr::OpenFor(const char* host, const char* bindAddress) {
    EnsureSocket();
    return socket->CreateSocket(SOCK_DGRAM, IPPROTO_UDP, AddressFamilyOf(host), kSocketTimeoutMs,
                                bindAddress);
}

int32_t VxSnmpMgr::RunExchange(OwnedSocket& opened, const Exchange& exchange,
                               const std::function<int32_t(const Datagram&)>& take) {
    if (socket->SendToSocket(opened, exchange.host, kSnmpPort, exchange.request, exchange.length) ==
        -1) {
        DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
        return -1;
    }
    int32_t waits = 0;
    do {
        uint8_t buffer[kMaxDatagram + 1] = {};
        char sender[kSenderTextSize] = {};
        socket->lastError = 0;
        const int received =
            socket->RecvFromSocket(opened.Get(), buffer, kMaxDatagram, sender, kReceiveWaitMs);
        if (received >= 1) return take(Datagram{buffer, received, sender});
        if (socket->lastError == SCKRAW_ERROR_TIMEOUT) {
            timeout = 0;  // Kept: a side effect that nothing reads afterwards.
            if (exchange.giveUpOnTimeout) break;
        } else if (socket->lastError == WSANOTINITIALISED) {
            DebugLogA("tszRecvAddr = WSAStartup failed\n");
            timeout = 0;
            break;
        }
    } while (++waits < exchange.attempts);
    return 0;
}

}  // namespace vndiscover
