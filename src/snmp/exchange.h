// One request to one device and its answer, for all SNMP versions.
#pragma once

#include <cstdint>

#include "net/datagram_collector.h"

namespace vndiscover {

constexpr int kSnmpPort = 161;
constexpr int kSocketTimeoutMs = 1000;
constexpr int kReceiveWaitMs = 2000;
constexpr uint32_t kRequestWaitMs = 1000;  // passed on, but not used
constexpr int32_t kRequestAttempts = 5;    // receive waits of one request

// AF_INET6 for an address with a ':', otherwise AF_INET.
int AddressFamilyOf(const char* host);

// A socket for one exchange with host; a null or "" bindAddress means any local address.
OwnedSocket OpenFor(SCKRAW& socket, const char* host, const char* bindAddress);

struct Exchange {
    const char* host;
    const void* request;
    int32_t length;      // bytes in request
    int32_t attempts;    // receive waits; at least one is made
    bool endsAtSilence;  // the first time-out ends it
    bool wasSilent;      // out: a wait timed out, or WinSock was not initialised
};

/**
 * Sends once to port 161 and waits for the first datagram from any sender.
 * @param opened  Closed if the send fails.
 * @param answer  Always overwritten. The sender may have a zone suffix.
 * @return 1: an answer came; 0: none came; -1: the send failed.
 */
int32_t RunExchange(SCKRAW& socket, OwnedSocket& opened, Exchange& exchange, Datagram& answer);

}  // namespace vndiscover
