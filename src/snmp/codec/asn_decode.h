// BER readers. Each takes the whole datagram and a cursor (a byte index into it). All failures
// throw AsnDecodeError, which is caught where a whole message is decoded.
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

// Reads a length and moves the cursor past it. The indefinite form reads as 0; only the last four
// length bytes count.
uint32_t AsnReadLength(const ByteBuffer& in, uint32_t& cursor);

// Returns the tag. The cursor is left at the first content byte, which may be past the end.
uint8_t AsnReadHeader(const ByteBuffer& in, uint32_t& cursor, uint32_t& length);

// AsnReadHeader that throws unless the content is within the datagram.
uint8_t AsnReadHeaderWithin(const ByteBuffer& in, uint32_t& cursor, uint32_t& length);

// AsnReadHeaderWithin that also throws unless the tag is the expected one. Returns the length.
uint32_t AsnEnter(const ByteBuffer& in, uint32_t& cursor, uint8_t expectedTag);

// Reads an INTEGER of at most five content bytes, whatever its tag. Returns the cursor past the
// content.
uint32_t AsnReadInteger(int32_t& value, const ByteBuffer& in, uint32_t cursor);

// A length of 0 clears dest. Returns the cursor past the content.
uint32_t AsnReadOctetString(ByteBuffer& dest, const ByteBuffer& in, uint32_t cursor);

}  // namespace vndiscover
