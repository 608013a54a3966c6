// The local address from which requests to an IPv6 host are sent: remembered between calls, and
// tried again in each. Shared by all directed requests, without a lock.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vndiscover {

constexpr uint32_t kMaxAdapterRows = 64;
constexpr size_t kBindAddressSize = 64;  // bytes of an address text

struct AdapterAddress {
    char szAddress[kBindAddressSize];
};

extern AdapterAddress g_adapterAddr[kMaxAdapterRows];
extern int32_t g_nAdapter;                 // rows of g_adapterAddr in use
extern char g_szBindIp[kBindAddressSize];  // "" until the first request to an IPv6 host

// Logs the number of rows. If there are none and host is an IPv6 address, fills them with this
// computer's IPv6 addresses. host may be null. endsLines: whether each row's log line ends with a
// newline, as for SNMPv1 but not for SNMPv3.
void LoadBindAddresses(const char* host, bool endsLines);

// Puts the local address for host into `bindAddress`: "" for an IPv4 host, or without rows. True:
// the caller sends a trial request from it and, if that gets no answer, calls UseSecondRow.
bool ChooseBindAddress(const char* host, char (&bindAddress)[kBindAddressSize]);

// Uses and remembers the second row, if there is one. Kept: no further row is tried.
void UseSecondRow(char (&bindAddress)[kBindAddressSize]);

}  // namespace vndiscover
