#include "snmp/codec/asn_encode.h"

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

}  // namespace vndiscover
