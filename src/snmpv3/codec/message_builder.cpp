#include "snmpv3/codec/message.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "snmp/codec/asn.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"
#include "support/copy_text.h"

namespace vndiscover {
namespace {

constexpr uint32_t kDefaultMsgId = 256;
constexpr size_t kSavedNameSize = 128;  // with its terminator

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

void AppendString(const ByteBuffer& bytes, ByteBuffer& dest) {
    AsnAppendOctetString(bytes.data, static_cast<int32_t>(bytes.length), dest);
}

void FillPlaceholder(ByteBuffer& field, uint32_t size) {
    const std::vector<uint8_t> zeros(size);
    if (field.Empty()) field.Assign(zeros.data(), static_cast<int32_t>(size));
}

// Parameters that are still empty take up the size that their protocols send.
void FillPlaceholders(UsmParameters& usm) {
    if (usm.authProtocol == kAuthNone) {
        usm.authParameters.Clear();
    } else {
        FillPlaceholder(usm.authParameters, MacLength(usm.authProtocol));
    }
    if (usm.privProtocol == kPrivDes || usm.privProtocol == kPrivAes) {
        FillPlaceholder(usm.privParameters, kSaltSize);
    }
}

void AppendUsm(const UsmParameters& usm, ByteBuffer& dest) {
    ByteBuffer fields;
    AppendString(usm.engineId, fields);
    AsnAppendInteger(usm.engineBoots, fields);
    AsnAppendInteger(usm.engineTime, fields);
    AppendString(usm.userName, fields);
    AppendString(usm.authParameters, fields);
    AppendString(usm.privParameters, fields);
    ByteBuffer sequence;
    AsnAppendWrapped(sequence, kTagSequence, fields);
    AsnAppendWrapped(dest, kTagOctetString, sequence);
}

ByteBuffer EncodeScopedPdu(ScopedPdu& scoped) {
    ByteBuffer fields;
    AppendString(scoped.contextEngineId, fields);
    AppendString(scoped.contextName, fields);
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

// Kept: an engine discovery truncates the stored name at its first zero byte.
void RestoreNameAsText(ByteBuffer& userName) {
    char saved[kSavedNameSize] = {};
    FillField(saved, sizeof saved - 1, userName.data, userName.length);
    userName.Assign(reinterpret_cast<const uint8_t*>(saved),
                    static_cast<int32_t>(strnlen(saved, sizeof saved)));
}

ByteBuffer Assembled(const ByteBuffer& header, const UsmParameters& usm, const ByteBuffer& scoped) {
    ByteBuffer content;
    AsnAppendInteger(kMsgVersion3, content);
    content.Append(header);
    AppendUsm(usm, content);
    content.Append(scoped);
    ByteBuffer whole;
    AsnAppendWrapped(whole, kTagSequence, content);
    return whole;
}

}  // namespace

void BuildMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto) {
    UsmParameters& usm = message.usm;
    ChooseMsgId(message);
    const ByteBuffer header = EncodeHeader(message);
    if (message.IsEngineDiscovery()) {
        // Empty fields, even if a report without an engine ID has filled some of them.
        message.encoded = Assembled(header, UsmParameters(), EncodeScopedPdu(message.scoped));
        RestoreNameAsText(usm.userName);
        return;
    }
    // The HMAC is computed over zeros in its own place, not over an earlier message's HMAC.
    if (message.UsesAuth()) usm.authParameters.Clear();
    FillPlaceholders(usm);
    ByteBuffer scoped = EncodeScopedPdu(message.scoped);
    if (message.UsesPriv()) scoped = Encrypted(message, scoped, keys.priv, crypto);
    message.encoded = Assembled(header, usm, scoped);
    if (!message.UsesAuth()) return;
    const ByteBuffer mac = TruncatedHmac(crypto, usm.authProtocol, keys.auth, message.encoded.data,
                                         message.encoded.length);
    if (mac.Empty()) return;
    usm.authParameters = mac;
    message.encoded = Assembled(header, usm, scoped);
}

}  // namespace vndiscover
