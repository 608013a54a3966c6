// The SNMPv1 message, built and parsed with a fixed layout and one-byte lengths:
//
//      0      30 len                      message
//      2      02 01 00                    version
//      5      04 N community              (N bytes)
//      7+N    Ax len                      PDU
//      9+N    02 01 request-id  02 01 error-status  02 01 error-index
//     18+N    30 L                        bindings, each 30 len name value
//
// Kept: the long form of lengths is not written, and of its forms only 82 00 nn is read; request
// identifiers are one byte and never compared.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snmp/codec/response_record.h"
#include "snmp/codec/var_bind.h"

namespace vndiscover {

constexpr size_t kMaxCommunity = 255;     // bytes: the limit of a one-byte length
constexpr size_t kMaxMessageSize = 1024;  // of the buffers that callers pass to BuildSnmpMessage
constexpr uint8_t kRequestId = 1;         // in every community-based request

/**
 * Writes a request of 20 + N + L bytes.
 * @param out   Buffer of outSize bytes; not written on failure.
 * @return The length; 0 for a null buffer, a type outside 0xA0 to 0xA3, a community of more than
 * 255 bytes, a binding whose lengths exceed its fields, or a message that does not fit.
 */
int32_t BuildSnmpMessage(uint8_t* out, size_t outSize, const char* community, uint8_t pduType,
                         uint8_t requestId, const VarBindList& bindings);

// A request for one variable. Returns the length, or 0 if it cannot be encoded.
int32_t BuildRequest(uint8_t (&out)[kMaxMessageSize], const OidValue& oid, const ValueView& value,
                     uint8_t pduType, const char* community);

/**
 * Reads an answer into record; each binding overwrites the previous one. Bytes past the end of the
 * datagram read as zero, and each copy is cut to its field. The error status is ignored.
 * @param senderAddress  The record's address; null reads as "".
 * @return The number of bindings read; 0 if the datagram is rejected.
 */
int32_t ParseSnmpResponse(ResponseRecord& record, const uint8_t* datagram, size_t length,
                          const char* senderAddress);

}  // namespace vndiscover
