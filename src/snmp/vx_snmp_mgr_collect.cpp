#include <cstring>

#include "interface/delivery/json_request.h"
#include "snmp/codec/snmp_message.h"
#include "snmp/vx_snmp_mgr.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr int32_t kAnswerSize = 260;
constexpr uint32_t kFollowUpWaitMs = 1000;
constexpr int32_t kFollowUpAttempts = 5;

// A document that does not fit the field is cut between two characters: the host still learns of
// the device, and sees by the document, which no longer parses, that it asked for too much.
void StoreDocument(ResponseRecord& device, const std::string& document) {
    const size_t length = Utf8PrefixLength(document, sizeof device.value - 1);
    std::memcpy(device.value, document.data(), length);
    device.value[length] = '\0';
}

}  // namespace

void VxSnmpMgr::CollectDevices(const FillEntry& fill) {
    deviceCount = 0;
    const CollectionLimits limits = {kReceiveWaitMs, kCollectionMs, false};
    CollectDatagrams(*socket, sock.Get(), limits, stop, [&](const Datagram& datagram) {
        ResponseRecord& entry = devices.ToFill(deviceCount);
        InitResponseRecord(entry);
        if (fill(datagram, entry)) ++deviceCount;
        return deviceCount < kTableCapacity;
    });
    DebugLogA(" ==== We have [%d] devices on the network. ==== \n", static_cast<int>(deviceCount));
}

bool VxSnmpMgr::DeliverDevice(ResponseRecord& device, const char* jsonRequest,
                              const FetchForDevice& fetch) {
    if (jsonRequest) {
        if (device.value[0] == '\0') return false;
        std::string document;
        const bool isJson = FillInDocument(
            jsonRequest,
            [&](const char* oid, std::string& value) { return fetch(device, oid, value); },
            document);
        if (!isJson) return false;
        if (!document.empty()) StoreDocument(device, document);
    }
    sink.SendResult(device.address, device.ValueText());
    return true;
}

void VxSnmpMgr::DeliverDevices(const char* jsonRequest, const FetchForDevice& fetch) {
    int delivered = 0;
    for (uint32_t i = 0; i < deviceCount && stop.load(std::memory_order_relaxed) == 0; ++i) {
        if (DeliverDevice(devices[i], jsonRequest, fetch)) ++delivered;
    }
    // Kept: the grammar.
    DebugLogA("We have [%d] devices responsed the information.\n", delivered);
    DebugLogA("HandleEvents end\n");
}

// Kept: timeout and isLast do not matter, the limits are fixed.
void VxSnmpMgr::HandleEvents(UINT /*timeout*/, bool /*isLast*/, const char* bindAddress,
                             const char* jsonRequest) {
    DebugLogA("HandleEvents start\n");
    // Every datagram takes an entry, whatever it holds; what is no answer is delivered without a
    // value.
    CollectDevices([](const Datagram& datagram, ResponseRecord& entry) {
        ParseSnmpResponse(entry, datagram.data, static_cast<size_t>(datagram.length),
                          datagram.sender);
        return true;
    });
    DeliverDevices(jsonRequest, [&](ResponseRecord& device, const char* oid, std::string& value) {
        char szValue[kAnswerSize] = {};
        const int32_t length =
            GetInformation(oid, device.address, szValue, kAnswerSize, nullptr, kFollowUpWaitMs,
                           kFollowUpAttempts, readCommunity, writeCommunity, bindAddress);
        if (length <= 0) return false;
        DebugLogA("  szValue [%s]\n", szValue);
        value = szValue;
        return true;
    });
}

}  // namespace vndiscover
