// BER, the encoding of SNMP messages (ITU-T X.690).
#pragma once

#include <cstdint>
#include <exception>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

constexpr uint8_t kTagInteger = 0x02;
constexpr uint8_t kTagOctetString = 0x04;
constexpr uint8_t kTagNull = 0x05;
constexpr uint8_t kTagObjectIdentifier = 0x06;
constexpr uint8_t kTagSequence = 0x30;

constexpr uint8_t kPduGetRequest = 0xA0;
constexpr uint8_t kPduGetNextRequest = 0xA1;
constexpr uint8_t kPduGetResponse = 0xA2;
constexpr uint8_t kPduSetRequest = 0xA3;

// Encoders. Each appends to the end of `dest`; a compound value is built by encoding its members
// into a scratch buffer and appending tag, length and scratch bytes.

void AsnAppendHeader(ByteBuffer& dest, uint8_t tag, int32_t length);
void AsnAppendLength(ByteBuffer& dest, int32_t length);
void AsnAppendInteger(int32_t value, ByteBuffer& dest);
void AsnAppendOctetString(const uint8_t* bytes, int32_t count, ByteBuffer& dest);
void AsnAppendOctet(uint8_t byte, ByteBuffer& dest);

// Header and content of a compound value whose members are encoded in `content`.
void AsnAppendWrapped(ByteBuffer& dest, uint8_t tag, const ByteBuffer& content);

// Readers. Each takes the whole datagram and a cursor (a byte index into it). All failures throw
// AsnDecodeError, which is caught where a whole message is decoded.

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
