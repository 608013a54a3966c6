// The decoders of the community-based path and of the JSON request. The first byte chooses one.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "helpers/snmp_datagrams.h"
#include "interface/delivery/json_doc.h"
#include "interface/delivery/json_request.h"
#include "snmp/asn_decode.h"
#include "snmp/asn_encode.h"
#include "snmp/pdu.h"
#include "snmp/snmp_message.h"
#include "support/text_convert.h"

using namespace vndiscover;

namespace {

void Expect(bool condition) {
    if (!condition) std::abort();
}

template <class Read>
bool Reads(Read&& read) {
    try {
        read();
        return true;
    } catch (const AsnDecodeError&) {
        return false;
    }
}

// What BER and the module's own limits make of bytes, without the readers under test.
struct Value {
    uint8_t tag;
    size_t start, end;
};

std::optional<Value> ValueAt(const Bytes& in, size_t at) {
    if (in.size() < at + 2) return {};
    const uint8_t tag = in[at++];
    uint32_t length = in[at++];
    if (length >= 0x80) {
        const size_t count = length & 0x7F;
        if (in.size() - at < count) return {};
        length = 0;
        for (size_t i = 0; i < count; ++i) length = length * 256 + in[at++];
    }
    if (in.size() - at < length) return {};
    return Value{tag, at, at + length};
}

// Without content the sign is that of the byte after it; 80 FF 8x is read without its 80.
int32_t NumberOf(const Bytes& in, Value value) {
    const auto byte = [&](size_t i) { return i < in.size() ? in[i] : 0; };
    size_t& at = value.start;
    int64_t number = byte(at) >= 0x80 ? -1 : 0;
    if (at + 3 <= value.end && in[at] == 0x80 && in[at + 1] == 0xFF && in[at + 2] >= 0x80) ++at;
    for (; at < value.end; ++at) number = number * 256 + in[at];
    return static_cast<int32_t>(number);
}

// The shortest form of two's complement.
Bytes Encoded(int32_t value) {
    int count = 1;
    while (count < 4 && value >> (8 * count - 1) != 0 && value >> (8 * count - 1) != -1) ++count;
    Bytes content;
    while (count-- > 0) content.push_back(static_cast<uint8_t>(value >> (8 * count)));
    return Tlv(0x02, content);
}

int32_t ReadBack(int32_t value) { return NumberOf(Encoded(value), *ValueAt(Encoded(value), 0)); }

void ReadBer(const Bytes& bytes) {
    const ByteBuffer in = ToBuffer(bytes);
    // Not at every place of a large one: an error costs microseconds.
    for (uint32_t at = 0; at <= std::min(in.length, 40u); ++at) {
        const std::optional<Value> value = ValueAt(bytes, at);
        int32_t number = 0;
        uint32_t end = 0;
        const bool isNumber = Reads([&] { end = AsnReadInteger(number, in, at); });
        Expect(isNumber == (value && value->end - value->start <= 5));
        if (isNumber) {
            Expect(number == NumberOf(bytes, *value) && end == value->end);
            ByteBuffer encoded;
            AsnAppendInteger(number, encoded);
            Expect(ToBytes(encoded) == Encoded(number));
        }
        ByteBuffer text;
        const bool isText = Reads([&] { end = AsnReadOctetString(text, in, at); });
        Expect(isText == (value && value->tag == 0x04));
        if (isText) Expect(text.length == value->end - value->start && end == value->end);
    }
}

void ReadPdu(const Bytes& bytes) {
    const ByteBuffer in = ToBuffer(bytes);
    PduRecord pdu, again;
    uint32_t end = 0;
    if (!Reads([&] { end = DecodePdu(pdu, in, 0); })) return;
    size_t listEnd = ValueAt(bytes, 0).value().start;
    for (int i = 0; i < 4; ++i) listEnd = ValueAt(bytes, listEnd).value().end;
    Expect(listEnd <= end && end <= in.length);
    Bytes list;
    for (int32_t i = 0; i < pdu.bindings.count; ++i) {
        const VarBindRecord& binding = pdu.bindings.bindings[i];
        Expect(binding.nameLength <= kMaxNameContent && binding.valueLength <= kMaxValueContent);
        std::string text;
        Reads([&] { VarBindValueToText(binding, text); });
        const Bytes name(binding.name, binding.name + binding.nameLength);
        const Bytes value(binding.value, binding.value + binding.valueLength);
        list = list + Tlv(0x30, Tlv(binding.nameTag, name) + Tlv(binding.valueTag, value));
    }
    // Encoded it is what its fields are, and that reads as before.
    ByteBuffer encoded;
    EncodePdu(pdu, encoded);
    const Bytes numbers =
        Encoded(pdu.requestId) + Encoded(pdu.errorStatus) + Encoded(pdu.errorIndex);
    Expect(ToBytes(encoded) == Tlv(pdu.pduType, numbers + Tlv(0x30, list)));
    Expect(DecodePdu(again, encoded, 0) == encoded.length);
    Expect(again.requestId == ReadBack(pdu.requestId) &&
           again.errorStatus == ReadBack(pdu.errorStatus) &&
           again.errorIndex == ReadBack(pdu.errorIndex) &&
           again.bindings.count == pdu.bindings.count);
}

struct Parsed {
    explicit Parsed(const Bytes& datagram) {
        ExactBlock block(datagram);
        count = ParseSnmpResponse(record, block.Data(), datagram.size(), "fe80::1");
    }
    ResponseRecord record = {};
    int32_t count;
};

// A datagram reads like the same one at the start of a zeroed receive buffer.
void ReadResponse(const Bytes& datagram) {
    const auto parsed = std::make_unique<Parsed>(datagram);
    const ResponseRecord& record = parsed->record;
    Expect(record.nameLength <= kNameSize && record.valueLength <= 255);
    Expect(record.value[record.valueLength] == 0 && !std::strcmp(record.address, "fe80::1"));
    const auto padded = std::make_unique<Parsed>(datagram + Bytes(2048, 0));
    const ResponseRecord& same = padded->record;
    Expect(parsed->count == padded->count && record.valueTag == same.valueTag &&
           record.valueLength == same.valueLength && record.nameLength == same.nameLength &&
           std::memcmp(record.value, same.value, sizeof record.value) == 0 &&
           std::memcmp(record.name, same.name, sizeof record.name) == 0);
}

void ReadOid(const Bytes& bytes) {
    OidValue oid;
    const int32_t length = ParseOidText(oid, std::string(bytes.begin(), bytes.end()).c_str());
    Expect(length >= 0 && oid.length == (length <= kMaxOidContent ? length : 0));
    VarBindRecord binding;
    const bool fits = MakeVarBind(oid, ValueView{5, 0, nullptr}, binding) == 0;
    Expect(fits == (oid.length <= kMaxNameContent));
}

// The first byte is the length of what devices answer, taken from the request.
void ReadJson(const Bytes& bytes) {
    if (bytes.empty()) return;
    const std::string request(bytes.begin() + 1, bytes.end());
    ReadDiscoveryOid(request.c_str());
    std::string document;
    int asked = 0;
    const auto fetch = [&](const char* oid, std::string& value) {
        Expect(std::strlen(oid) < kOidTextSize);
        value = request.substr(0, bytes[0]).c_str();
        return ++asked % 2 != 0;
    };
    const bool isJson = FillInDocument(request.c_str(), fetch, document);
    Expect(isJson || (asked == 0 && document.empty()));
    if (document.empty()) return;
    JsonDoc again;  // what is delivered is JSON again, as long as it is delivered whole
    again.Parse(Utf8ToWide(document.c_str()).c_str());
    Expect(again.Root() && Utf8PrefixLength(document, 4095) <= 4095);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static void (*const kDecoders[])(const Bytes&) = {ReadBer, ReadPdu, ReadResponse, ReadOid,
                                                      ReadJson};
    kDecoders[data[0] % std::size(kDecoders)](Bytes(data + 1, data + size));
    return 0;
}
