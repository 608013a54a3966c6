#pragma once

#include "snmpv3/codec/message_record.h"
#include "snmpv3/crypto/keys.h"

namespace vndiscover {

enum class Direction { kEncode, kDecode };

// Makes the keys that the message's flags ask for, from its passwords and its engine ID. A probe
// has none. An unknown authentication protocol gives no key and is logged; an empty password gives
// none either.
MessageKeys PrepareKeys(const MessageRecord& message, Direction direction, PasswordKeys& passwords,
                        CryptoSession& crypto);

}  // namespace vndiscover
