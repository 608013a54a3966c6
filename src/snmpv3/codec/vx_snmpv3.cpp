#include "snmpv3/codec/vx_snmpv3.h"

#include <cstring>

#include "snmp/codec/asn.h"
#include "snmp/codec/oid_text.h"
#include "snmpv3/codec/message_builder.h"
#include "snmpv3/codec/message_keys.h"
#include "snmpv3/codec/message_reader.h"
#include "snmpv3/crypto/crypto.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

void AssignText(ByteBuffer& field, const char* text) {
    field.Assign(reinterpret_cast<const uint8_t*>(text),
                 static_cast<int32_t>(text ? std::strlen(text) : 0));
}

}  // namespace

const ByteBuffer& VxSNMPv3::Encode() {
    DebugLogA("VxSNMPv3::Encode()\n");
    CryptoSession crypto;
    const MessageKeys keys = PrepareKeys(message_, Direction::kEncode, *passwords_, crypto);
    BuildMessage(message_, keys, crypto);
    return message_.encoded;
}

int32_t VxSNMPv3::Decode(uint8_t* berBuffer, int length) {
    DebugLogA("VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n");
    CryptoSession crypto;
    const MessageKeys keys = PrepareKeys(message_, Direction::kDecode, *passwords_, crypto);
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

void VxSNMPv3::SetMsgMaxSize(uint32_t msgMaxSize) { message_.msgMaxSize = msgMaxSize; }

void VxSNMPv3::SetMsgId(uint32_t msgId) { message_.msgId = msgId; }

void VxSNMPv3::SetRequestId(int32_t requestId) { message_.scoped.pdu.requestId = requestId; }

void VxSNMPv3::SetPduType(uint8_t pduType) { message_.scoped.pdu.pduType = pduType; }

bool VxSNMPv3::SetOid(const char* dotted) {
    VarBindList& list = message_.scoped.pdu.bindings;
    SetVarBindList(nullptr, 0, list);
    OidValue name;
    if (ParseOidText(name, dotted) > kMaxNameContent) return false;
    if (MakeVarBind(name, ValueView{kTagNull, 0, nullptr}, asked_) != 0) return false;
    SetVarBindList(&asked_, 1, list);
    return true;
}

}  // namespace vndiscover
