#include "snmp/delivery.h"

#include <cstring>

#include "support/debug_log.h"

namespace vndiscover {
namespace {

// A document that does not fit the field is cut between two characters: the host still learns of
// the device, and the document, which no longer parses, shows that too much was requested.
void StoreDocument(ResponseRecord& device, const std::string& document) {
    const size_t length = Utf8PrefixLength(document, sizeof device.value - 1);
    if (length == 0) return;  // it could not be printed
    std::memcpy(device.value, document.data(), length);
    device.value[length] = '\0';
}

}  // namespace

const ResponseRecord* Delivery::Next() {
    while (next_ < devices_.deviceCount && stop_.load(std::memory_order_relaxed) == 0) {
        device_ = &devices_[next_++];
        if (!jsonRequest_) return device_;
        if (device_->value[0] == '\0') continue;
        form_.emplace(jsonRequest_);
        if (form_->IsJson()) return device_;
    }
    return nullptr;
}

void Delivery::Send() {
    if (form_) StoreDocument(*device_, form_->Print());
    sink_.SendResult(device_->address, device_->ValueText());
    ++sent_;
}

void Delivery::LogEnd() const {
    // Kept: the grammar.
    DebugLogA("We have [%d] devices responsed the information.\n", sent_);
    DebugLogA("HandleEvents end\n");
}

}  // namespace vndiscover
