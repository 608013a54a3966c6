#include "wsd/vx_soap_mgr.h"

#include <cstring>

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/scope_exit.h"

namespace vndiscover {
namespace {

constexpr char kIPv4Group[] = "239.255.255.250";
// Kept: the all-nodes group, not the one of WS-Discovery.
constexpr char kIPv6Group[] = "FF02:0:0:0:0:0:0:1";
constexpr char kLoopback[] = "127.0.0.1";

}  // namespace

VxSoapMgr::VxSoapMgr() { DebugLogA("VxSoapMgr::VxSoapMgr()\n"); }

VxSoapMgr::~VxSoapMgr() { DebugLogA("VxSoapMgr::~VxSoapMgr()\n"); }

int32_t VxSoapMgr::StopDiscover() {
    DebugLogA("VxSoapMgr::StopDiscover\n");
    stop.store(1, std::memory_order_relaxed);
    return 0;
}

void VxSoapMgr::SendDiscoverResult(const char* address, const char* reply) {
    if (!hWnd) return;
    DebugLogA("SendDiscoverResult\n");
    SendMessageA(hWnd, uMsg, reinterpret_cast<WPARAM>(address), reinterpret_cast<LPARAM>(reply));
}

int32_t VxSoapMgr::Discover(HWND window, UINT message, UINT timeoutMs, bool useIPv6,
                            const char* probe, int32_t probeLength) {
    if (!sweeping_.Begin()) return 0;  // it would take away the running sweep's window and socket
    DebugLogA("VxSoapMgr::Discover\n");
    stop.store(0, std::memory_order_relaxed);
    hWnd = window;
    uMsg = message;
    timeout = timeoutMs;
    // The host waits for the final notification, so it is sent on every exit path.
    const ScopeExit end([this] {
        sock.Reset();
        sweeping_.End();  // the host may start the next sweep while it handles the final message
        DebugLogA("SOAP::Discover - ended\n");
        SendDiscoverResult(nullptr, nullptr);
    });
    SCKRAW::KeepStarted();
    socket = std::make_unique<SCKRAW>();
    // No Probe, or one that does not fit the buffer; a send with a negative length could only fail.
    if (probeLength <= 0 || probeLength > kMaxProbe) return 0;
    uint8_t copy[kMaxProbe] = {};
    if (probe) std::memcpy(copy, probe, static_cast<size_t>(probeLength));
    SweepFromEverywhere(useIPv6, copy, probeLength);
    return 0;
}

void VxSoapMgr::SweepFromEverywhere(bool useIPv6, const uint8_t* probe, int32_t length) {
    const SweepRequest request = {useIPv6 ? AF_INET6 : AF_INET,
                                  useIPv6 ? kIPv6Group : kIPv4Group,
                                  kWsDiscoveryPort,
                                  probe,
                                  length,
                                  0,
                                  static_cast<int>(timeout)};
    AdapterSweep adapters(*socket, sock, request);
    // Kept: a stop request is not tested here; the Probe is still sent from each address.
    while (adapters.Next()) HandleEvents(timeout, adapters.IsLast());
    // Reaches responders on this computer that listen on the loopback address alone.
    if (!useIPv6 && adapters.SendFrom(kLoopback)) HandleEvents(timeout, true);
}

// Kept: each adapter's phase fills the table from entry 0; earlier replies have been delivered.
void VxSoapMgr::HandleEvents(UINT waitMs, bool /*isLast*/) {
    DebugLogA("HandleEvents start\n");
    resultCount = 0;
    DatagramCollector replies(*socket, sock.Get(),
                              {static_cast<int>(waitMs), kSoapCollectionMs, true}, stop);
    for (Datagram reply; resultCount < kSoapTableCapacity && replies.Next(reply);) {
        SoapResult& result = results.ToFill(resultCount);
        CopyText(result.address, reply.sender);
        DebugLogA("pReceiveBuffer = [%s]\n", reinterpret_cast<const char*>(reply.data));
        std::memcpy(result.reply, reply.data, sizeof result.reply);
        SendDiscoverResult(result.address, reinterpret_cast<const char*>(result.reply));
        ++resultCount;
    }
    DebugLogA(" ==== We have [%d] devices on the network. ==== \n", static_cast<int>(resultCount));
    DebugLogA("HandleEvents end\n");
}

}  // namespace vndiscover
