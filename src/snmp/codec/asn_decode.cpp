#include "snmp/codec/asn_decode.h"

namespace vndiscover {
namespace {

uint8_t ReadByte(const ByteBuffer& in, uint32_t& cursor) {
    if (cursor >= in.length) throw AsnDecodeError();
    return in.data[cursor++];
}

}  // namespace

uint32_t AsnReadLength(const ByteBuffer& in, uint32_t& cursor) {
    const uint8_t first = ReadByte(in, cursor);
    if (first < 0x80) return first;
    uint32_t length = 0;
    for (int count = first & 0x7F; count > 0; --count) {
        length = (length << 8) | ReadByte(in, cursor);
    }
    return length;
}

uint8_t AsnReadHeader(const ByteBuffer& in, uint32_t& cursor, uint32_t& length) {
    const uint8_t tag = ReadByte(in, cursor);
    length = AsnReadLength(in, cursor);
    return tag;
}

uint8_t AsnReadHeaderWithin(const ByteBuffer& in, uint32_t& cursor, uint32_t& length) {
    const uint8_t tag = AsnReadHeader(in, cursor, length);
    // Compared with what is left: cursor + length could wrap around.
    if (length > in.length - cursor) throw AsnDecodeError();
    return tag;
}

uint32_t AsnEnter(const ByteBuffer& in, uint32_t& cursor, uint8_t expectedTag) {
    uint32_t length = 0;
    if (AsnReadHeaderWithin(in, cursor, length) != expectedTag) throw AsnDecodeError();
    return length;
}

uint32_t AsnReadInteger(int32_t& value, const ByteBuffer& in, uint32_t cursor) {
    uint32_t length = 0;
    AsnReadHeaderWithin(in, cursor, length);
    if (length > 5) throw AsnDecodeError();
    const uint8_t* content = in.data + cursor;
    const uint32_t end = cursor + length;
    // Kept: an INTEGER without content takes its sign from the byte after it, if there is one.
    const bool negative = cursor < in.length && content[0] >= 0x80;
    uint32_t result = negative ? 0xFFFFFFFFu : 0;
    // Kept: 80 FF 8x... reads as the negative number FF 8x...
    if (length >= 3 && content[0] == 0x80 && content[1] == 0xFF && content[2] >= 0x80) {
        ++content;
        --length;
    }
    for (uint32_t i = 0; i < length; ++i) result = (result << 8) | content[i];
    value = static_cast<int32_t>(result);
    return end;
}

uint32_t AsnReadOctetString(ByteBuffer& dest, const ByteBuffer& in, uint32_t cursor) {
    const uint32_t length = AsnEnter(in, cursor, kTagOctetString);
    dest.Assign(in.data + cursor, static_cast<int32_t>(length));
    return cursor + length;
}

}  // namespace vndiscover
