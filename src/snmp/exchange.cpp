#include "snmp/exchange.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {

int AddressFamilyOf(const char* host) { return std::strchr(host, ':') ? AF_INET6 : AF_INET; }

OwnedSocket OpenFor(SCKRAW& socket, const char* host, const char* bindAddress) {
    return socket.CreateSocket(SOCK_DGRAM, IPPROTO_UDP, AddressFamilyOf(host), kSocketTimeoutMs,
                               bindAddress);
}

int32_t RunExchange(SCKRAW& socket, OwnedSocket& opened, Exchange& exchange, Datagram& answer) {
    exchange.wasSilent = false;
    if (socket.SendToSocket(opened, exchange.host, kSnmpPort, exchange.request, exchange.length) ==
        -1) {
        DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
        return -1;
    }
    int32_t waits = 0;
    do {
        answer = {};
        socket.lastError = 0;  // an empty datagram leaves it alone
        answer.length = socket.RecvFromSocket(opened.Get(), answer.data, kMaxDatagram,
                                              answer.sender, kReceiveWaitMs);
        if (answer.length >= 1) return 1;
        if (socket.lastError == SCKRAW_ERROR_TIMEOUT) {
            exchange.wasSilent = true;
            if (exchange.endsAtSilence) break;
        } else if (socket.lastError == WSANOTINITIALISED) {
            DebugLogA("tszRecvAddr = WSAStartup failed\n");
            exchange.wasSilent = true;
            break;
        }
    } while (++waits < exchange.attempts);
    return 0;
}

}  // namespace vndiscover
