#include "snmpv3/snmp_v3.h"

#include <string>

#include "snmp/delivery.h"
#include "snmp/exchange.h"
#include "snmpv3/request_v3.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

struct SweepV3 {
    RunningSweep& running;
    const UserV3 user;
    const char* oid;
    const char* jsonRequest;
    const char* bindAddress;
};

struct ValueV3 {
    std::string text;  // "" if the device gives no value
    uint8_t tag = 0;
    uint8_t length = 0;
};

// Sends one device a request with the engine values that it reported.
ValueV3 AskV3(const SweepV3& sweep, const char* address, const EngineValues& engine,
              const char* oid) {
    const auto request = MakeRequestV3(sweep.user, engine, kPduGetRequest, oid);
    if (GetInformationV3(sweep.running.manager, request.get(), address, sweep.bindAddress,
                         kOneAttempt) <= 0) {
        return {};
    }
    const VarBindRecord* binding = request->FirstBinding();
    if (!binding) return {};
    return {ValueTextOf(binding), binding->valueTag, binding->valueLength};
}

// Reads a report, asks its sender for the discovery OID and stores the device if it has a value.
void TakeReport(const SweepV3& sweep, Datagram& datagram) {
    VxSNMPv3 report;
    report.Decode(datagram.data, datagram.length);
    // Kept: a report that names no engine is followed up too; the request then goes out as another
    // engine discovery.
    const EngineValues engine = {report.EngineId(), report.EngineBoots(), report.EngineTime()};
    const ValueV3 value = AskV3(sweep, datagram.sender, engine, sweep.oid);
    DebugLogA("strValue [%s]", value.text.c_str());
    if (value.text.empty()) return;
    ResponseRecord& entry = sweep.running.devices.Add();
    CopyText(entry.address, datagram.sender);
    entry.valueTag = value.tag;
    entry.valueLength = value.length;
    FillField(entry.value, sizeof entry.value, value.text.data(), value.text.size());
    entry.engineId = engine.id;
    entry.engineBoots = engine.boots;
    entry.engineTime = engine.time;
    entry.msgMaxSize = report.MsgMaxSize();
}

void HandleEventsV3(const SweepV3& sweep) {
    DebugLogA("HandleEventsV3 start\n");
    const RunningSweep& running = sweep.running;
    DeviceTable& devices = running.devices;
    devices.StartOver();
    DatagramCollector reports(running.manager.Socket(), running.sock.Get(), kSweepLimits,
                              running.stop);
    for (Datagram report; !devices.IsFull() && reports.Next(report);) TakeReport(sweep, report);
    devices.LogCount();
    if (devices.deviceCount == 0) return;

    Delivery delivery(devices, running.sink, running.stop, sweep.jsonRequest);
    while (const ResponseRecord* device = delivery.Next()) {
        const EngineValues engine = {device->engineId, device->engineBoots, device->engineTime,
                                     device->msgMaxSize};
        while (const char* szKey = delivery.NextOid()) {
            const std::string value = AskV3(sweep, device->address, engine, szKey).text;
            DebugLogA("szKey [%s] strValue [%s]", szKey, value.c_str());
            if (!value.empty()) delivery.Put(value.c_str());
        }
        delivery.Send();
    }
    delivery.LogEnd();
}

void SweepAdaptersV3(SweepV3 sweep) {
    VxSNMPv3 discovery;
    const ByteBuffer& message = discovery.Encode();
    std::string szDisOid;
    if (!ChooseDiscoveryOid(sweep.oid, sweep.jsonRequest, szDisOid)) return;
    sweep.oid = szDisOid.c_str();
    const RunningSweep& running = sweep.running;
    AdapterSweep adapters(running.manager.Socket(), running.sock,
                          SnmpSweepRequest(running.settings.useIPv6, message.data,
                                           static_cast<int32_t>(message.length)));
    // Kept: a stop request is not tested here either.
    while (adapters.Next()) {
        sweep.bindAddress = adapters.Address();
        HandleEventsV3(sweep);
    }
}

}  // namespace

int32_t DiscoverV3(VxSnmpMgr& manager, const SweepSettings& settings, const char* oid,
                   const char* jsonRequest, const SecuritySettings& security) {
    RunningSweep running(manager, "SNMP::DiscoverV3\n", settings, SweepEnd::kReturnAlone);
    if (!running) return 0;
    running.RenewSocket();
    if (FitsJsonRequest(jsonRequest) && security.HasUsableName()) {
        PasswordKeys keys;
        SweepAdaptersV3({running, {security, keys}, oid, jsonRequest, nullptr});
    }
    DebugLogA("SNMP::Discoverv3 - ended\n");  // Kept: the lower-case v.
    return 0;
}

}  // namespace vndiscover
