// One decoded answer. Also an entry of the device table, and the source of a host's response
// record.
#pragma once

#include <cstdint>
#include <cstring>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

constexpr uint32_t kAddressSize = 48;
constexpr uint32_t kValueSize = 4096;
constexpr uint32_t kNameSize = 128;
constexpr uint32_t kResponseRecordSize = 4312;  // of the host's record too

// All zero bytes are an empty record.
struct ResponseRecord {
    uint16_t valueTag;           // BER tag of the value
    uint16_t valueLength;        // 0 to 255
    char address[kAddressSize];  // responder, NUL-terminated
    uint8_t value[kValueSize];   // raw value and a zero byte, or a printed JSON document
    uint8_t name[kNameSize];     // OID content octets
    uint16_t nameLength;         // bytes in name
    // From a device's SNMPv3 report; empty for community-based answers.
    ByteBuffer engineId;
    int32_t engineBoots;
    int32_t engineTime;
    uint32_t msgMaxSize;

    const char* ValueText() const { return reinterpret_cast<const char*>(value); }
};
static_assert(sizeof(ResponseRecord) == kResponseRecordSize, "the size of the host's record");

// Frees engineId.
inline void FreeResponseRecord(ResponseRecord& record) { record.engineId.Clear(); }

// Clears every field.
inline void InitResponseRecord(ResponseRecord& record) {
    FreeResponseRecord(record);
    record.valueTag = record.valueLength = record.nameLength = 0;
    std::memset(record.address, 0, sizeof record.address);
    std::memset(record.value, 0, sizeof record.value);
    std::memset(record.name, 0, sizeof record.name);
    record.engineBoots = record.engineTime = 0;
    record.msgMaxSize = 0;
}

}  // namespace vndiscover
