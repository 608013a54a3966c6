// WS-Discovery: multicasts the host's Probe and passes on every reply unparsed.
#pragma once

#include <cstdint>
#include <memory>

#include "net/adapter_sweep.h"
#include "net/datagram_collector.h"
#include "support/lazy_table.h"
#include "support/sweeping_thread.h"

namespace vndiscover {

constexpr int kWsDiscoveryPort = 3702;
constexpr int32_t kMaxProbe = 2048;  // bytes of a Probe
constexpr uint32_t kSoapCollectionMs = 30000;
constexpr uint32_t kSoapTableCapacity = 8192;

struct SoapResult {
    char address[48];             // sender, NUL-terminated
    uint8_t reply[kMaxDatagram];  // zero-padded; a reply of exactly this size has no terminator
};
static_assert(sizeof(SoapResult) == 2096, "the table's layout");

// One per process, for one sweep at a time. The result table takes up memory only as replies
// arrive.
class VxSoapMgr {
  public:
    VxSoapMgr();  // throws std::bad_alloc
    ~VxSoapMgr();

    // Reserves memory for the table, so that no sweep can run out of it. Throws std::bad_alloc.
    void Reserve() { results.Reserve(); }

    // Returns 0 and ends with the (0, 0) notification in any case. An empty Probe, or one of more
    // than kMaxProbe bytes, is not sent. During a sweep a further call does nothing. Nothing in the
    // module uses IPv6.
    int32_t Discover(HWND window, UINT message, UINT timeoutMs, bool useIPv6, const char* probe,
                     int32_t probeLength);

    // The receive phase on `sock`. isLast has no effect.
    void HandleEvents(UINT waitMs, bool isLast);

    void SendDiscoverResult(const char* address, const char* reply);

    // May be called on any thread, and by the host's window procedure. Always 0.
    int32_t StopDiscover();

    // Whether a sweep of another thread has not ended, even if the thread has.
    bool IsSweptByAnother() const noexcept { return sweeping_.IsAnother(); }

    std::unique_ptr<SCKRAW> socket;  // of the latest sweep
    HWND hWnd = nullptr;
    UINT uMsg = 0;
    UINT timeout = 0;
    OwnedSocket sock;
    LazyTable<SoapResult, kSoapTableCapacity> results;
    uint32_t resultCount = 0;
    StopRequest stop{0};

  private:
    void SweepFromEverywhere(bool useIPv6, const uint8_t* probe, int32_t length);

    SweepingThread sweeping_;
};

}  // namespace vndiscover
