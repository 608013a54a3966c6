// The BER readers at every place of any input: they stay within it, and what was read is encoded
// and read back with the same value.
#include <cstdlib>

#include "fuzz/integer_rule.h"
#include "snmp/codec/asn_decode.h"
#include "snmp/codec/asn_encode.h"

using namespace vndiscover;

namespace {

void ReadIntegerAt(const ByteBuffer& in, uint32_t at) {
    int32_t value = 0;
    if (AsnReadInteger(value, in, at) > in.length) std::abort();
    ByteBuffer encoded;
    AsnAppendInteger(value, encoded);
    int32_t again = 0;
    if (AsnReadInteger(again, encoded, 0) != encoded.length || again != fuzz::ReadBack(value))
        std::abort();
}

void ReadStringAt(const ByteBuffer& in, uint32_t at) {
    ByteBuffer text;
    const uint32_t behind = AsnReadOctetString(text, in, at);
    if (behind > in.length || behind - at < text.length) std::abort();
    ByteBuffer encoded;
    AsnAppendOctetString(text.data, static_cast<int32_t>(text.length), encoded);
    ByteBuffer again;
    if (AsnReadOctetString(again, encoded, 0) != encoded.length) std::abort();
    if (again.length != text.length) std::abort();
}

template <class Read>
void Try(Read read) {
    try {
        read();
    } catch (const AsnDecodeError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ByteBuffer in;
    in.Assign(data, static_cast<int32_t>(size));
    for (uint32_t at = 0; at <= in.length; ++at) {
        Try([&] { ReadIntegerAt(in, at); });
        Try([&] { ReadStringAt(in, at); });
    }
    return 0;
}
