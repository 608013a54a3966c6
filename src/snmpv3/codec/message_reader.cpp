#include "snmpv3/codec/message.h"

#include <algorithm>
#include <cstring>

#include "snmp/codec/asn.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

// The flags are cleared first, so that none remain if the new ones cannot be read.
uint32_t ReadFlags(MessageRecord& message, const ByteBuffer& in, uint32_t cursor) {
    message.authFlag = message.privFlag = message.reportableFlag = false;
    ByteBuffer flags;
    cursor = AsnReadOctetString(flags, in, cursor);
    if (flags.Empty()) throw AsnDecodeError();
    message.authFlag = (flags.data[0] & kMsgFlagAuth) != 0;
    message.privFlag = (flags.data[0] & kMsgFlagPriv) != 0;
    message.reportableFlag = (flags.data[0] & kMsgFlagReportable) != 0;
    return cursor;
}

uint32_t ReadUnsigned(uint32_t& value, const ByteBuffer& in, uint32_t cursor) {
    int32_t number = 0;
    cursor = AsnReadInteger(number, in, cursor);
    value = static_cast<uint32_t>(number);
    return cursor;
}

uint32_t ReadHeader(MessageRecord& message, const ByteBuffer& in, uint32_t cursor) {
    const uint32_t length = AsnEnter(in, cursor, kTagSequence);
    const uint32_t end = cursor + length;
    cursor = ReadUnsigned(message.msgId, in, cursor);
    cursor = ReadUnsigned(message.msgMaxSize, in, cursor);
    cursor = ReadFlags(message, in, cursor);
    uint32_t securityModel = 0;
    cursor = ReadUnsigned(securityModel, in, cursor);
    if (securityModel != message.securityModel || cursor > end) throw AsnDecodeError();
    return end;
}

// The position of the answer's authentication parameters in the datagram.
struct ReceivedMac {
    uint32_t start = 0;  // of their OCTET STRING
    uint32_t end = 0;    // past it
};

uint32_t ReadUsm(UsmParameters& usm, const ByteBuffer& in, uint32_t cursor, ReceivedMac& mac) {
    uint32_t length = AsnEnter(in, cursor, kTagOctetString);
    const uint32_t end = cursor + length;
    length = AsnEnter(in, cursor, kTagSequence);
    if (cursor > end || length > end - cursor) throw AsnDecodeError();
    const uint32_t fieldsEnd = cursor + length;
    cursor = AsnReadOctetString(usm.engineId, in, cursor);
    cursor = AsnReadInteger(usm.engineBoots, in, cursor);
    cursor = AsnReadInteger(usm.engineTime, in, cursor);
    cursor = AsnReadOctetString(usm.userName, in, cursor);
    mac.start = cursor;
    cursor = AsnReadOctetString(usm.authParameters, in, cursor);
    mac.end = cursor;
    cursor = AsnReadOctetString(usm.privParameters, in, cursor);
    if (cursor > fieldsEnd) throw AsnDecodeError();
    return end;
}

// Kept: the header is taken to be a tag and one length byte, whatever the form of the length.
void ZeroMac(const ReceivedMac& mac, uint32_t macLength, uint8_t* datagram) {
    const uint32_t start = mac.start + 2;
    if (start >= mac.end) return;
    std::memset(datagram + start, 0, std::min(macLength, mac.end - start));
}

void CheckMac(const MessageRecord& message, const ByteBuffer& authKey, CryptoSession& crypto,
              const uint8_t* datagram, uint32_t length) {
    const ByteBuffer expected =
        TruncatedHmac(crypto, message.usm.authProtocol, authKey, datagram, length);
    const ByteBuffer& received = message.usm.authParameters;
    const bool match = !expected.Empty() && expected.length == received.length &&
                       std::memcmp(expected.data, received.data, received.length) == 0;
    if (match) {
        DebugLogA("MATCH _authenticationParameters\n");
    } else {
        DebugLogA("NOT MATCH _authenticationParameters\n");
    }
}

// Empty if the answer cannot be decrypted.
ByteBuffer Decrypted(const UsmParameters& usm, const ByteBuffer& cipher, const ByteBuffer& privKey,
                     CryptoSession& crypto) {
    const PrivacyInput input = {cipher, privKey, usm.engineBoots, usm.engineTime};
    ByteBuffer plain;
    if (usm.privProtocol == kPrivDes) {
        DesPrivacy::Decrypt(crypto, input, usm.privParameters, plain);
    } else if (usm.privProtocol == kPrivAes) {
        AesPrivacy::Decrypt(input, usm.privParameters, plain);
    }
    return plain;
}

// What follows the scoped PDU is padding of the encryption and is ignored.
void ReadScopedPdu(ScopedPdu& scoped, const ByteBuffer& in, uint32_t cursor) {
    AsnEnter(in, cursor, kTagSequence);
    cursor = AsnReadOctetString(scoped.contextEngineId, in, cursor);
    cursor = AsnReadOctetString(scoped.contextName, in, cursor);
    DecodePdu(scoped.pdu, in, cursor);
}

}  // namespace

int32_t ReadMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto,
                    uint8_t* datagram, int32_t length) {
    ByteBuffer in;
    in.Assign(datagram, length);
    uint32_t cursor = 0;
    const uint32_t content = AsnEnter(in, cursor, kTagSequence);
    const uint32_t end = cursor + content;
    cursor = AsnReadInteger(message.receivedVersion, in, cursor);
    cursor = ReadHeader(message, in, cursor);
    ReceivedMac mac;
    cursor = ReadUsm(message.usm, in, cursor, mac);
    ZeroMac(mac, message.usm.authParameters.length, datagram);
    if (message.UsesAuth()) CheckMac(message, keys.auth, crypto, datagram, in.length);
    if (message.UsesPriv()) {
        ByteBuffer cipher;
        AsnReadOctetString(cipher, in, cursor);
        ReadScopedPdu(message.scoped, Decrypted(message.usm, cipher, keys.priv, crypto), 0);
    } else {
        ReadScopedPdu(message.scoped, in, cursor);
    }
    return static_cast<int32_t>(end);
}

}  // namespace vndiscover
