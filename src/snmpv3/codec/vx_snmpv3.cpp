#include "snmpv3/codec/vx_snmpv3.h"

#include <cstring>

#include "snmp/codec/asn.h"
#include "snmp/codec/oid_text.h"
#include "snmpv3/codec/message.h"
#include "snmpv3/crypto/crypto.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

enum class Direction { kEncode, kDecode };

bool IsKnown(uint32_t authCode) { return authCode >= kAuthMd5 && authCode <= kAuthSha512; }

// SHA-2 hashes of the platform; the module's own SHA-224 is not logged.
bool IsSha2(uint32_t authCode) { return authCode >= kAuthSha256 && authCode <= kAuthSha512; }

void LogNoKey(Direction direction, uint32_t authCode) {
    const int code = static_cast<int>(authCode);
    if (direction == Direction::kEncode) {
        DebugLogA("Not support Authentication protocol:%d\n", code);
    } else {
        DebugLogA("ERROR:not yet supported HASH VALUE:%d\n", code);
    }
}

void LogPrivacyKey(Direction direction, uint32_t authCode, uint32_t privCode) {
    if (privCode == kPrivDes && authCode == kAuthSha1) {
        DebugLogA("=====pkey for privacy password (SHA1) w/ DES===== \n");
    } else if (privCode == kPrivDes && IsSha2(authCode)) {
        DebugLogA("=====akey for authentication password (SHA2)===== \n");  // Kept: the label
    } else if (privCode == kPrivAes && IsSha2(authCode) && direction == Direction::kDecode) {
        DebugLogA("=====In SHA2 for _userSecurityModel._authenticationSecret  AES=====\n");
    }
}

// Derives the keys that the message's flags require from its passwords and its engine ID. An engine
// discovery has none, and neither an empty password nor null passwordKeys give any. An unknown
// authentication protocol gives none and is logged.
MessageKeys PrepareKeys(const MessageRecord& message, Direction direction,
                        PasswordKeys* passwordKeys, CryptoSession& crypto) {
    const UsmParameters& usm = message.usm;
    const uint32_t authCode = usm.authProtocol;
    const auto keyOf = [&](const ByteBuffer& password) {
        if (!passwordKeys) return ByteBuffer();
        return passwordKeys->LocalisedKey(crypto, authCode, password, usm.engineId);
    };
    MessageKeys keys;
    if (message.UsesAuth()) {
        if (IsKnown(authCode)) {
            keys.auth = keyOf(usm.authPassword);
        } else {
            LogNoKey(direction, authCode);
        }
    }
    const bool knownPrivacy = usm.privProtocol == kPrivDes || usm.privProtocol == kPrivAes;
    if (message.UsesPriv() && knownPrivacy && IsKnown(authCode)) {
        LogPrivacyKey(direction, authCode, usm.privProtocol);
        // The privacy key too is localised with the authentication protocol's hash.
        keys.priv = keyOf(usm.privPassword);
    }
    return keys;
}

void AssignText(ByteBuffer& field, const char* text) {
    field.Assign(reinterpret_cast<const uint8_t*>(text),
                 static_cast<int32_t>(text ? std::strlen(text) : 0));
}

}  // namespace

const ByteBuffer& VxSNMPv3::Encode() {
    DebugLogA("VxSNMPv3::Encode()\n");
    CryptoSession crypto;
    const MessageKeys keys = PrepareKeys(message_, Direction::kEncode, passwordKeys_, crypto);
    BuildMessage(message_, keys, crypto);
    return message_.encoded;
}

int32_t VxSNMPv3::Decode(uint8_t* berBuffer, int length) {
    DebugLogA("VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n");
    CryptoSession crypto;
    const MessageKeys keys = PrepareKeys(message_, Direction::kDecode, passwordKeys_, crypto);
    // After a failed decode the request's bindings must not pass for the answer's.
    SetVarBindList(nullptr, 0, message_.scoped.pdu.bindings);
    try {
        return ReadMessage(message_, keys, crypto, berBuffer, length);
    } catch (const AsnDecodeError&) {
        return 0;
    }
}

bool VxSNMPv3::SetUser(const char* userName) {
    if (userName && strnlen(userName, kMaxUserName + 1) > kMaxUserName) return false;
    AssignText(message_.usm.userName, userName);
    return true;
}

void VxSNMPv3::SetAuth(uint32_t authCode, const char* password) {
    message_.usm.authProtocol = authCode;
    AssignText(message_.usm.authPassword, password);
}

void VxSNMPv3::SetPrivacy(uint32_t privCode, const char* password) {
    message_.usm.privProtocol = privCode;
    AssignText(message_.usm.privPassword, password);
}

void VxSNMPv3::SetFlags(bool auth, bool priv) {
    message_.authFlag = auth;
    message_.privFlag = priv;
}

void VxSNMPv3::SetEngine(const ByteBuffer& id, int32_t boots, int32_t time) {
    message_.usm.engineId = id;
    message_.usm.engineBoots = boots;
    message_.usm.engineTime = time;
}

bool VxSNMPv3::SetOid(const char* dotted) {
    VarBindList& list = message_.scoped.pdu.bindings;
    SetVarBindList(nullptr, 0, list);
    OidValue name;
    if (ParseOidText(name, dotted) > kMaxNameContent) return false;
    if (MakeVarBind(name, kNullValue, asked_) != 0) return false;
    SetVarBindList(&asked_, 1, list);
    return true;
}

}  // namespace vndiscover
