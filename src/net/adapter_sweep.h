// Sends one datagram from every address of the host.
#pragma once

#include <memory>

#include "net/adapter_table.h"
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

// Opens `sock` on the local address and sends. False: the send failed, which is logged, and `sock`
// is empty.
bool SendProbe(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress);

// The addresses of the probe's family, one after the other:
//
//     while (adapters.Next()) ...  // the probe has left from Address(), `sock` is open for answers
//
// What is passed in must outlive it. Throws std::bad_alloc.
class AdapterSweep {
  public:
    AdapterSweep(SCKRAW& socket, OwnedSocket& sock, const Probe& probe);  // lists the addresses
    ~AdapterSweep() { sock_.Reset(); }
    AdapterSweep(const AdapterSweep&) = delete;
    AdapterSweep& operator=(const AdapterSweep&) = delete;

    // Closes `sock` and sends from the next address, past those whose send fails. False: there is
    // none left.
    bool Next();

    const char* Address() const { return address_; }
    // Kept: each IPv6 address is told that it is the last.
    bool IsLast() const { return probe_.family == AF_INET6 || next_ == count_; }

  private:
    bool SendFromIPv4(uint32_t index);
    bool SendFromIPv6(uint32_t index);

    SCKRAW& socket_;
    OwnedSocket& sock_;
    const Probe probe_;
    const std::unique_ptr<AdapterTable> adapters_;  // too large for a host's stack
    uint32_t count_ = 0;
    uint32_t next_ = 0;
    char address_[kAdapterTextSize] = {};
};

}  // namespace vndiscover
