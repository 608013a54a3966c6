// Keys of the user-based security model.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

/**
 * Makes the key that a password has at one engine (RFC 3414 A.2) with the hash of an authentication
 * protocol, for privacy too. Costs a hash over 1 MiB.
 * @return The key, as long as the hash's digest; empty for an empty password, an unknown code, and
 * when hashing fails, which is logged there.
 */
ByteBuffer PasswordToKey(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& password,
                         const ByteBuffer& engineId);

/**
 * Authenticates a whole message, in which the field for the result is zero.
 * @return The HMAC as far as it is sent; empty without a key and when hashing fails, which is
 * logged. A code beyond the known ones counts as an unsupported hash and is logged as one.
 */
ByteBuffer AuthenticationOf(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& key,
                            const uint8_t* message, uint32_t length);

}  // namespace vndiscover
