#include "snmpv3/crypto/privacy.h"

// The AES functions are deprecated, but still there.
#ifndef OPENSSL_SUPPRESS_DEPRECATED
#define OPENSSL_SUPPRESS_DEPRECATED
#endif
#include <openssl/aes.h>

#include <cstring>
#include <limits>
#include <vector>

#include "support/big_endian.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

constexpr size_t kAesBlockSize = 16;
constexpr int kAesKeyBits = 128;

template <class Number>
Number NextCounter(Number counter) {
    constexpr auto kLargest = std::numeric_limits<Number>::max() >> 1;  // the signed type's
    return counter == kLargest ? 1 : counter + 1;
}

bool HasKey(const PrivacyInput& input) { return input.key.length >= kMinPrivKeySize; }

bool CanDecrypt(const PrivacyInput& input, const ByteBuffer& salt) {
    return HasKey(input) && salt.length == kSaltSize && !input.text.Empty();
}

void Xor(uint8_t (&block)[kDesBlockSize], const uint8_t* other) {
    for (size_t i = 0; i < kDesBlockSize; ++i) block[i] ^= other[i];
}

// The DES key and IV, from a localised key and a salt.
struct DesMaterial {
    DesMaterial(const ByteBuffer& privKey, const uint8_t* salt) {
        std::memcpy(key, privKey.data, sizeof key);
        std::memcpy(iv, privKey.data + sizeof key, sizeof iv);
        Xor(iv, salt);
    }
    ~DesMaterial() { SecureWipe(this, sizeof *this); }
    uint8_t key[kDesKeySize];
    uint8_t iv[kDesBlockSize];
};

void AesIv(const PrivacyInput& input, const uint8_t* salt, uint8_t (&iv)[kAesBlockSize]) {
    StoreBigEndian(static_cast<uint32_t>(input.engineBoots), iv);
    StoreBigEndian(static_cast<uint32_t>(input.engineTime), iv + 4);
    std::memcpy(iv + 8, salt, kSaltSize);
}

ByteBuffer ZeroPadded(const ByteBuffer& text, size_t size) {
    std::vector<uint8_t> zeros(size - text.length);
    ByteBuffer padded = text;
    padded.Append(zeros.data(), static_cast<int32_t>(zeros.size()));
    return padded;
}

// Encrypts or decrypts the padded text.
ByteBuffer RunAes(const PrivacyInput& input, const uint8_t* salt, int direction) {
    ByteBuffer text =
        ZeroPadded(input.text, (input.text.length / kAesBlockSize + 1) * kAesBlockSize);
    uint8_t iv[kAesBlockSize];
    AesIv(input, salt, iv);
    AES_KEY schedule;
    const WipeAtExit wipe(schedule);
    AES_set_encrypt_key(input.key.data, kAesKeyBits, &schedule);  // CFB decrypts with it too
    int position = 0;
    AES_cfb128_encrypt(text.data, text.data, text.length, &schedule, iv, &position, direction);
    return text;
}

// Encrypts whole blocks in place with CBC.
bool ChainBlocks(CryptoSession& crypto, const DesMaterial& material, ByteBuffer& text) {
    uint8_t chain[kDesBlockSize];
    const WipeAtExit wipeChain(chain);
    std::memcpy(chain, material.iv, sizeof chain);
    for (uint32_t at = 0; at < text.length; at += kDesBlockSize) {
        uint8_t block[kDesBlockSize];
        const WipeAtExit wipeBlock(block);
        std::memcpy(block, text.data + at, sizeof block);
        Xor(block, chain);
        if (!crypto.DesEncryptBlock(material.key, block, chain)) return false;
        std::memcpy(text.data + at, chain, sizeof chain);
    }
    return true;
}

}  // namespace

bool DesPrivacy::Encrypt(CryptoSession& crypto, const PrivacyInput& input, ByteBuffer& cipher,
                         ByteBuffer& salt) {
    cipher.Clear();
    if (!HasKey(input)) return false;
    counter_ = NextCounter(counter_);
    uint8_t saltBytes[kSaltSize];
    StoreBigEndian(static_cast<uint32_t>(input.engineBoots), saltBytes);
    StoreBigEndian(counter_, saltBytes + 4);
    salt.Assign(saltBytes, kSaltSize);

    const DesMaterial material(input.key, saltBytes);
    const size_t blocks = (input.text.length + kDesBlockSize - 1) / kDesBlockSize;
    ByteBuffer padded = ZeroPadded(input.text, blocks * kDesBlockSize);
    if (!ChainBlocks(crypto, material, padded)) return false;
    cipher = std::move(padded);
    return true;
}

bool DesPrivacy::Decrypt(CryptoSession& crypto, const PrivacyInput& input, const ByteBuffer& salt,
                         ByteBuffer& plain) {
    plain.Clear();
    if (!CanDecrypt(input, salt)) return false;
    const DesMaterial material(input.key, salt.data);
    return crypto.DesDecrypt(material.key, material.iv, input.text.data, input.text.length, plain);
}

bool AesPrivacy::Encrypt(const PrivacyInput& input, ByteBuffer& cipher, ByteBuffer& salt) {
    cipher.Clear();
    if (!HasKey(input)) return false;
    counter_ = NextCounter(counter_);
    uint8_t saltBytes[kSaltSize];
    StoreBigEndian(counter_, saltBytes);
    salt.Assign(saltBytes, kSaltSize);
    cipher = RunAes(input, saltBytes, AES_ENCRYPT);
    return true;
}

bool AesPrivacy::Decrypt(const PrivacyInput& input, const ByteBuffer& salt, ByteBuffer& plain) {
    plain.Clear();
    if (!CanDecrypt(input, salt)) return false;
    const ByteBuffer padded = RunAes(input, salt.data, AES_DECRYPT);
    plain.Assign(padded.data, static_cast<int32_t>(input.text.length));
    return true;
}

}  // namespace vndiscover
