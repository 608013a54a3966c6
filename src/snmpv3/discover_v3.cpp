#include "snmpv3/discover_v3.h"

#include <string>

#include "interface/delivery/json_request.h"
#include "snmpv3/request_v3.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr int32_t kOneWait = 1;

struct SweepV3 {
    VxSnmpMgr& manager;
    const SecuritySettings& security;
    const char* oid;
    const char* bindAddress;
};

// Asks one device with the engine values it reported; "" when it gives no value.
std::string AskV3(const SweepV3& sweep, const char* address, const EngineValues& engine,
                  const char* oid, ResponseRecord* entry) {
    const auto request = MakeRequestV3(sweep.security, engine, kPduGetRequest, oid);
    const int32_t length =
        GetInformationV3(sweep.manager, request.get(), address, sweep.bindAddress, kOneWait);
    const VarBindRecord* binding = length > 0 ? FirstBinding(*request) : nullptr;
    if (entry && binding) {
        entry->valueTag = binding->valueTag;
        entry->valueLength = binding->valueLength;
    }
    return ValueTextOf(binding);
}

// Reads a report, asks its sender for the discovery OID and stores the device. False: no device.
bool TakeReport(const SweepV3& sweep, const Datagram& datagram, ResponseRecord& entry) {
    VxSNMPv3 report;
    report.Decode(datagram.data, datagram.length);
    // Kept: a report that names no engine is answered too; the request then goes out as one more
    // probe.
    const EngineValues engine = {report.EngineId(), report.EngineBoots(), report.EngineTime()};
    const std::string strValue = AskV3(sweep, datagram.sender, engine, sweep.oid, &entry);
    DebugLogA("strValue [%s]", strValue.c_str());
    if (strValue.empty()) return false;
    CopyText(entry.address, datagram.sender);
    FillField(entry.value, sizeof entry.value, strValue.data(), strValue.size());
    entry.engineId = engine.id;
    entry.engineBoots = engine.boots;
    entry.engineTime = engine.time;
    entry.msgMaxSize = report.MsgMaxSize();
    return true;
}

void HandleEventsV3(const SweepV3& sweep, const char* jsonRequest) {
    DebugLogA("HandleEventsV3 start\n");
    VxSnmpMgr& manager = sweep.manager;
    manager.CollectDevices([&](const Datagram& datagram, ResponseRecord& entry) {
        return TakeReport(sweep, datagram, entry);
    });
    if (manager.deviceCount == 0) return;
    manager.DeliverDevices(
        jsonRequest, [&](ResponseRecord& device, const char* szKey, std::string& strValue) {
            const EngineValues engine = {device.engineId, device.engineBoots, device.engineTime};
            strValue = AskV3(sweep, device.address, engine, szKey, nullptr);
            DebugLogA("szKey [%s] strValue [%s]", szKey, strValue.c_str());
            return !strValue.empty();
        });
}

bool FitsLimits(const char* jsonRequest, const SecuritySettings& security) {
    if (jsonRequest && strnlen(jsonRequest, kJsonRequestSize) >= kJsonRequestSize) return false;
    return security.HasUsableName();
}

}  // namespace

int32_t DiscoverV3(VxSnmpMgr& manager, const char* oid, HWND hWnd, UINT uMsg, UINT timeout,
                   BYTE useIPv6, const char* jsonRequest, const SecuritySettings& security) {
    DebugLogA("SNMP::DiscoverV3\n");
    manager.BeginSweep(hWnd, uMsg, timeout);
    manager.EnsureSocket();
    if (FitsLimits(jsonRequest, security)) {
        VxSNMPv3 probe;
        const ByteBuffer& message = probe.Encode();
        std::string discoveryOid = oid ? oid : "";
        if (discoveryOid.empty() && jsonRequest) discoveryOid = ReadDiscoveryOid(jsonRequest);
        discoveryOid = OrDefaultDiscoveryOid(discoveryOid);
        manager.Sweep(
            useIPv6 != 0, message.data, static_cast<int32_t>(message.length),
            [&](const char* bindAddress, bool) {
                const SweepV3 sweep = {manager, security, discoveryOid.c_str(), bindAddress};
                HandleEventsV3(sweep, jsonRequest);
            });
    }
    DebugLogA("SNMP::Discoverv3 - ended\n");  // Kept: the lower-case v.
    return 0;
}

}  // namespace vndiscover
