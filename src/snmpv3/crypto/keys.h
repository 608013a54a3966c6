// Keys of the user-based security model.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// Keys from passwords (RFC 3414 A.2). A password's key takes a hash over 1 MiB and is the same for
// every engine, so it is cached, for the two passwords of one call, and wiped on destruction.
// Localised keys are not cached, nor are failures. For one thread at a time.
class PasswordKeys {
  public:
    /**
     * Derives a password's key for one engine with the hash of an authentication protocol, which is
     * used for privacy keys too.
     * @return The key, as long as the digest. Empty for an empty password, an unknown code, or if
     * hashing fails, which the hash logs.
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

/**
 * Computes the authentication parameters of a whole message in which their field is zero.
 * @return The truncated HMAC. Empty without a key, or if hashing fails, which is logged. A code
 * above the known ones is logged as an unsupported hash.
 */
ByteBuffer TruncatedHmac(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& key,
                         const uint8_t* message, uint32_t length);

}  // namespace vndiscover
