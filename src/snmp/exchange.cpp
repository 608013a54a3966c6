#include "snmp/exchange.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {

bool IsIPv6Host(const char* host) { return host && std::strchr(host, ':'); }

OwnedSocket OpenFor(SCKRAW& socket, const char* host, const char* bindAddress) {
    return socket.CreateSocket(SOCK_DGRAM, IPPROTO_UDP, IsIPv6Host(host) ? AF_INET6 : AF_INET,
                               kSocketTimeoutMs, bindAddress);
}

ExchangeResult RunExchange(SCKRAW& socket, OwnedSocket opened, const Exchange& exchange) {
    ExchangeResult result = {};
    if (socket.SendToSocket(opened, exchange.host, kSnmpPort, exchange.request, exchange.length) ==
        -1) {
        DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
        result.outcome = -1;
        return result;
    }
    int32_t waits = 0;
    do {
        Datagram& answer = result.datagram;
        answer = {};
        socket.lastError = 0;  // an empty datagram leaves it alone
        answer.length = socket.RecvFromSocket(opened.Get(), answer.data, kMaxDatagram,
                                              answer.sender, kReceiveWaitMs);
        if (answer.length >= 1) {
            result.outcome = 1;
            break;
        }
        if (socket.lastError == SCKRAW_ERROR_TIMEOUT) {
            result.wasSilent = true;
            if (exchange.onSilence == OnSilence::kGiveUp) break;
        } else if (socket.lastError == WSANOTINITIALISED) {
            DebugLogA("tszRecvAddr = WSAStartup failed\n");
            result.wasSilent = true;
            break;
        }
    } while (++waits < exchange.attempts);
    return result;
}

}  // namespace vndiscover
