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

// What both protocols share. Failures leave the output empty: a key that is missing or shorter than
// kMinPrivKeySize; on receipt also a salt of another size than kSaltSize and an empty cipher text.
struct PrivacyInput {
    const ByteBuffer& text;  // plain text to encrypt, cipher text to decrypt
    const ByteBuffer& key;   // localised
    int32_t engineBoots;
    int32_t engineTime;
};

// One for each message that is built.
// Kept: the counter starts anew with each, so that all messages carry the same.
class DesPrivacy {
  public:
    explicit DesPrivacy(uint32_t counter = 0x2a4c19) noexcept : counter_(counter) {}

    // Pads with zeros to whole blocks. A block that fails, which is logged, fails all.
    bool Encrypt(CryptoSession& crypto, const PrivacyInput& input, ByteBuffer& cipher,
                 ByteBuffer& salt);

    // As long as the cipher text, padding included; one that is not whole blocks fails, which is
    // logged.
    static bool Decrypt(CryptoSession& crypto, const PrivacyInput& input, const ByteBuffer& salt,
                        ByteBuffer& plain);

  private:
    uint32_t counter_;
};

class AesPrivacy {
  public:
    explicit AesPrivacy(uint64_t counter = 0x3c5a96e1d27b04f8) noexcept : counter_(counter) {}

    // Kept: pads with zeros to the next 16 bytes, a whole block where none was needed.
    bool Encrypt(const PrivacyInput& input, ByteBuffer& cipher, ByteBuffer& salt);

    // As long as the cipher text, which may have any length.
    static bool Decrypt(const PrivacyInput& input, const ByteBuffer& salt, ByteBuffer& plain);

  private:
    uint64_t counter_;
};

}  // namespace vndiscover
