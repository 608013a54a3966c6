// The devices that have answered on one adapter.
#pragma once

#include <cstdint>

#include "snmp/codec/response_record.h"
#include "support/debug_log.h"
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
    ResponseRecord& Add() {
        ResponseRecord& entry = entries_.ToFill(deviceCount);
        InitResponseRecord(entry);
        ++deviceCount;
        return entry;
    }

    ResponseRecord& operator[](uint32_t index) { return entries_[index]; }

    void LogCount() const {
        DebugLogA(" ==== We have [%d] devices on the network. ==== \n",
                  static_cast<int>(deviceCount));
    }

    uint32_t deviceCount = 0;

  private:
    LazyTable<ResponseRecord, kTableCapacity> entries_;
};

}  // namespace vndiscover
