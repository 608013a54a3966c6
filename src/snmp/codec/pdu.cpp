#include "snmp/codec/pdu.h"

#include <cstring>

#include "snmp/codec/asn.h"

namespace vndiscover {
namespace {

constexpr int32_t kDefaultRequestId = 257;

void AppendTlv(ByteBuffer& dest, uint8_t tag, uint8_t length, const uint8_t* content) {
    AsnAppendHeader(dest, tag, length);
    dest.Append(content, length);
}

void AppendBinding(const VarBindRecord& binding, ByteBuffer& dest) {
    ByteBuffer content;
    AppendTlv(content, binding.nameTag, binding.nameLength, binding.name);
    AppendTlv(content, binding.valueTag, binding.valueLength, binding.value);
    AsnAppendWrapped(dest, kTagSequence, content);
}

// Copies content into a field; throws if it does not fit.
void ReadContent(const ByteBuffer& in, uint32_t& cursor, uint32_t length, uint8_t* field,
                 uint32_t room) {
    if (length > room) throw AsnDecodeError();
    if (length != 0) std::memcpy(field, in.data + cursor, length);
    cursor += length;
}

VarBindRecord ReadBinding(const ByteBuffer& in, uint32_t& cursor) {
    VarBindRecord binding = {};
    uint32_t length = 0;
    binding.seqTag = AsnReadHeaderWithin(in, cursor, length);
    binding.seqLength = static_cast<uint8_t>(length);

    const uint8_t nameTag = AsnReadHeaderWithin(in, cursor, length);
    if (nameTag == kTagObjectIdentifier) {
        ReadContent(in, cursor, length, binding.name, kMaxNameContent);
        binding.nameTag = nameTag;
        binding.nameLength = static_cast<uint8_t>(length);
    } else {
        cursor += length;
    }

    binding.valueTag = AsnReadHeaderWithin(in, cursor, length);
    ReadContent(in, cursor, length, binding.value, kMaxValueContent);
    binding.valueLength = static_cast<uint8_t>(length);
    return binding;
}

}  // namespace

bool EncodePdu(PduRecord& pdu, ByteBuffer& dest) {
    if (!FitTheirRecords(pdu.bindings)) return false;
    if (pdu.requestId == 0) pdu.requestId = kDefaultRequestId;
    ByteBuffer content;
    AsnAppendInteger(pdu.requestId, content);
    AsnAppendInteger(pdu.errorStatus, content);
    AsnAppendInteger(pdu.errorIndex, content);
    ByteBuffer list;
    for (int32_t i = 0; i < pdu.bindings.count; ++i) AppendBinding(pdu.bindings.bindings[i], list);
    AsnAppendWrapped(content, kTagSequence, list);
    AsnAppendWrapped(dest, pdu.pduType, content);
    return true;
}

uint32_t DecodePdu(PduRecord& pdu, const ByteBuffer& in, uint32_t cursor) {
    uint32_t length = 0;
    pdu.pduType = AsnReadHeaderWithin(in, cursor, length);
    cursor = AsnReadInteger(pdu.requestId, in, cursor);
    cursor = AsnReadInteger(pdu.errorStatus, in, cursor);
    cursor = AsnReadInteger(pdu.errorIndex, in, cursor);

    SetVarBindList(nullptr, 0, pdu.bindings);
    AsnReadHeaderWithin(in, cursor, length);
    const uint32_t end = cursor + length;
    DecodedBindings found;
    while (cursor < end) found.push_back(ReadBinding(in, cursor));
    pdu.decoded = std::move(found);
    SetVarBindList(pdu.decoded.data(), static_cast<int32_t>(pdu.decoded.size()), pdu.bindings);
    return cursor;
}

}  // namespace vndiscover
