#include "snmp/sweep.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "interface/delivery/json_request.h"
#include "snmp/codec/asn.h"
#include "snmp/codec/snmp_message.h"
#include "snmp/delivery.h"
#include "snmp/vx_snmp_mgr.h"
#include "support/copy_text.h"
#include "support/debug_log.h"
#include "vndiscover.h"

namespace vndiscover {
namespace {

constexpr char kIPv4Broadcast[] = "255.255.255.255";
constexpr char kIPv6AllNodes[] = "FF02:0:0:0:0:0:0:1";
constexpr int32_t kAnswerSize = 260;

}  // namespace

RunningSweep::RunningSweep(VxSnmpMgr& sweeping, const char* line, const SweepSettings& given,
                           SweepEnd end) noexcept
    : manager(sweeping),
      settings(given),
      sink(manager.sink),
      sock(manager.sock),
      devices(manager.devices),
      stop(manager.stop),
      end_(end),
      isRunning_(manager.sweeping_.Begin()) {
    if (!isRunning_) return;  // it would take away the running sweep's window and file
    sink.resultFile.Reset();  // of a sweep whose thread ended within a message
    DebugLogA("%s", line);
    stop.store(0, std::memory_order_relaxed);
    sink.hWnd = settings.hWnd;
    sink.uMsg = settings.uMsg;
    manager.timeout = settings.timeout;
}

void RunningSweep::RenewSocket() {
    SCKRAW::KeepStarted();
    // Kept: the previous sweep's object is leaked (a few bytes and one WinSock reference).
    (void)manager.socket.release();
    manager.Socket();
}

RunningSweep::~RunningSweep() {
    if (!isRunning_) return;
    // The file is closed after the final message, while whose handling the host may start the next
    // sweep. It leaves the sink first, so that the next sweep does not write to it, and is flushed,
    // so that no line follows into the next sweep's file of the same name.
    const OwnedFile file(std::move(sink.resultFile));
    if (file) std::fflush(file.Get());
    manager.sweeping_.End();
    if (end_ == SweepEnd::kReturnAlone) return;
    DebugLogA("SNMP::Discover - ended\n");
    sink.SendResult(nullptr, nullptr);
}

void VxSnmpMgr::Sweep(RunningSweep& sweep, const char* oid, const char* readCommunityText,
                      const char* writeCommunityText, const char* jsonRequest) {
    const SweepSettings& settings = sweep.settings;
    sink.OpenFile(settings.resultPath);
    sweep.RenewSocket();
    CopyText(readCommunity, OrDefault(readCommunityText));
    CopyText(writeCommunity, OrDefault(writeCommunityText));
    std::string szDisOid;
    if (!FitsJsonRequest(jsonRequest) || !ChooseDiscoveryOid(oid, jsonRequest, szDisOid)) return;
    uint8_t request[kMaxMessageSize] = {};
    // Kept: text with fewer than two arcs requests the empty OID.
    const int32_t length =
        BuildRequest(request, OidOf(szDisOid.c_str()), kNullValue, kPduGetRequest, readCommunity);
    if (length == 0) return;
    AdapterSweep adapters(Socket(), sock, SnmpSweepRequest(settings.useIPv6, request, length));
    // Kept: a stop request is not tested here; each address that remains is sent from all the same.
    while (adapters.Next()) {
        HandleEvents(settings.timeout, adapters.IsLast(), adapters.Address(), jsonRequest);
    }
}

// Kept: timeout and isLast have no effect; the limits are fixed.
void VxSnmpMgr::HandleEvents(UINT /*timeout*/, bool /*isLast*/, const char* bindAddress,
                             const char* jsonRequest) {
    DebugLogA("HandleEvents start\n");
    devices.StartOver();
    DatagramCollector answers(Socket(), sock.Get(), kSweepLimits, stop);
    // Every datagram takes an entry, whatever it holds; one that is not an answer has no value.
    for (Datagram answer; !devices.IsFull() && answers.Next(answer);) {
        ParseSnmpResponse(devices.Add(), answer.data, static_cast<size_t>(answer.length),
                          answer.sender);
    }
    devices.LogCount();

    Delivery delivery(devices, sink, stop, jsonRequest);
    while (const ResponseRecord* device = delivery.Next()) {
        while (const char* szKey = delivery.NextOid()) {
            char szValue[kAnswerSize] = {};
            // Kept: after a failed send, -1, the member keeps the host's string too.
            if (GetInformation(szKey, device->address, szValue, kAnswerSize, nullptr,
                               kRequestWaitMs, kRequestAttempts, readCommunity, writeCommunity,
                               bindAddress) <= 0) {
                continue;
            }
            DebugLogA("  szValue [%s]\n", szValue);
            delivery.Put(szValue);
        }
        delivery.Send();
    }
    delivery.LogEnd();
}

SweepRequest SnmpSweepRequest(BYTE useIPv6, const void* message, int32_t length) {
    return {useIPv6 ? AF_INET6 : AF_INET,
            useIPv6 ? kIPv6AllNodes : kIPv4Broadcast,
            kSnmpPort,
            message,
            length,
            IPPROTO_UDP,
            kSocketTimeoutMs};
}

bool FitsJsonRequest(const char* jsonRequest) {
    return !jsonRequest || strnlen(jsonRequest, kJsonRequestSize) < kJsonRequestSize;
}

bool ChooseDiscoveryOid(const char* oid, const char* jsonRequest, std::string& szDisOid) {
    szDisOid = oid ? oid : "";
    if (szDisOid.empty() && jsonRequest) szDisOid = ReadDiscoveryOid(jsonRequest);
    if (szDisOid.empty()) {
        // Kept: the doubled word.
        DebugLogW(L"Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n");
        szDisOid = VN_DEFAULT_DISCOVERY_OID;
    }
    return szDisOid.size() < kOidTextSize;
}

}  // namespace vndiscover
