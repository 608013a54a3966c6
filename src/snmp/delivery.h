// The delivery of an adapter's devices to the host.
#pragma once

#include <cstdint>
#include <optional>

#include "interface/delivery/json_request.h"
#include "interface/delivery/result_sink.h"
#include "net/datagram_collector.h"
#include "snmp/device_table.h"

namespace vndiscover {

// Goes through the devices of a table. In JSON mode each is first asked for further values:
//
//     while (const ResponseRecord* device = delivery.Next()) {
//         while (const char* oid = delivery.NextOid()) delivery.Put(answer);
//         delivery.Send();
//     }
//     delivery.LogEnd();
//
// What is passed in must outlive it.
class Delivery {
  public:
    // If jsonRequest is null, devices are delivered with their value, otherwise with the request
    // filled in.
    Delivery(DeviceTable& devices, ResultSink& sink, const StopRequest& stop,
             const char* jsonRequest)
        : devices_(devices), sink_(sink), stop_(stop), jsonRequest_(jsonRequest) {}

    // Null after the last device, or once the host has asked to stop. In JSON mode a device without
    // a value is left out, and so is every device if the request is not JSON.
    const ResponseRecord* Next();

    const char* NextOid() { return form_ ? form_->NextOid() : nullptr; }
    void Put(const char* answer) { form_->Put(answer); }
    void Send();
    void LogEnd() const;

  private:
    DeviceTable& devices_;
    ResultSink& sink_;
    const StopRequest& stop_;
    const char* const jsonRequest_;
    std::optional<JsonForm> form_;  // of the device; empty without JSON
    ResponseRecord* device_ = nullptr;
    uint32_t next_ = 0;
    int sent_ = 0;
};

}  // namespace vndiscover
