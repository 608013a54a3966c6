#include "wsd/vx_soap_mgr.h"

#include <cstring>

#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr char kIPv4Group[] = "239.255.255.250";
constexpr char kIPv6Group[] = "FF02:0:0:0:0:0:0:1";  // Kept: all nodes, not WS-Discovery's own group.
constexpr char kLoopback[] = "127.0.0.1";

// The host waits for the final notification, so it is sent however the sweep is left.
class SweepEnd {
  public:
    explicit SweepEnd(VxSoapMgr& manager) : manager_(manager) {}
    ~SweepEnd() {
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
    stop_.store(1, std::memory_order_relaxed);
    return 0;
}

void VxSoapMgr::SendDiscoverResult(const char* address, const char* reply) {
    if (!hWnd_) return;
    DebugLogA("SendDiscoverResult\n");
    SendMessageA(hWnd_, uMsg_, reinterpret_cast<WPARAM>(address), reinterpret_cast<LPARAM>(reply));
}

void VxSoapMgr::SweepFromEverywhere(bool useIPv6, const uint8_t* request, int32_t length) {
    Probe probe = {};
    probe.family = useIPv6 ? AF_INET6 : AF_INET;
    probe.target = useIPv6 ? kIPv6Group : kIPv4Group;
    probe.port = kWsDiscoveryPort;
    probe.data = request;
    probe.length = length;
    probe.protocol = 0;
    probe.socketTimeoutMs = static_cast<int>(timeout_);
    const SweepPhase phase = [this](const char*, bool isLast) { HandleEvents(timeout_, isLast); };
    SweepAdapters(*socket_, sock_, probe, phase);
    // A responder on this very machine hears only what leaves from the loopback address.
    if (!useIPv6) SweepFrom(*socket_, sock_, probe, kLoopback, true, phase);
}

int32_t VxSoapMgr::Discover(HWND hWnd, UINT uMsg, UINT timeout, bool useIPv6, const char* probe,
                            int32_t probeLength) {
    DebugLogA("VxSoapMgr::Discover\n");
    stop_.store(0, std::memory_order_relaxed);
    hWnd_ = hWnd;
    uMsg_ = uMsg;
    timeout_ = timeout;
    const SweepEnd end(*this);
    // The new object stands before the old one goes, so that WinSock stays started between them.
    socket_ = std::make_unique<SCKRAW>();
    if (probeLength <= 0 || probeLength > kMaxProbe) return 0;
    uint8_t request[kMaxProbe] = {};
    if (probe) std::memcpy(request, probe, static_cast<size_t>(probeLength));
    SweepFromEverywhere(useIPv6, request, probeLength);
    return 0;
}

// Kept: each adapter's phase fills the table from entry 0 again; what it held has been delivered.
void VxSoapMgr::HandleEvents(UINT timeout, bool /*isLast*/) {
    DebugLogA("HandleEvents start\n");
    resultCount_ = 0;
    const CollectionLimits limits = {static_cast<int>(timeout), kSoapCollectionMs, true};
    CollectDatagrams(*socket_, sock_.Get(), limits, stop_, [this](const Datagram& datagram) {
        SoapResult& result = results_.ToFill(resultCount_);
        CopyText(result.address, datagram.sender);
        DebugLogA("pReceiveBuffer = [%s]\n", reinterpret_cast<const char*>(datagram.data));
        std::memcpy(result.reply, datagram.data, sizeof result.reply);
        SendDiscoverResult(result.address, reinterpret_cast<const char*>(result.reply));
        return ++resultCount_ < kSoapTableCapacity;
    });
    DebugLogA(" ==== We have [%d] devices on the network. ==== \n", static_cast<int>(resultCount_));
    DebugLogA("HandleEvents end\n");
}

}  // namespace vndiscover
