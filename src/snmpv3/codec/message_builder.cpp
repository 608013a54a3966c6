#include "snmpv3/codec/message_builder.h"

#include <cstdlib>
#include <ctime>

#include "snmp/codec/asn.h"
#include "snmpv3/codec/usm_header.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"

namespace vndiscover {
namespace {

constexpr uint32_t kDefaultMsgId = 256;

void ChooseMsgId(MessageRecord& message) {
    if (message.msgId != 0) return;
    std::srand(static_cast<unsigned>(std::time(nullptr)));  // Kept: seeded, but rand is not called
    message.msgId = kDefaultMsgId;
}

ByteBuffer EncodeHeader(MessageRecord& message) {
    message.sentSecurityModel = message.securityModel;
    ByteBuffer fields;
    AsnAppendInteger(static_cast<int32_t>(message.msgId), fields);
    AsnAppendInteger(static_cast<int32_t>(message.msgMaxSize), fields);
    AsnAppendOctet(static_cast<uint8_t>((message.authFlag ? kMsgFlagAuth : 0) |
                                        (message.privFlag ? kMsgFlagPriv : 0) |
                                        (message.reportableFlag ? kMsgFlagReportable : 0)),
                   fields);
    AsnAppendInteger(static_cast<int32_t>(message.sentSecurityModel), fields);
    ByteBuffer header;
    AsnAppendWrapped(header, kTagSequence, fields);
    return header;
}

ByteBuffer EncodeScopedPdu(ScopedPdu& scoped) {
    ByteBuffer fields;
    AsnAppendOctetString(scoped.contextEngineId.data,
                         static_cast<int32_t>(scoped.contextEngineId.length), fields);
    AsnAppendOctetString(scoped.contextName.data, static_cast<int32_t>(scoped.contextName.length),
                         fields);
    EncodePdu(scoped.pdu, fields);  // cannot fail: SetOid and DecodePdu check the bindings
    ByteBuffer encoded;
    AsnAppendWrapped(encoded, kTagSequence, fields);
    return encoded;
}

// The encrypted scoped PDU as an OCTET STRING; the salt goes into the security parameters.
ByteBuffer Encrypted(MessageRecord& message, const ByteBuffer& scoped, const ByteBuffer& privKey,
                     CryptoSession& crypto) {
    UsmParameters& usm = message.usm;
    const PrivacyInput input = {scoped, privKey, usm.engineBoots, usm.engineTime};
    ByteBuffer cipher;
    if (usm.privProtocol == kPrivDes) {
        DesPrivacy().Encrypt(crypto, input, cipher, usm.privParameters);
    } else if (usm.privProtocol == kPrivAes) {
        AesPrivacy().Encrypt(input, cipher, usm.privParameters);
    }
    ByteBuffer wrapped;
    AsnAppendWrapped(wrapped, kTagOctetString, cipher);
    return wrapped;
}

void Assemble(MessageRecord& message, const ByteBuffer& header, const ByteBuffer& scoped) {
    ByteBuffer content;
    AsnAppendInteger(kMsgVersion3, content);
    content.Append(header);
    EncodeUsm(message.usm, content);
    content.Append(scoped);
    message.encoded.Clear();
    AsnAppendWrapped(message.encoded, kTagSequence, content);
}

}  // namespace

void BuildMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto) {
    UsmParameters& usm = message.usm;
    ChooseMsgId(message);
    const ByteBuffer header = EncodeHeader(message);
    ByteBuffer scoped = EncodeScopedPdu(message.scoped);
    if (message.UsesPriv()) scoped = Encrypted(message, scoped, keys.priv, crypto);
    // The HMAC is computed over zeros in its own place, not over an earlier message's HMAC.
    if (message.UsesAuth()) usm.authParameters.Clear();
    Assemble(message, header, scoped);
    if (!message.UsesAuth()) return;
    const ByteBuffer mac = TruncatedHmac(crypto, usm.authProtocol, keys.auth, message.encoded.data,
                                         message.encoded.length);
    if (mac.Empty()) return;
    usm.authParameters = mac;
    Assemble(message, header, scoped);
}

}  // namespace vndiscover
