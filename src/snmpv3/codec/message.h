// An SNMPv3 message (RFC 3412, RFC 3414), and how it is built and read:
//
//     30 len
//        INTEGER 3                                            msgVersion
//        30 len  INTEGER msgID  INTEGER msgMaxSize
//                04 01 flags  INTEGER msgSecurityModel        header; 1 auth, 2 priv, 4 reportable
//        04 len
//           30 len  OCTET STRING engine ID  INTEGER boots  INTEGER time  OCTET STRING user name
//                   OCTET STRING authentication parameters  OCTET STRING privacy parameters
//        30 len                                               scoped PDU; if encrypted, within
//           OCTET STRING contextEngineID                      an OCTET STRING
//           OCTET STRING contextName  PDU
#pragma once

#include <cstdint>

#include "snmp/codec/byte_buffer.h"
#include "snmp/codec/pdu.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/protocol_codes.h"

namespace vndiscover {

constexpr int32_t kMsgVersion3 = 3;
constexpr uint32_t kSecurityModelUsm = 3;
constexpr uint32_t kDefaultMsgMaxSize = 65536;
constexpr uint8_t kMsgFlagAuth = 1;
constexpr uint8_t kMsgFlagPriv = 2;
constexpr uint8_t kMsgFlagReportable = 4;

// With an empty engine ID a message is an engine discovery.
struct UsmParameters {
    ByteBuffer engineId;
    int32_t engineBoots = 0;
    int32_t engineTime = 0;
    ByteBuffer userName;
    uint32_t authProtocol = kAuthNone;
    ByteBuffer authPassword;
    ByteBuffer authParameters;
    uint32_t privProtocol = kPrivNone;
    ByteBuffer privPassword;
    ByteBuffer privParameters;
};

struct ScopedPdu {
    ByteBuffer contextEngineId;
    ByteBuffer contextName;
    PduRecord pdu;
};

struct MessageRecord {
    ByteBuffer encoded;
    int32_t receivedVersion = 1;
    uint32_t msgId = 0;
    uint32_t msgMaxSize = kDefaultMsgMaxSize;
    bool authFlag = false;
    bool privFlag = false;
    bool reportableFlag = true;
    uint32_t sentSecurityModel = 0;
    UsmParameters usm;
    uint32_t securityModel = kSecurityModelUsm;
    ScopedPdu scoped;

    bool IsEngineDiscovery() const { return usm.engineId.Empty(); }
    bool UsesAuth() const { return authFlag && !IsEngineDiscovery(); }
    bool UsesPriv() const { return privFlag && !IsEngineDiscovery(); }
};

// Localised keys. Empty: there is none.
struct MessageKeys {
    ByteBuffer auth;
    ByteBuffer priv;
};

// Encodes the message into message.encoded. Without the authentication key that its flags require,
// the message carries zeros for authentication parameters. Without the privacy key, an empty OCTET
// STRING takes the place of the scoped PDU, which is never sent in the clear.
void BuildMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto);

/**
 * Reads an answer into message. Throws AsnDecodeError; fields read until then keep their values.
 * Kept: an answer whose HMAC is wrong or unchecked is used all the same, and only the log says so.
 * Its flags replace the caller's.
 * @param datagram  Its authentication parameters are zeroed.
 * @return The length of the message.
 */
int32_t ReadMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto,
                    uint8_t* datagram, int32_t length);

}  // namespace vndiscover
