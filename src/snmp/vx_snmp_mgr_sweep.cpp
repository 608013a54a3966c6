#include <cstdio>
#include <cstring>

#include "interface/delivery/json_request.h"
#include "snmp/codec/snmp_message.h"
#include "snmp/vx_snmp_mgr.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr size_t kPathChars = 260;

// False: the OID is too long for its field. A cut one would ask for another variable.
bool FitsOidText(const char* oid) { return strnlen(oid, kOidTextSize) < kOidTextSize; }

bool FitsJsonRequest(const char* request) {
    return !request || strnlen(request, kJsonRequestSize) < kJsonRequestSize;
}

void StoreCommunity(char (&field)[kCommunitySize], const char* community) {
    CopyText(field, community && *community ? community : kDefaultCommunity);
}

// The host waits for the final message, so it is sent however the sweep is left.
class SweepEnd {
  public:
    explicit SweepEnd(ResultSink& sink) : sink_(sink) {}
    ~SweepEnd() {
        DebugLogA("SNMP::Discover - ended\n");
        sink_.SendResult(nullptr, nullptr);
        sink_.resultFile.Reset();  // a later sweep without a path then writes nowhere
    }

  private:
    ResultSink& sink_;
};

}  // namespace

std::string OrDefaultDiscoveryOid(std::string oid) {
    if (!oid.empty()) return oid;
    // Kept: the doubled word.
    DebugLogW(L"Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n");
    return kDefaultDiscoveryOid;
}

void VxSnmpMgr::BeginSweep(HWND hWnd, UINT uMsg, UINT timeoutMs) {
    stop.store(0, std::memory_order_relaxed);
    sink.hWnd = hWnd;
    sink.uMsg = uMsg;
    timeout = timeoutMs;
}

void VxSnmpMgr::RenewSocket() {
    // Kept: the object of the sweep before is not released (some bytes and one WinSock reference).
    (void)socket.release();
    EnsureSocket();
}

void VxSnmpMgr::OpenResultFile(const wchar_t* path) {
    if (!path || !*path) return;
    // A cut path would empty some other file.
    sink.resultFile.Reset(wcsnlen(path, kPathChars) < kPathChars ? _wfopen(path, L"w") : nullptr);
}

int32_t VxSnmpMgr::BuildDiscoveryRequest(const char* oid, const char* jsonRequest, uint8_t* out) {
    if (!FitsJsonRequest(jsonRequest)) return 0;
    std::string szDisOid = oid ? oid : "";
    if (szDisOid.empty() && jsonRequest) szDisOid = ReadDiscoveryOid(jsonRequest);
    szDisOid = OrDefaultDiscoveryOid(szDisOid);
    if (!FitsOidText(szDisOid.c_str())) return 0;

    OidValue name;
    ParseOidText(name, szDisOid.c_str());  // Kept: text without two arcs asks for the empty OID.
    VarBindRecord binding;
    if (MakeVarBind(name, ValueView{kTagNull, 0, nullptr}, binding) != 0) return 0;
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    return BuildSnmpMessage(out, kMaxMessageSize, readCommunity, kPduGetRequest, kRequestId, list);
}

void VxSnmpMgr::Sweep(bool useIPv6, const void* request, int32_t length, const SweepPhase& phase) {
    Probe probe = {};
    probe.family = useIPv6 ? AF_INET6 : AF_INET;
    probe.target = useIPv6 ? kIPv6AllNodes : kIPv4Broadcast;
    probe.port = kSnmpPort;
    probe.data = request;
    probe.length = length;
    probe.protocol = IPPROTO_UDP;
    probe.socketTimeoutMs = kSocketTimeoutMs;
    SweepAdapters(*socket, sock, probe, phase);
}

int32_t VxSnmpMgr::Discover(const char* oid, HWND hWnd, UINT uMsg, UINT timeoutMs, BYTE useIPv6,
                            const wchar_t* resultPath, const char* readCommunityText,
                            const char* writeCommunityText, const char* jsonRequest) {
    DebugLogA("SNMP::Discover\n");
    BeginSweep(hWnd, uMsg, timeoutMs);
    const SweepEnd end(sink);
    RenewSocket();
    OpenResultFile(resultPath);
    StoreCommunity(readCommunity, readCommunityText);
    StoreCommunity(writeCommunity, writeCommunityText);
    uint8_t request[kMaxMessageSize] = {};
    const int32_t length = BuildDiscoveryRequest(oid, jsonRequest, request);
    if (length == 0) return 0;
    Sweep(useIPv6 != 0, request, length, [&](const char* bindAddress, bool isLast) {
        HandleEvents(timeoutMs, isLast, bindAddress, jsonRequest);
    });
    return 0;
}

}  // namespace vndiscover
