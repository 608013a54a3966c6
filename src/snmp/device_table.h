// The devices that have answered on one adapter, and their delivery to the host.
#pragma once

#include <cstdint>

#include "interface/delivery/json_request.h"
#include "interface/delivery/result_sink.h"
#include "net/datagram_collector.h"
#include "snmp/codec/response_record.h"
#include "support/lazy_table.h"

namespace vndiscover {

constexpr uint32_t kTableCapacity = 8192;

// In the order of the answers. Takes up memory only as it is filled.
class DeviceTable {
  public:
    // Reserves memory for all entries. Throws std::bad_alloc.
    void Reserve() { entries_.Reserve(); }

    // Forgets the devices.
    void StartOver() { deviceCount = 0; }

    bool IsFull() const { return deviceCount == kTableCapacity; }

    // Adds a device and returns its entry, cleared. The table must not be full. Throws
    // std::bad_alloc unless Reserve was called.
    ResponseRecord& Add();

    ResponseRecord& operator[](uint32_t index) { return entries_[index]; }

    // " ==== We have [%d] devices on the network. ==== \n"
    void LogCount() const;

    uint32_t deviceCount = 0;

  private:
    LazyTable<ResponseRecord, kTableCapacity> entries_;
};

// Delivers the devices of a table to the host:
//
//     while (ResponseRecord* device = delivery.Next()) delivery.Send(*device, fetch);
//
// What is passed in must outlive it.
class Delivery {
  public:
    // If jsonRequest is null, devices are delivered with their value, otherwise with the request
    // filled in.
    Delivery(DeviceTable& devices, ResultSink& sink, const StopRequest& stop,
             const char* jsonRequest)
        : devices_(devices), sink_(sink), stop_(stop), jsonRequest_(jsonRequest) {}

    // Null after the last device, or once the host has asked to stop; the number of devices sent is
    // then logged.
    ResponseRecord* Next();

    // In JSON mode a device without a value is left out, and so is every device if the request is
    // not JSON. `fetch` queries the device.
    void Send(ResponseRecord& device, const FetchValue& fetch);

  private:
    bool FillIn(ResponseRecord& device, const FetchValue& fetch) const;

    DeviceTable& devices_;
    ResultSink& sink_;
    const StopRequest& stop_;
    const char* const jsonRequest_;
    uint32_t next_ = 0;
    int sent_ = 0;
};

}  // namespace vndiscover
