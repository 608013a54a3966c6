#include "wsd/vx_soap_mgr.h"

#include <cstring>

#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr char kIPv4Group[] = "239.255.255.250";
constexpr char kIPv6Group[] =
    "FF02:0:0:0:0:0:0:1";  // Kept: all nodes, not WS-Discovery's own group.
constexpr char kLoopback[] = "127.0.0.1";

// The host waits for the final notification, so it is sent however the sweep is left.
class SweepEnd {
  public:
    explicit SweepEnd(VxSoapMgr& manager) : manager_(manager) { manager_.sweeping = true; }
    ~SweepEnd() {
        manager_.sweeping = false;
        DebugLogA("SOAP::Discover - ended\n");
        manager_.SendDiscoverResult(nullptr, nullptr);
    }

  private:
    VxSoapMgr& manager_;
};

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

void VxSoapMgr::SweepFromEverywhere(bool useIPv6, const uint8_t* request, int32_t length) {
    Probe probe = {};
    probe.family = useIPv6 ? AF_INET6 : AF_INET;
    probe.target = useIPv6 ? kIPv6Group : kIPv4Group;
    probe.port = kWsDiscoveryPort;
    probe.data = request;
    probe.length = length;
    probe.protocol = 0;
    probe.socketTimeoutMs = static_cast<int>(timeout);
    const SweepPhase phase = [this](const char*, bool isLast) { HandleEvents(timeout, isLast); };
    SweepAdapters(*socket, sock, probe, phase);
    // A responder of this very machine that listens on the loopback alone is reached only this way.
    if (!useIPv6) SweepFrom(*socket, sock, probe, kLoopback, true, phase);
}

int32_t VxSoapMgr::Discover(HWND window, UINT message, UINT timeoutMs, bool useIPv6,
                            const char* probe, int32_t probeLength) {
    if (sweeping) return 0;  // from within a result message: it would take the sweep's socket away
    DebugLogA("VxSoapMgr::Discover\n");
    stop.store(0, std::memory_order_relaxed);
    hWnd = window;
    uMsg = message;
    timeout = timeoutMs;
    const SweepEnd end(*this);
    // The new object stands before the old one goes, so that WinSock stays started between them.
    socket = std::make_unique<SCKRAW>();
    // No Probe, or one that does not fit the buffer. A negative length could only fail on every
    // adapter.
    if (probeLength <= 0 || probeLength > kMaxProbe) return 0;
    uint8_t request[kMaxProbe] = {};
    if (probe) std::memcpy(request, probe, static_cast<size_t>(probeLength));
    SweepFromEverywhere(useIPv6, request, probeLength);
    return 0;
}

// Kept: each adapter's phase fills the table from entry 0 again; what it held has been delivered.
void VxSoapMgr::HandleEvents(UINT waitMs, bool /*isLast*/) {
    DebugLogA("HandleEvents start\n");
    resultCount = 0;
    const CollectionLimits limits = {static_cast<int>(waitMs), kSoapCollectionMs, true};
    CollectDatagrams(*socket, sock.Get(), limits, stop, [this](const Datagram& datagram) {
        SoapResult& result = results.ToFill(resultCount);
        CopyText(result.address, datagram.sender);
        DebugLogA("pReceiveBuffer = [%s]\n", reinterpret_cast<const char*>(datagram.data));
        std::memcpy(result.reply, datagram.data, sizeof result.reply);
        SendDiscoverResult(result.address, reinterpret_cast<const char*>(result.reply));
        return ++resultCount < kSoapTableCapacity;
    });
    DebugLogA(" ==== We have [%d] devices on the network. ==== \n", static_cast<int>(resultCount));
    DebugLogA("HandleEvents end\n");
}

}  // namespace vndiscover
