// BER encoders. Each appends to the end of `dest`; a compound value is built by encoding its
// members into a scratch buffer and appending tag, length and scratch bytes.
#pragma once

#include <cstdint>

#include "snmp/codec/ber_tags.h"
#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

void AsnAppendHeader(ByteBuffer& dest, uint8_t tag, int32_t length);
void AsnAppendLength(ByteBuffer& dest, int32_t length);
void AsnAppendInteger(int32_t value, ByteBuffer& dest);
void AsnAppendOctetString(const uint8_t* bytes, int32_t count, ByteBuffer& dest);
void AsnAppendOctet(uint8_t byte, ByteBuffer& dest);

// Header and content of a compound value whose members are encoded in `content`.
void AsnAppendWrapped(ByteBuffer& dest, uint8_t tag, const ByteBuffer& content);

}  // namespace vndiscover
