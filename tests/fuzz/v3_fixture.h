// Messages of one fixed user at one fixed engine, so that mutated bytes reach the inner decoders.
#pragma once

#include <array>
#include <string>

#include "snmp/codec/asn_encode.h"
#include "snmpv3/codec/message_reader.h"
#include "snmpv3/codec/usm_header.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"

namespace vndiscover::fuzz {

constexpr uint32_t kAuthCodes = 7;
constexpr uint32_t kPrivCodes = 3;

inline void AssignText(ByteBuffer& field, const std::string& text) {
    field.Assign(reinterpret_cast<const uint8_t*>(text.data()), static_cast<int32_t>(text.size()));
}

// The keys of one choice of protocols, derived once.
inline const MessageKeys& KeysOf(uint32_t authCode) {
    static std::array<MessageKeys, kAuthCodes> keys;
    MessageKeys& chosen = keys[authCode];
    if (authCode != 0 && chosen.auth.Empty()) {
        CryptoSession crypto;
        ByteBuffer password;
        AssignText(password, "maplesyrup");
        ByteBuffer engine;
        AssignText(engine, "engine-0001");
        chosen.auth = PasswordToKey(crypto, authCode, password, engine);
        chosen.priv = chosen.auth;
    }
    return chosen;
}

inline void Prepare(MessageRecord& message, uint32_t authCode, uint32_t privCode) {
    AssignText(message.usm.engineId, "engine-0001");
    AssignText(message.usm.userName, "user");
    message.usm.engineBoots = 3;
    message.usm.engineTime = 4711;
    message.usm.authProtocol = authCode;
    message.usm.privProtocol = privCode;
    message.authFlag = authCode != 0;
    message.privFlag = authCode != 0 && privCode != 0;
}

// Reads a copy, for the reader writes into its input; a decode error is a result like any other.
inline void Read(uint32_t authCode, uint32_t privCode, const ByteBuffer& datagram) {
    MessageRecord message;
    Prepare(message, authCode, privCode);
    CryptoSession crypto;
    ByteBuffer copy = datagram;
    try {
        const int32_t length = ReadMessage(message, KeysOf(authCode), crypto, copy.data,
                                           static_cast<int32_t>(copy.length));
        if (length <= 0 || static_cast<uint32_t>(length) > copy.length) std::abort();
    } catch (const AsnDecodeError&) {
    }
}

}  // namespace vndiscover::fuzz
