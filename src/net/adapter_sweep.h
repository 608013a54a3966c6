// Sends one datagram from every address of the host.
#pragma once

#include <cstdint>
#include <memory>

#include "net/adapter_table.h"
#include "net/sckraw.h"

namespace vndiscover {

struct SweepRequest {
    int family;          // AF_INET or AF_INET6
    const char* target;  // broadcast or multicast address
    int port;
    const void* data;
    int length;           // bytes in data
    int protocol;         // for CreateSocket
    int socketTimeoutMs;  // for CreateSocket
};

// Goes through the addresses of the request's family:
//
//     while (adapters.Next()) ...  // the request was sent from Address(); `sock` takes the answers
//
// Opens and closes `sock`. What is passed in must outlive it. Throws std::bad_alloc.
class AdapterSweep {
  public:
    AdapterSweep(SCKRAW& socket, OwnedSocket& sock,
                 const SweepRequest& request);  // lists the addresses
    ~AdapterSweep() { sock_.Reset(); }

    // Sends from the next address, skipping those whose send fails. False: there is none left.
    bool Next();

    // Opens `sock` anew on a local address and sends. False: the send failed, which is logged, and
    // `sock` is empty.
    bool SendFrom(const char* address);

    const char* Address() const { return address_; }
    // Kept: true for every IPv6 address.
    bool IsLast() const { return IsIPv6() || next_ == count_; }

  private:
    bool IsIPv6() const { return request_.family == AF_INET6; }
    void ReadAddress(uint32_t index);

    SCKRAW& socket_;
    OwnedSocket& sock_;
    const SweepRequest request_;
    const std::unique_ptr<AdapterTable> adapters_;
    uint32_t count_ = 0;
    uint32_t next_ = 0;
    char address_[kAdapterTextSize] = {};
};

}  // namespace vndiscover
