#include "snmp/codec/var_bind.h"

#include <cstring>

#include "snmp/codec/asn.h"

namespace vndiscover {

int32_t MakeVarBind(const OidValue& name, const ValueView& value, VarBindRecord& out) {
    if (name.length > kMaxNameContent) return -1;
    if (value.length < 0 || value.length > kMaxValueContent) return -1;
    out = VarBindRecord{};
    out.seqTag = kTagSequence;
    out.seqLength = static_cast<uint8_t>(name.length + value.length + 4);
    out.nameTag = name.tag;
    out.nameLength = name.length;
    std::memcpy(out.name, name.content, name.length);
    out.valueTag = value.tag;
    out.valueLength = static_cast<uint8_t>(value.length);
    if (value.length != 0) std::memcpy(out.value, value.content, static_cast<size_t>(value.length));
    return 0;
}

bool FitTheirRecords(const VarBindList& list) {
    for (int32_t i = 0; i < list.count; ++i) {  // a negative count is an empty list
        const VarBindRecord& binding = list.bindings[i];
        if (binding.nameLength > kMaxNameContent || binding.valueLength > kMaxValueContent)
            return false;
    }
    return true;
}

int32_t SetVarBindList(VarBindRecord* bindings, int32_t count, VarBindList& out) {
    out.bindings = bindings;
    out.count = count;
    return 0;
}

void CopyVarBindHeader(const VarBindRecord& source, VarBindRecord& dest) {
    constexpr size_t kHeaderAndName = offsetof(VarBindRecord, valueTag);
    static_assert(kHeaderAndName == 128, "sequence header and name");
    std::memcpy(&dest, &source, kHeaderAndName);
    dest.valueTag = source.valueTag;
    dest.valueLength = source.valueLength;
}

void VarBindValueToText(const VarBindRecord& binding, std::string& text) {
    const int32_t length =
        binding.valueLength <= kMaxValueContent ? binding.valueLength : kMaxValueContent;
    if (binding.valueTag == kTagOctetString) {
        const auto* characters = reinterpret_cast<const char*>(binding.value);
        text.assign(characters, strnlen(characters, static_cast<size_t>(length)));
    } else if (binding.valueTag == kTagInteger) {
        ByteBuffer encoded;
        AsnAppendHeader(encoded, kTagInteger, length);
        encoded.Append(binding.value, length);
        int32_t value = 0;
        AsnReadInteger(value, encoded, 0);
        text = std::to_string(value);
    }
}

}  // namespace vndiscover
