#pragma once

#include "snmpv3/codec/message_record.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

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
