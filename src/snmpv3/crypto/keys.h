// Keys of the user-based security model.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// Keys from passwords (RFC 3414 A.2). A password's own key costs a hash over 1 MiB and is the same
// at every engine: it is kept, for the two passwords of one call, and wiped with the object. What
// an engine makes of it is not kept, and a failure is not remembered. Not for two threads at once.
class PasswordKeys {
  public:
    /**
     * Makes the key that a password has at one engine, with the hash of an authentication protocol,
     * for privacy too.
     * @return The key, as long as the hash's digest; empty for an empty password, an unknown code,
     * and when hashing fails, which is logged there.
     */
    ByteBuffer LocalisedKey(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& password,
                            const ByteBuffer& engineId);

  private:
    struct Entry {
        uint32_t authCode = 0;
        ByteBuffer password;
        ByteBuffer key;  // not yet localised
    };
    const ByteBuffer& KeyOf(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& password);

    Entry entries_[2];
    size_t next_ = 0;  // to be replaced
};

// The same once, with nothing kept.
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
