#include "snmp/codec/asn.h"

#include "support/big_endian.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

// Leaves out leading bytes equal to `filler`, but keeps at least one byte.
void AppendShortened(ByteBuffer& dest, uint32_t value, uint8_t filler) {
    uint8_t bytes[sizeof value];
    StoreBigEndian(value, bytes);
    int first = 0;
    while (first < 3 && bytes[first] == filler) ++first;
    dest.Append(bytes + first, 4 - first);
}

uint8_t ReadByte(const ByteBuffer& in, uint32_t& cursor) {
    if (cursor >= in.length) throw AsnDecodeError();
    return in.data[cursor++];
}

}  // namespace

void AsnAppendHeader(ByteBuffer& dest, uint8_t tag, int32_t length) {
    dest.Append(tag);
    AsnAppendLength(dest, length);
}

void AsnAppendLength(ByteBuffer& dest, int32_t length) {
    if (length < 0) {
        DebugLogW(L"ERROR: asnLength is 0\n");  // Kept: the wording does not match the condition.
        return;
    }
    ByteBuffer bytes;
    AppendShortened(bytes, static_cast<uint32_t>(length), 0x00);
    if (bytes.length > 1 || bytes.data[0] >= 0x80) {
        dest.Append(static_cast<uint8_t>(0x80 + bytes.length));
    }
    dest.Append(bytes);
}

void AsnAppendInteger(int32_t value, ByteBuffer& dest) {
    ByteBuffer content;
    if (value < 0) {
        AppendShortened(content, static_cast<uint32_t>(value), 0xFF);
        if (content.data[0] < 0x80) content.Prepend(0xFF);
    } else {
        AppendShortened(content, static_cast<uint32_t>(value), 0x00);
        if (content.data[0] >= 0x80) content.Prepend(0x00);
    }
    // Kept: a guard that the code above never lets apply.
    if (content.length > 1 && content.data[0] == 0xFF && content.data[1] >= 0x80) {
        content.Prepend(0x00);
    }
    AsnAppendWrapped(dest, kTagInteger, content);
}

void AsnAppendOctetString(const uint8_t* bytes, int32_t count, ByteBuffer& dest) {
    if (!bytes || count == 0) {
        AsnAppendHeader(dest, kTagOctetString, 0);
        return;
    }
    AsnAppendHeader(dest, kTagOctetString, count);
    dest.Append(bytes, count);
}

void AsnAppendOctet(uint8_t byte, ByteBuffer& dest) { AsnAppendOctetString(&byte, 1, dest); }

void AsnAppendWrapped(ByteBuffer& dest, uint8_t tag, const ByteBuffer& content) {
    AsnAppendHeader(dest, tag, static_cast<int32_t>(content.length));
    dest.Append(content);
}

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
