// BER readers. Each takes the whole datagram and a cursor (a byte index into it). Every failure is
// the one decode error; it is caught where a whole message is decoded.
#pragma once

#include <cstdint>
#include <exception>

#include "snmp/codec/asn_encode.h"
#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

class AsnDecodeError : public std::exception {
  public:
    const char* what() const noexcept override { return "malformed BER"; }
};

// Reads a length and moves the cursor behind it. The indefinite form reads as 0; of more than four
// length bytes the last four count.
uint32_t AsnReadLength(const ByteBuffer& in, uint32_t& cursor);

// Returns the tag; the cursor then stands on the first content byte, which need not exist.
uint8_t AsnReadHeader(const ByteBuffer& in, uint32_t& cursor, uint32_t& length);

// AsnReadHeader, and the content lies within the datagram.
uint8_t AsnReadHeaderWithin(const ByteBuffer& in, uint32_t& cursor, uint32_t& length);

// The same, and the tag is the expected one. Returns the length.
uint32_t AsnEnter(const ByteBuffer& in, uint32_t& cursor, uint8_t expectedTag);

// Reads any tag as an INTEGER of at most five content bytes. Returns the cursor behind the content.
uint32_t AsnReadInteger(int32_t& value, const ByteBuffer& in, uint32_t cursor);

// A length of 0 clears dest. Returns the cursor behind the content.
uint32_t AsnReadOctetString(ByteBuffer& dest, const ByteBuffer& in, uint32_t cursor);

}  // namespace vndiscover
