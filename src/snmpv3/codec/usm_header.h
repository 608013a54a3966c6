// The security parameters on the wire; message_record.h shows their layout.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/codec/message_record.h"

namespace vndiscover {

// Appends them as an OCTET STRING. Authentication and privacy parameters that are still empty are
// first filled with zeros, in the size that their protocols send. An engine discovery carries empty
// fields, and truncates the stored user name at its first zero byte, or at 127 bytes.
void EncodeUsm(UsmParameters& usm, ByteBuffer& dest);

// The position of the answer's authentication parameters in the datagram.
struct ReceivedMac {
    uint32_t start = 0;  // of their OCTET STRING
    uint32_t end = 0;    // past it
};

// Reads the OCTET STRING at cursor into usm and returns the cursor past it. Throws AsnDecodeError;
// fields read until then stay in usm.
uint32_t DecodeUsm(UsmParameters& usm, const ByteBuffer& in, uint32_t cursor, ReceivedMac& mac);

}  // namespace vndiscover
