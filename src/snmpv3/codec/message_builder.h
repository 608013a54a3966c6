#pragma once

#include "snmpv3/codec/message_record.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// Encodes the message into message.encoded. Without the authentication key that its flags require,
// the message carries zeros for authentication parameters. Without the privacy key, an empty OCTET
// STRING takes the place of the scoped PDU, which is never sent in the clear.
void BuildMessage(MessageRecord& message, const MessageKeys& keys, CryptoSession& crypto);

}  // namespace vndiscover
