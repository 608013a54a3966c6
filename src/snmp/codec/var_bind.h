// One variable binding in BER form, in a record of fixed size:
//
//     30 len | 06 len name (up to 124 bytes) | tag len value (up to 126 bytes)
//
// Each length is a single byte.
#pragma once

#include <cstdint>
#include <string>

#include "snmp/codec/asn.h"
#include "snmp/codec/oid_text.h"

namespace vndiscover {

constexpr int32_t kMaxValueContent = 126;

struct VarBindRecord {
    uint8_t seqTag;
    uint8_t seqLength;  // nameLength + valueLength + 4
    uint8_t nameTag;
    uint8_t nameLength;
    uint8_t name[kMaxNameContent];
    uint8_t valueTag;
    uint8_t valueLength;
    uint8_t value[kMaxValueContent];
};
static_assert(sizeof(VarBindRecord) == 256, "the record is sent and copied by its layout");

// Does not own the bindings.
struct VarBindList {
    int32_t count = 0;
    VarBindRecord* bindings = nullptr;
};

// Whether the lengths in every record stay within its fields, as they must before it is sent.
bool FitTheirRecords(const VarBindList& list);

// A value as tag, length and content; does not own the content.
struct ValueView {
    uint8_t tag;
    int32_t length;  // bytes in content
    const uint8_t* content;
};
constexpr ValueView kNullValue = {kTagNull, 0, nullptr};

// Returns 0, or -1 if the name or the value does not fit the record, which is then left alone.
int32_t MakeVarBind(const OidValue& name, const ValueView& value, VarBindRecord& out);

int32_t SetVarBindList(VarBindRecord* bindings, int32_t count, VarBindList& out);

// Copies a binding except its value's content, to build a request from the bindings of an earlier
// one. Nothing in the module calls it.
void CopyVarBindHeader(const VarBindRecord& source, VarBindRecord& dest);

// An OCTET STRING up to its first NUL byte, an INTEGER in decimal; any other value leaves text
// alone. Throws AsnDecodeError for an INTEGER of more than five bytes.
void VarBindValueToText(const VarBindRecord& binding, std::string& text);

}  // namespace vndiscover
