// The devices that have answered on one adapter, and how the host gets them.
#pragma once

#include <cstdint>

#include "interface/delivery/json_request.h"
#include "interface/delivery/result_sink.h"
#include "net/datagram_collector.h"
#include "snmp/codec/response_record.h"
#include "support/lazy_table.h"

namespace vndiscover {

constexpr uint32_t kTableCapacity = 8192;

// In the order of the answers. It costs nothing until it is filled.
class DeviceTable {
  public:
    // Room for all entries. Throws std::bad_alloc.
    void Reserve() { entries_.Reserve(); }

    // Forgets the devices.
    void StartOver() { deviceCount = 0; }

    bool IsFull() const { return deviceCount == kTableCapacity; }

    // One device more: its entry, cleared. Not when full. Throws std::bad_alloc without Reserve.
    ResponseRecord& Add();

    ResponseRecord& operator[](uint32_t index) { return entries_[index]; }

    // " ==== We have [%d] devices on the network. ==== \n"
    void LogCount() const;

    uint32_t deviceCount = 0;

  private:
    LazyTable<ResponseRecord, kTableCapacity> entries_;
};

// Hands the devices of a table to the host:
//
//     while (ResponseRecord* device = delivery.Next()) delivery.Send(*device, fetch);
//
// What is passed in must outlive it.
class Delivery {
  public:
    // jsonRequest null: devices are delivered with their value, else with the request filled in.
    Delivery(DeviceTable& devices, ResultSink& sink, const StopRequest& stop,
             const char* jsonRequest)
        : devices_(devices), sink_(sink), stop_(stop), jsonRequest_(jsonRequest) {}

    // Null after the last device, or when the host has asked to stop; the log then says how many
    // were sent.
    ResponseRecord* Next();

    // In JSON mode a device without a value is left out, and so is every device when the request is
    // no JSON. `fetch` asks the device.
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
