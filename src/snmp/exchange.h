// One request to one device and its answer, for all SNMP versions.
#pragma once

#include <cstdint>

#include "net/datagram_collector.h"
#include "net/sckraw.h"

namespace vndiscover {

constexpr int kSnmpPort = 161;
constexpr int kSocketTimeoutMs = 1000;
constexpr int kReceiveWaitMs = 2000;
constexpr uint32_t kRequestWaitMs = 1000;  // passed on, but not used
constexpr int32_t kRequestAttempts = 5;    // receive waits of one request
constexpr int32_t kOneAttempt = 1;

// An address with a ':'. False for null.
bool IsIPv6Host(const char* host);

// A socket for one exchange with host; a null or "" bindAddress means any local address.
OwnedSocket OpenFor(SCKRAW& socket, const char* host, const char* bindAddress);

enum class OnSilence { kWaitAgain, kGiveUp };

struct Exchange {
    const char* host;
    const void* request;
    int32_t length;    // bytes in request
    int32_t attempts;  // receive waits; at least one is made
    OnSilence onSilence;
};

struct ExchangeResult {
    int32_t outcome;    // 1: an answer came; 0: none came; -1: the send failed
    bool wasSilent;     // a wait timed out, or WinSock was not initialised
    Datagram datagram;  // the answer; the sender may have a zone suffix
};

// Sends once to port 161, waits for the first datagram from any sender, and closes `opened`.
ExchangeResult RunExchange(SCKRAW& socket, OwnedSocket opened, const Exchange& exchange);

}  // namespace vndiscover
