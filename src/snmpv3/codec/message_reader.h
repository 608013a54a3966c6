#pragma once

#include "snmpv3/codec/message_record.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

/**
 * Reads an answer into message. Throws AsnDecodeError; the fields read until then stay.
 * Kept: an answer whose authentication is wrong or was never checked is used all the same; the log
 * alone says so. Its flags replace the caller's.
 * @param datagram  Its authentication parameters are zeroed.
 * @return The length of the message.
 */
int32_t ReadMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto,
                    uint8_t* datagram, int32_t length);

}  // namespace vndiscover
