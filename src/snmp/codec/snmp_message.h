// The fixed-layout SNMPv1 message, built and parsed at fixed places with one-byte lengths:
//
//      0      30 len                      message
//      2      02 01 00                    version
//      5      04 N community              (N bytes)
//      7+N    Ax len                      PDU
//      9+N    02 01 request-id  02 01 error-status  02 01 error-index
//     18+N    30 L                        bindings, each 30 len name value
//
// Kept: lengths of 128 and more are neither written nor read in their long form, but for 82 00 nn
// on reading; request identifiers are one byte and never compared.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snmp/codec/response_record.h"
#include "snmp/codec/var_bind.h"

namespace vndiscover {

constexpr size_t kMaxCommunity = 255;     // bytes: what the one length byte can say
constexpr size_t kMaxMessageSize = 1024;  // of the areas that callers pass to BuildSnmpMessage
constexpr uint8_t kRequestId = 1;         // in every community-based request

/**
 * Writes a request of 20 + N + L bytes.
 * @param out   Area of outSize bytes; left alone on failure.
 * @return The length; 0 for a null area, a type outside 0xA0 to 0xA3, a community of more than 255
 * bytes, a binding whose lengths exceed its fields or a message that does not fit.
 */
int32_t BuildSnmpMessage(uint8_t* out, size_t outSize, const char* community, uint8_t pduType,
                         uint8_t requestId, const VarBindList& bindings);

/**
 * Reads an answer into record: each binding overwrites the one before it. Bytes behind the
 * datagram's end read as zero, and each copy is cut to its field. The error status is not looked
 * at.
 * @param senderAddress  Text for the record's address; null reads as "".
 * @return The count of bindings read, 0 when the datagram is rejected.
 */
int32_t ParseSnmpResponse(ResponseRecord& record, const uint8_t* datagram, size_t length,
                          const char* senderAddress);

}  // namespace vndiscover
