#include "snmpv3/codec/usm_header.h"

#include <vector>

#include "snmp/codec/asn.h"
#include "snmpv3/crypto/privacy.h"
#include "support/copy_text.h"

namespace vndiscover {
namespace {

constexpr size_t kSavedNameSize = 128;  // with its terminator

void FillPlaceholder(ByteBuffer& field, uint32_t size) {
    const std::vector<uint8_t> zeros(size);
    if (field.Empty()) field.Assign(zeros.data(), static_cast<int32_t>(size));
}

void PreparePlaceholders(UsmParameters& usm) {
    if (usm.authProtocol == kAuthNone) {
        usm.authParameters.Clear();
    } else {
        FillPlaceholder(usm.authParameters, MacLength(usm.authProtocol));
    }
    if (usm.privProtocol == kPrivDes || usm.privProtocol == kPrivAes) {
        FillPlaceholder(usm.privParameters, kSaltSize);
    }
}

void AppendString(const ByteBuffer& bytes, ByteBuffer& dest) {
    AsnAppendOctetString(bytes.data, static_cast<int32_t>(bytes.length), dest);
}

void AppendFields(const UsmParameters& usm, ByteBuffer& dest) {
    ByteBuffer fields;
    AppendString(usm.engineId, fields);
    AsnAppendInteger(usm.engineBoots, fields);
    AsnAppendInteger(usm.engineTime, fields);
    AppendString(usm.userName, fields);
    AppendString(usm.authParameters, fields);
    AppendString(usm.privParameters, fields);
    ByteBuffer sequence;
    AsnAppendWrapped(sequence, kTagSequence, fields);
    AsnAppendWrapped(dest, kTagOctetString, sequence);
}

// Kept: an engine discovery truncates the stored name at its first zero byte.
void RestoreNameAsText(ByteBuffer& userName) {
    char saved[kSavedNameSize] = {};
    FillField(saved, sizeof saved - 1, userName.data, userName.length);
    userName.Assign(reinterpret_cast<const uint8_t*>(saved),
                    static_cast<int32_t>(strnlen(saved, sizeof saved)));
}

}  // namespace

void EncodeUsm(UsmParameters& usm, ByteBuffer& dest) {
    if (usm.engineId.Empty()) {
        AppendFields({}, dest);  // even if a report without an engine ID has filled other fields
        RestoreNameAsText(usm.userName);
        return;
    }
    PreparePlaceholders(usm);
    AppendFields(usm, dest);
}

uint32_t DecodeUsm(UsmParameters& usm, const ByteBuffer& in, uint32_t cursor, ReceivedMac& mac) {
    uint32_t length = AsnEnter(in, cursor, kTagOctetString);
    const uint32_t end = cursor + length;
    length = AsnEnter(in, cursor, kTagSequence);
    if (cursor > end || length > end - cursor) throw AsnDecodeError();
    const uint32_t fieldsEnd = cursor + length;
    cursor = AsnReadOctetString(usm.engineId, in, cursor);
    cursor = AsnReadInteger(usm.engineBoots, in, cursor);
    cursor = AsnReadInteger(usm.engineTime, in, cursor);
    cursor = AsnReadOctetString(usm.userName, in, cursor);
    mac.start = cursor;
    cursor = AsnReadOctetString(usm.authParameters, in, cursor);
    mac.end = cursor;
    cursor = AsnReadOctetString(usm.privParameters, in, cursor);
    if (cursor > fieldsEnd) throw AsnDecodeError();
    return end;
}

}  // namespace vndiscover
