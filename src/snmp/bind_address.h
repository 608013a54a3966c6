// The local address from which requests to an IPv6 host leave: tried anew in each call, remembered
// between calls. Shared by all directed requests, without a lock.
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
extern char g_szBindIp[kBindAddressSize];  // "" until an IPv6 host was asked

// Logs the count of rows, and fills them from the host's IPv6 addresses when an IPv6 host is asked
// and there are none yet. host may be null. endsLines: the SNMPv1 requests end the row's line, the
// SNMPv3 ones do not.
void LoadBindAddresses(const char* host, bool endsLines);

// The local address for host into `bindAddress`; "" for an IPv4 host and without rows. True: it is
// worth a trial, and where that gets no answer the caller goes on with UseSecondRow.
bool ChooseBindAddress(const char* host, char (&bindAddress)[kBindAddressSize]);

// The second row, if there is one, is used and remembered. Kept: no further row is tried.
void UseSecondRow(char (&bindAddress)[kBindAddressSize]);

}  // namespace vndiscover
