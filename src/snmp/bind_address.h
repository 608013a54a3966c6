// The local address from which requests to an IPv6 host leave: tried anew in each call, remembered
// between calls. Shared by all directed requests, without a lock.
#pragma once

#include <cstdint>
#include <functional>

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

/**
 * Chooses the local address for host. `bindAddress` stays "" for an IPv4 host and without rows.
 * @param trial  Asks the device once from the address; false: no answer, so the second row, if
 *               there is one, is remembered and used. Kept: no further row is tried.
 */
void ChooseBindAddress(const char* host, char (&bindAddress)[kBindAddressSize],
                       const std::function<bool(const char* bindAddress)>& trial);

}  // namespace vndiscover
