#include "wsd/vx_soap_mgr.h"

#include <cstring>

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/scope_exit.h"

namespace vndiscover {
namespace {

constexpr char kIPv4Group[] = "239.255.255.250";
constexpr char kIPv6Group[] =
    "FF02:0:0:0:0:0:0:1";  // Kept: all nodes, not WS-Discovery's own group.
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
    if (sweeping) return 0;  // from within a result message: it would take the sweep's socket away
    DebugLogA("VxSoapMgr::Discover\n");
    sweeping = true;
    stop.store(0, std::memory_order_relaxed);
    hWnd = window;
    uMsg = message;
    timeout = timeoutMs;
    // The host waits for the final notification, so it is sent however the sweep is left.
    const ScopeExit end([this] {
        sock.Reset();
        sweeping = false;  // within the final message the host may start the next sweep
        DebugLogA("SOAP::Discover - ended\n");
        SendDiscoverResult(nullptr, nullptr);
    });
    SCKRAW::KeepStarted();
    socket = std::make_unique<SCKRAW>();
    // No Probe, or one that does not fit the buffer. A negative length could only fail on every
    // adapter.
    if (probeLength <= 0 || probeLength > kMaxProbe) return 0;
    uint8_t request[kMaxProbe] = {};
    if (probe) std::memcpy(request, probe, static_cast<size_t>(probeLength));
    SweepFromEverywhere(useIPv6, request, probeLength);
    return 0;
}

void VxSoapMgr::SweepFromEverywhere(bool useIPv6, const uint8_t* request, int32_t length) {
    Probe probe = {};
    probe.family = useIPv6 ? AF_INET6 : AF_INET;
    probe.target = useIPv6 ? kIPv6Group : kIPv4Group;
    probe.port = kWsDiscoveryPort;
    probe.data = request;
    probe.length = length;
    probe.protocol = 0;
    probe.socketTimeoutMs = static_cast<int>(timeout);
    AdapterSweep adapters(*socket, sock, probe);
    while (adapters.Next()) HandleEvents(timeout, adapters.IsLast());
    // A responder of this very machine that listens on the loopback alone is reached only this way.
    if (!useIPv6 && SendProbe(*socket, sock, probe, kLoopback)) HandleEvents(timeout, true);
}

// Kept: each adapter's phase fills the table from entry 0 again; what it held has been delivered.
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
