#include "snmp/device_table.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {
namespace {

// A document that does not fit the field is cut between two characters: the host still learns of
// the device, and the document, which no longer parses, shows that too much was requested.
void StoreDocument(ResponseRecord& device, const std::string& document) {
    const size_t length = Utf8PrefixLength(document, sizeof device.value - 1);
    std::memcpy(device.value, document.data(), length);
    device.value[length] = '\0';
}

}  // namespace

ResponseRecord& DeviceTable::Add() {
    ResponseRecord& entry = entries_.ToFill(deviceCount);
    InitResponseRecord(entry);
    ++deviceCount;
    return entry;
}

void DeviceTable::LogCount() const {
    DebugLogA(" ==== We have [%d] devices on the network. ==== \n", static_cast<int>(deviceCount));
}

ResponseRecord* Delivery::Next() {
    if (next_ < devices_.deviceCount && stop_.load(std::memory_order_relaxed) == 0) {
        return &devices_[next_++];
    }
    // Kept: the grammar.
    DebugLogA("We have [%d] devices responsed the information.\n", sent_);
    DebugLogA("HandleEvents end\n");
    return nullptr;
}

void Delivery::Send(ResponseRecord& device, const FetchValue& fetch) {
    if (jsonRequest_ && !FillIn(device, fetch)) return;
    sink_.SendResult(device.address, device.ValueText());
    ++sent_;
}

bool Delivery::FillIn(ResponseRecord& device, const FetchValue& fetch) const {
    if (device.value[0] == '\0') return false;
    std::string document;
    if (!FillInDocument(jsonRequest_, fetch, document)) return false;
    if (!document.empty()) StoreDocument(device, document);
    return true;
}

}  // namespace vndiscover
