// The addresses of this computer's adapters, from each of which a sweep sends.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/win.h"

#include <iptypes.h>

namespace vndiscover {

constexpr uint32_t kMaxIPv6Addresses = 32;
constexpr size_t kAdapterTextSize = 260;     // bytes of each text that GetIPv4Address fills
constexpr size_t kIPv6AddressTextSize = 64;  // bytes of an address text

// Made for one sweep, on one thread. Every failure gives an empty result. Its 23 KB are too large
// for a host's stack.
class AdapterTable {
  public:
    AdapterTable() = default;
    AdapterTable(const AdapterTable&) = delete;  // the list points into itself
    AdapterTable& operator=(const AdapterTable&) = delete;

    // Returns the number of IPv4 entries that have an address and a mask, 0.0.0.0 included, over
    // all adapters in any state; 0 if the list is not available or exceeds the fixed buffer.
    uint32_t LoadIPv4Addresses();

    // Entry `index` in the system's order. Each buffer is null or has kAdapterTextSize bytes.
    // Returns 1 if the entry exists.
    int GetIPv4Address(uint32_t index, char* address, char* mask, char* description) const;

    // Collects the link-local addresses of adapters that are up, 32 at most, and returns their
    // number.
    uint32_t LoadIPv6LinkLocal();

    // Copies slot `index` if it is below 32, even if not below the count. Always 0.
    int GetIPv6Address(uint32_t index, sockaddr_in6* out) const;

    // Writes a raw address (4 or 16 bytes) as text. Returns the text, or null on failure.
    static const char* AddressToText(int family, const void* address, char* text, size_t size);

    uint32_t ipv4Count = 0;
    uint32_t ipv6Count = 0;

  private:
    template <class Visit>
    void ForEachIPv4(Visit visit) const;

    // Kept: a fixed size; with more adapters than fit, no IPv4 sweep is sent.
    alignas(IP_ADAPTER_INFO) uint8_t adapterInfo[22528] = {};
    sockaddr_in6 ipv6Addresses[kMaxIPv6Addresses] = {};
};

}  // namespace vndiscover
