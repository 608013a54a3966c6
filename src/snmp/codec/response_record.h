// One decoded answer; also the entry of the device table, and what a host's response record is
// filled from.
#pragma once

#include <cstdint>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

constexpr uint32_t kAddressSize = 48;
constexpr uint32_t kValueSize = 4096;
constexpr uint32_t kNameSize = 128;
constexpr uint32_t kResponseRecordSize = 4312;  // as hosts know it

// All zero bytes are its empty state.
struct ResponseRecord {
    uint16_t valueTag;           // BER tag of the value
    uint16_t valueLength;        // 0 to 255
    char address[kAddressSize];  // responder, NUL-terminated
    uint8_t value[kValueSize];   // raw value with a zero byte behind it, or a printed JSON document
    uint8_t name[kNameSize];     // OID content octets
    uint16_t nameLength;         // bytes in name
    // Learned from a device's SNMPv3 report; empty for community-based answers.
    ByteBuffer engineId;
    int32_t engineBoots;
    int32_t engineTime;
    uint32_t msgMaxSize;

    const char* ValueText() const { return reinterpret_cast<const char*>(value); }
};
static_assert(sizeof(ResponseRecord) == kResponseRecordSize, "hosts know this size");

// Clears every field.
void InitResponseRecord(ResponseRecord& record);

// Frees engineId.
void FreeResponseRecord(ResponseRecord& record);

}  // namespace vndiscover
