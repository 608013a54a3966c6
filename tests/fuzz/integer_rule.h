// What an INTEGER that was encoded reads as.
#pragma once

#include <cstdint>

#include "snmp/codec/asn_encode.h"

namespace vndiscover::fuzz {

// The value itself, but for those whose content starts 80 FF 8x: the leading 80 is skipped on
// reading.
inline int32_t ReadBack(int32_t value) {
    ByteBuffer encoded;
    AsnAppendInteger(value, encoded);
    const uint8_t* content = encoded.data + 2;
    const uint32_t length = encoded.length - 2;
    if (length < 3 || content[0] != 0x80 || content[1] != 0xFF || content[2] < 0x80) return value;
    return static_cast<int32_t>(static_cast<uint32_t>(value) | 0xFFu << (8 * (length - 1)));
}

}  // namespace vndiscover::fuzz
