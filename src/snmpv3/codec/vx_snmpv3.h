// One SNMPv3 message with its security state: the request to send, then the answer read into it.
#pragma once

#include <cstdint>

#include "snmp/codec/byte_buffer.h"
#include "snmp/codec/var_bind.h"
#include "snmpv3/codec/message.h"
#include "snmpv3/crypto/keys.h"

namespace vndiscover {

constexpr uint32_t kMaxUserName = 127;  // bytes

// Starts as an engine discovery, an empty message without security. Decoding the report sets the
// engine, and the next Encode builds a full request with the flags set by then. Passwords are
// wiped on destruction. Throws std::bad_alloc.
class VxSNMPv3 {
  public:
    // passwordKeys is shared by the messages of one call, and outlives every Encode and Decode.
    // Without it, for an engine discovery, no key is derived.
    explicit VxSNMPv3(PasswordKeys* passwordKeys = nullptr) : passwordKeys_(passwordKeys) {}

    /**
     * Builds the datagram, which is valid until the next Encode. An empty password or an unknown
     * protocol code gives no key; see BuildMessage.
     */
    const ByteBuffer& Encode();

    /**
     * Reads an answer; see ReadMessage. Before the call the flags must be those of the request,
     * because they decide which keys are derived.
     * @param berBuffer  length bytes; the authentication parameters in it are zeroed.
     * @return The message's length. 0 on failure: there are no bindings, but fields read until then
     * keep their values.
     */
    int32_t Decode(uint8_t* berBuffer, int length);

    // Text is UTF-8; null reads as "".

    // If the name exceeds kMaxUserName bytes, nothing changes and the result is false.
    bool SetUser(const char* userName);
    void SetAuth(uint32_t authCode, const char* password);
    void SetPrivacy(uint32_t privCode, const char* password);
    void SetFlags(bool auth, bool priv);
    void SetEngine(const ByteBuffer& id, int32_t boots, int32_t time);
    void SetMsgMaxSize(uint32_t msgMaxSize) { message_.msgMaxSize = msgMaxSize; }
    void SetPduType(uint8_t pduType) { message_.scoped.pdu.pduType = pduType; }
    // 0 means a fixed identifier. Nothing in the module calls these two.
    void SetMsgId(uint32_t msgId) { message_.msgId = msgId; }
    void SetRequestId(int32_t requestId) { message_.scoped.pdu.requestId = requestId; }
    // The OID to request; text with fewer than two arcs requests the empty OID. False: it does not
    // fit a binding, and nothing is requested.
    bool SetOid(const char* dotted);

    const ByteBuffer& EngineId() const { return message_.usm.engineId; }
    int32_t EngineBoots() const { return message_.usm.engineBoots; }
    int32_t EngineTime() const { return message_.usm.engineTime; }
    uint32_t MsgMaxSize() const { return message_.msgMaxSize; }
    // The request's bindings, or after Decode the answer's. Valid until the next Decode or SetOid.
    const VarBindList& Bindings() const { return message_.scoped.pdu.bindings; }
    const VarBindRecord* FirstBinding() const {  // or null
        return Bindings().count > 0 ? Bindings().bindings : nullptr;
    }
    // All of the message.
    const MessageRecord& Record() const { return message_; }

  private:
    PasswordKeys* const passwordKeys_;
    MessageRecord message_;
    VarBindRecord asked_ = {};
};

}  // namespace vndiscover
