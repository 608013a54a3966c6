// Encryption of scoped PDUs. DES-CBC (RFC 3414, 8): the key's bytes 0 to 7 are the DES key, 8 to 15
// the pre-IV; the salt is boots (4 bytes) and counter (4 bytes), the IV pre-IV xor salt.
// AES-128-CFB (RFC 3826): the key's bytes 0 to 15; the salt is the counter (8 bytes), the IV boots,
// time (4 bytes each) and salt. All numbers are big-endian; the salt is what msgPrivacyParameters
// carries.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

constexpr uint32_t kSaltSize = 8;
constexpr uint32_t kMinPrivKeySize = 16;

// Input of both protocols. They fail, with an empty output, if the key is missing or shorter than
// kMinPrivKeySize; decryption also fails if the salt is not kSaltSize bytes or the cipher text is
// empty.
struct PrivacyInput {
    const ByteBuffer& text;  // plain text to encrypt, cipher text to decrypt
    const ByteBuffer& key;   // localised
    int32_t engineBoots;
    int32_t engineTime;
};

// One for each message that is built. Kept: each starts the counter from the same value, so all
// messages carry the same one.
class DesPrivacy {
  public:
    explicit DesPrivacy(uint32_t counter = 0x2a4c19) noexcept : counter_(counter) {}

    // Pads with zeros to whole blocks. Fails if one block fails, which is logged.
    bool Encrypt(CryptoSession& crypto, const PrivacyInput& input, ByteBuffer& cipher,
                 ByteBuffer& salt);

    // The plain text is as long as the cipher text, with any padding. Fails, and logs it, unless
    // the cipher text is whole blocks.
    static bool Decrypt(CryptoSession& crypto, const PrivacyInput& input, const ByteBuffer& salt,
                        ByteBuffer& plain);

  private:
    uint32_t counter_;
};

class AesPrivacy {
  public:
    explicit AesPrivacy(uint64_t counter = 0x3c5a96e1d27b04f8) noexcept : counter_(counter) {}

    // Kept: pads with zeros to the next multiple of 16 bytes, with a whole block if none is needed.
    bool Encrypt(const PrivacyInput& input, ByteBuffer& cipher, ByteBuffer& salt);

    // The plain text is as long as the cipher text, which may have any length.
    static bool Decrypt(const PrivacyInput& input, const ByteBuffer& salt, ByteBuffer& plain);

  private:
    uint64_t counter_;
};

}  // namespace vndiscover
