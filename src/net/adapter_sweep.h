// Sends one datagram from every address of the host and runs a phase behind each send.
#pragma once

#include <functional>

#include "net/sckraw.h"

namespace vndiscover {

struct Probe {
    int family;          // AF_INET or AF_INET6
    const char* target;  // broadcast or multicast address
    int port;
    const void* data;
    int length;           // bytes in data
    int protocol;         // for CreateSocket
    int socketTimeoutMs;  // for CreateSocket
};

// Runs on the socket that has just sent, while it is open. isLast: no address follows.
using SweepPhase = std::function<void(const char* bindAddress, bool isLast)>;

// For each address of the probe's family: open `sock` bound to it, send, run phase, close. An
// address whose send fails is logged and skipped. `socket` makes the sockets; `sock` is empty
// between addresses.
void SweepAdapters(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const SweepPhase& phase);

// The same for one local IPv4 address.
void SweepFrom(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress,
               bool isLast, const SweepPhase& phase);

}  // namespace vndiscover
