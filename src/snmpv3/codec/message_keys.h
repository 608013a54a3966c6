#pragma once

#include "snmpv3/codec/message_record.h"
#include "snmpv3/crypto/keys.h"

namespace vndiscover {

enum class Direction { kEncode, kDecode };

// Derives the keys that the message's flags require from its passwords and its engine ID. An engine
// discovery has none, and an empty password gives none. An unknown authentication protocol gives
// none and is logged.
MessageKeys PrepareKeys(const MessageRecord& message, Direction direction, PasswordKeys& passwords,
                        CryptoSession& crypto);

}  // namespace vndiscover
