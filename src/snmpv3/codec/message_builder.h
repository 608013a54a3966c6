#pragma once

#include "snmpv3/codec/message_record.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// Encodes the message into message.encoded. Without the key that a flag asks for, the message goes
// out unauthenticated, with zeros for authentication parameters, or with an empty OCTET STRING for
// its scoped PDU: what was to be private is never sent in the clear.
void BuildMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto);

}  // namespace vndiscover
