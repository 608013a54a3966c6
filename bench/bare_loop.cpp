#include "bare_loop.h"

#include <cstdio>
#include <cstdlib>

#include "lab.h"

namespace vndiscover {
namespace {

constexpr uint16_t kSnmpPort = 161;
constexpr int kRaisedBytes = 4 * 1024 * 1024;  // as in the module
constexpr timeval kAnswerWait = {2, 0};
constexpr timeval kSilence = {2, 0};  // as in the module

constexpr uint8_t kSysNameRequest[] = {
    0x30, 0x26, 2, 1, 0,    4,    6,    's',  'e', 's', 'a',  'm', 'e', 0xA0, 0x19, 2, 1, 1, 2, 1,
    0,    2,    1, 0, 0x30, 0x0E, 0x30, 0x0C, 6,   8,   0x2B, 6,   1,   2,    1,    1, 5, 0, 5, 0};
constexpr uint8_t kDiscoveryRequest[] = {
    0x30, 0x2B, 2, 1, 0, 4,    6,    's',  'e', 's',  'a',  'm',  'e',  0xA0, 0x1E,
    2,    1,    1, 2, 1, 0,    2,    1,    0,   0x30, 0x13, 0x30, 0x11, 6,    13,
    0x2B, 6,    1, 4, 1, 0xAE, 0x4B, 0x2B, 5,   1,    1,    1,    1,    5,    0};

bool WaitReadable(SOCKET handle, timeval wait) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(handle, &readable);
    return select(0, &readable, nullptr, nullptr, &wait) == 1;
}

void Bind(SOCKET handle, const char* address) {
    const sockaddr_in local = AddressOf(address, 0);
    if (bind(handle, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0) return;
    std::fprintf(stderr, "bind to %s fails: %d\n", address, WSAGetLastError());
    std::exit(1);
}

void Send(SOCKET handle, const char* host, const Bytes& request) {
    const sockaddr_in to = AddressOf(host, kSnmpPort);
    sendto(handle, static_cast<const char*>(request.data), request.length, 0,
           reinterpret_cast<const sockaddr*>(&to), sizeof to);
}

int Receive(SOCKET handle, char* answer, int size) {
    sockaddr_storage sender;
    int senderLength = sizeof sender;
    return recvfrom(handle, answer, size, 0, reinterpret_cast<sockaddr*>(&sender), &senderLength);
}

}  // namespace

const Bytes kAskSysName = {kSysNameRequest, sizeof kSysNameRequest};
const Bytes kAskDiscoveryOid = {kDiscoveryRequest, sizeof kDiscoveryRequest};

int BareExchange(const char* host, const Bytes& request, char* answer, int answerSize) {
    const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    Bind(handle, "0.0.0.0");
    Send(handle, host, request);
    const int received =
        WaitReadable(handle, kAnswerWait) ? Receive(handle, answer, answerSize) : 0;
    closesocket(handle);
    return received;
}

int BareCollect(bool raisesBuffer, int most) {
    const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    const int enabled = 1;
    setsockopt(handle, SOL_SOCKET, SO_BROADCAST, reinterpret_cast<const char*>(&enabled),
               sizeof enabled);
    if (raisesBuffer) {
        setsockopt(handle, SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char*>(&kRaisedBytes),
                   sizeof kRaisedBytes);
    }
    Bind(handle, kHost);
    Send(handle, "255.255.255.255", kAskDiscoveryOid);
    char answer[2048];
    int count = 0;
    while (count < most && WaitReadable(handle, kSilence)) {
        if (Receive(handle, answer, sizeof answer) > 0) ++count;
    }
    closesocket(handle);
    return count;
}

}  // namespace vndiscover
