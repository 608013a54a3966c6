// The PDU with full BER lengths, as SNMPv3 messages carry it:
//
//     Ax len | INTEGER request-id | INTEGER error-status | INTEGER error-index | 30 len bindings
#pragma once

#include <cstdint>
#include <vector>

#include "snmp/codec/asn.h"
#include "snmp/codec/byte_buffer.h"
#include "snmp/codec/var_bind.h"
#include "support/secure_wipe.h"

namespace vndiscover {

// Wiped, because what was decoded may have been encrypted on the wire.
using DecodedBindings = std::vector<VarBindRecord, WipingAllocator<VarBindRecord>>;

struct PduRecord {
    VarBindList bindings;  // to encode: the caller's array; decoded: `decoded`
    int32_t errorStatus = 0;
    int32_t errorIndex = 0;
    int32_t requestId = 0;
    uint8_t pduType = kPduGetRequest;
    DecodedBindings decoded;  // owns the bindings that DecodePdu found

    PduRecord() = default;
    PduRecord(const PduRecord&) = delete;  // bindings points into decoded
    PduRecord& operator=(const PduRecord&) = delete;
};

// Appends the PDU. A request identifier of 0 becomes 257, in the record too. If a binding's length
// exceeds its field, nothing is appended and the result is false.
bool EncodePdu(PduRecord& pdu, ByteBuffer& dest);

// Reads the PDU at cursor and returns the cursor past it. Throws AsnDecodeError, even if a binding
// is well-formed but its name or value does not fit a VarBindRecord. A list that does not decode
// leaves no bindings.
uint32_t DecodePdu(PduRecord& pdu, const ByteBuffer& in, uint32_t cursor);

}  // namespace vndiscover
