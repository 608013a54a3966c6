// The security parameters on the wire; their layout stands in message_record.h.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/codec/message_record.h"

namespace vndiscover {

// Appends them as an OCTET STRING. Authentication and privacy parameters that are still empty first
// become zeros of the size that their protocols send. A probe shows none of the fields, but
// the user's name is afterwards what the save area held of it: up to its first zero byte, 127 bytes
// at most.
void EncodeUsm(UsmParameters& usm, ByteBuffer& dest);

// Where the answer's authentication parameters stand in the datagram.
struct ReceivedMac {
    uint32_t start = 0;  // of their OCTET STRING
    uint32_t end = 0;    // behind it
};

// Reads the OCTET STRING at cursor into usm and returns the cursor behind it. Throws
// AsnDecodeError; what was read until then stays in usm.
uint32_t DecodeUsm(UsmParameters& usm, const ByteBuffer& in, uint32_t cursor, ReceivedMac& mac);

}  // namespace vndiscover
