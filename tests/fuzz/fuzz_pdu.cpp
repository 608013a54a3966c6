// The structured PDU on any input: what is read fits its records, and encoded it reads the same
// again.
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/integer_rule.h"
#include "snmp/codec/asn_decode.h"
#include "snmp/codec/pdu.h"

using namespace vndiscover;

namespace {

void CheckBinding(const VarBindRecord& binding) {
    if (binding.nameLength > sizeof binding.name) std::abort();
    if (binding.valueLength > sizeof binding.value) std::abort();
    std::string text;
    try {
        VarBindValueToText(binding, text);
    } catch (const AsnDecodeError&) {
    }
}

bool SameBinding(const VarBindRecord& a, const VarBindRecord& b) {
    return a.nameLength == b.nameLength && std::memcmp(a.name, b.name, a.nameLength) == 0 &&
           a.valueTag == b.valueTag && a.valueLength == b.valueLength &&
           std::memcmp(a.value, b.value, a.valueLength) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ByteBuffer in;
    in.Assign(data, static_cast<int32_t>(size));
    PduRecord pdu;
    try {
        if (DecodePdu(pdu, in, 0) > in.length) std::abort();
    } catch (const AsnDecodeError&) {
        return 0;
    }
    ByteBuffer encoded;
    EncodePdu(pdu, encoded);
    PduRecord again;
    DecodePdu(again, encoded, 0);
    if (again.bindings.count != pdu.bindings.count ||
        again.requestId != fuzz::ReadBack(pdu.requestId) ||
        again.errorStatus != fuzz::ReadBack(pdu.errorStatus) ||
        again.errorIndex != fuzz::ReadBack(pdu.errorIndex)) {
        std::abort();
    }
    for (int32_t i = 0; i < pdu.bindings.count; ++i) {
        CheckBinding(pdu.bindings.bindings[i]);
        if (!SameBinding(pdu.bindings.bindings[i], again.bindings.bindings[i])) std::abort();
    }
    return 0;
}
