// The decoders of SNMP messages and of the JSON request. The first byte chooses one.
#include <cstdlib>
#include <cstring>
#include <memory>

#include "helpers/snmp_datagrams.h"
#include "interface/delivery/json_doc.h"
#include "interface/delivery/json_request.h"
#include "snmp/codec/asn.h"
#include "snmp/codec/pdu.h"
#include "snmp/codec/snmp_message.h"
#include "snmpv3/codec/message.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/privacy.h"
#include "snmpv3/crypto/protocol_codes.h"
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

// Encoding what was decoded, and decoding that, must give the same.
void ReadPdu(const Bytes& bytes) {
    PduRecord pdu, again;
    if (!Reads([&] { Expect(DecodePdu(pdu, ToBuffer(bytes), 0) <= bytes.size()); })) return;
    for (int32_t i = 0; i < pdu.bindings.count; ++i) {
        const VarBindRecord& binding = pdu.bindings.bindings[i];
        Expect(binding.nameLength <= kMaxNameContent && binding.valueLength <= kMaxValueContent);
        std::string text;
        Reads([&] { VarBindValueToText(binding, text); });
    }
    ByteBuffer encoded;
    EncodePdu(pdu, encoded);
    Expect(DecodePdu(again, encoded, 0) == encoded.length);
    Expect(again.bindings.count == pdu.bindings.count);
}

struct Parsed {
    explicit Parsed(const Bytes& datagram)
        : count(ParseSnmpResponse(record, datagram.data(), datagram.size(), "fe80::1")) {}
    ResponseRecord record = {};
    int32_t count;
};

// A datagram must read like the same one at the start of a zeroed receive buffer.
void ReadResponse(const Bytes& datagram) {
    const auto parsed = std::make_unique<Parsed>(datagram);
    const ResponseRecord& record = parsed->record;
    Expect(record.nameLength <= kNameSize && record.value[record.valueLength] == 0);
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
}

// The first byte is the length of the devices' answers, which are taken from the request.
void ReadJson(const Bytes& bytes) {
    if (bytes.empty()) return;
    const std::string request(bytes.begin() + 1, bytes.end());
    ReadDiscoveryOid(request.c_str());
    JsonForm form(request.c_str());
    int asked = 0;
    while (const char* oid = form.NextOid()) {
        Expect(std::strlen(oid) < kOidTextSize);
        if (++asked % 2 != 0) form.Put(request.substr(0, bytes[0]).c_str());
    }
    const std::string document = form.Print();
    if (document.empty()) return;
    JsonDoc again;  // the document must be JSON unless it was cut
    again.Parse(Utf8ToWide(document.c_str()).c_str());
    Expect(again.Root() && Utf8PrefixLength(document, 4095) <= 4095);
}

// SNMPv3 messages of one user at one engine. The first byte chooses the protocols that the reader
// expects, and whether the rest is a datagram, or plain text to be encrypted into one, so that
// mutated bytes reach the inner decoders.
constexpr uint32_t kAuthCodes = 7;  // none and six
constexpr uint32_t kPrivCodes = 3;
constexpr uint8_t kPlainText = 0x80;

const MessageKeys& Keys() {
    static const MessageKeys keys = {ToBuffer(Bytes(64, 0x5A)), ToBuffer(Bytes(64, 0xA5))};
    return keys;
}

// The number of bindings in the message; -1 if it does not decode.
int32_t ReadV3(uint32_t auth, uint32_t priv, const Bytes& datagram) {
    MessageRecord message;
    message.usm.engineId = ToBuffer(V3Datagram().engineId);
    message.usm.authProtocol = auth;
    message.usm.privProtocol = priv;
    CryptoSession crypto;
    Bytes block = datagram;
    const auto size = static_cast<int32_t>(block.size());
    try {
        const int32_t end = ReadMessage(message, Keys(), crypto, block.data(), size);
        Expect(end > 0 && end <= size);
    } catch (const AsnDecodeError&) {
        return -1;
    }
    return message.scoped.pdu.bindings.count;
}

// An answer with plain text, padded with zeros as both protocols do, must read like one with its
// cipher text.
void ReadInner(uint32_t auth, uint32_t priv, const Bytes& plain) {
    V3Datagram answer;
    answer.scopedTlv = plain;
    answer.scopedTlv.resize(priv == kPrivDes ? (plain.size() + 7) / 8 * 8
                                             : (plain.size() / 16 + 1) * 16);
    const int32_t expected = ReadV3(kAuthNone, kPrivNone, answer.Build());

    CryptoSession crypto;
    const ByteBuffer text = ToBuffer(plain);
    const PrivacyInput input = {text, Keys().priv, static_cast<int32_t>(answer.boots),
                                static_cast<int32_t>(answer.time)};
    ByteBuffer cipher, salt;
    if (priv == kPrivDes) {
        DesPrivacy().Encrypt(crypto, input, cipher, salt);
    } else {
        AesPrivacy().Encrypt(input, cipher, salt);
    }
    answer.flagsTlv = Tlv(0x04, {3});
    answer.salt = ToBytes(salt);
    answer.scopedTlv = Tlv(0x04, ToBytes(cipher));
    Expect(ReadV3(auth, priv, answer.Build()) == expected);
}

void ReadV3(const Bytes& bytes) {
    if (bytes.size() < 2) return;
    const Bytes rest(bytes.begin() + 1, bytes.end());
    const uint8_t choice = bytes[0] % kPlainText;
    if (bytes[0] < kPlainText) {
        ReadV3(choice % kAuthCodes, choice / kAuthCodes % kPrivCodes, rest);
    } else {
        ReadInner(1 + choice % (kAuthCodes - 1), 1 + choice / kAuthCodes % (kPrivCodes - 1), rest);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static void (*const kDecoders[])(const Bytes&) = {ReadPdu, ReadResponse, ReadOid, ReadJson,
                                                      ReadV3};
    kDecoders[data[0] % std::size(kDecoders)](Bytes(data + 1, data + size));
    return 0;
}
