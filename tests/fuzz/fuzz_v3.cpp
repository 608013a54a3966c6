// SNMPv3 messages of one user at one engine. The first byte chooses the protocols that the reader
// expects, and whether the rest is a datagram, or plain text to be encrypted into one, so that
// mutated bytes reach the inner decoders.
#include <cstdlib>

#include "helpers/snmp_datagrams.h"
#include "snmp/codec/asn_decode.h"
#include "snmpv3/codec/message_reader.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/privacy.h"
#include "snmpv3/crypto/protocol_codes.h"

using namespace vndiscover;

namespace {

constexpr uint32_t kAuthCodes = 7;  // none and six
constexpr uint32_t kPrivCodes = 3;
constexpr uint8_t kPlainText = 0x80;

const MessageKeys& Keys() {
    static const MessageKeys keys = {ToBuffer(Bytes(64, 0x5A)), ToBuffer(Bytes(64, 0xA5))};
    return keys;
}

// The number of bindings in the message; -1 if it does not decode.
int32_t Read(uint32_t auth, uint32_t priv, const Bytes& datagram) {
    MessageRecord message;
    message.usm.engineId = ToBuffer(V3Datagram().engineId);
    message.usm.authProtocol = auth;
    message.usm.privProtocol = priv;
    CryptoSession crypto;
    Bytes block = datagram;
    const auto size = static_cast<int32_t>(block.size());
    try {
        const int32_t end = ReadMessage(message, Keys(), crypto, block.data(), size);
        if (end <= 0 || end > size) std::abort();
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
    const int32_t expected = Read(kAuthNone, kPrivNone, answer.Build());

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
    if (Read(auth, priv, answer.Build()) != expected) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const Bytes rest(data + 1, data + size);
    const uint8_t choice = data[0] % kPlainText;
    if (data[0] < kPlainText) {
        Read(choice % kAuthCodes, choice / kAuthCodes % kPrivCodes, rest);
    } else {
        ReadInner(1 + choice % (kAuthCodes - 1), 1 + choice / kAuthCodes % (kPrivCodes - 1), rest);
    }
    return 0;
}
