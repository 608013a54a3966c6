// What stands inside an encrypted and authenticated message: the first byte chooses the protocols,
// the rest is the plain text, which is encrypted and authenticated with the keys that the reader
// holds.
#include <cstdlib>

#include "snmp/codec/asn_decode.h"

#include "fuzz/v3_fixture.h"

using namespace vndiscover;

namespace {

// 30 len | INTEGER 3 | header | security parameters | OCTET STRING
ByteBuffer Assembled(const MessageRecord& message, UsmParameters& usm, const ByteBuffer& scoped) {
    ByteBuffer header;
    AsnAppendInteger(1, header);
    AsnAppendInteger(65507, header);
    AsnAppendOctet(static_cast<uint8_t>(message.authFlag | (message.privFlag << 1)), header);
    AsnAppendInteger(kSecurityModelUsm, header);
    ByteBuffer content;
    AsnAppendInteger(kMsgVersion3, content);
    AsnAppendWrapped(content, kTagSequence, header);
    EncodeUsm(usm, content);
    content.Append(scoped);
    ByteBuffer datagram;
    AsnAppendWrapped(datagram, kTagSequence, content);
    return datagram;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const uint32_t authCode = 1 + data[0] % (fuzz::kAuthCodes - 1);
    const uint32_t privCode = 1 + data[0] / fuzz::kAuthCodes % (fuzz::kPrivCodes - 1);
    MessageRecord message;
    fuzz::Prepare(message, authCode, privCode);
    const MessageKeys& keys = fuzz::KeysOf(authCode);

    CryptoSession crypto;
    ByteBuffer plain;
    plain.Assign(data + 1, static_cast<int32_t>(size - 1));
    const PrivacyInput input = {plain, keys.priv, message.usm.engineBoots, message.usm.engineTime};
    ByteBuffer cipher;
    if (privCode == kPrivDes) {
        DesPrivacy().Encrypt(crypto, input, cipher, message.usm.privParameters);
    } else {
        AesPrivacy().Encrypt(input, cipher, message.usm.privParameters);
    }
    ByteBuffer scoped;
    AsnAppendWrapped(scoped, kTagOctetString, cipher);
    const ByteBuffer unsigned_ = Assembled(message, message.usm, scoped);
    message.usm.authParameters =
        AuthenticationOf(crypto, authCode, keys.auth, unsigned_.data, unsigned_.length);
    fuzz::Read(authCode, privCode, Assembled(message, message.usm, scoped));
    return 0;
}
