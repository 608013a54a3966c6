// The crypto interface over libcrypto, for systems without the platform's own libraries.
#include "crypto_openssl.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/sha224.h"
#include "support/debug_log.h"

namespace vndiscover {

int g_mebibyteHashes = 0;

namespace {

const EVP_MD* DigestOf(uint32_t authCode) {
    switch (authCode) {
        case kAuthMd5:
            return EVP_md5();
        case kAuthSha1:
            return EVP_sha1();
        case kAuthSha256:
            return EVP_sha256();
        case kAuthSha384:
            return EVP_sha384();
        case kAuthSha512:
            return EVP_sha512();
        default:
            DebugLogA("Not supported HashAlgorithm:%d\n", static_cast<int>(authCode - 2));
            return nullptr;
    }
}

// DES from triple DES with one key three times, which libcrypto has without its legacy provider.
// The output may lie over the input.
bool RunDes(const EVP_CIPHER* cipher, const uint8_t* key, const uint8_t* iv, bool encrypt,
            uint8_t* text, uint32_t length) {
    uint8_t tripleKey[3 * kDesKeySize];
    for (size_t i = 0; i < sizeof tripleKey; ++i) tripleKey[i] = key[i % kDesKeySize];
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    int written = 0;
    const bool done =
        EVP_CipherInit_ex(context, cipher, nullptr, tripleKey, iv, encrypt) == 1 &&
        EVP_CIPHER_CTX_set_padding(context, 0) == 1 &&
        EVP_CipherUpdate(context, text, &written, text, static_cast<int>(length)) == 1;
    EVP_CIPHER_CTX_free(context);
    return done && written == static_cast<int>(length);
}

}  // namespace

struct CryptoLibraries::Loaded {};
CryptoLibraries::CryptoLibraries(uint32_t, uint32_t) {}
CryptoLibraries::~CryptoLibraries() = default;

struct CryptoSession::BackEnds {};
CryptoSession::CryptoSession() = default;
CryptoSession::~CryptoSession() = default;

bool CryptoSession::Hash(uint32_t authCode, const RepeatedBytes& input, ByteBuffer& digest) {
    digest.Clear();
    if (input.total == 0x100000) ++g_mebibyteHashes;
    if (authCode == kAuthSha224) return HashSha224(input, digest);
    const EVP_MD* type = DigestOf(authCode);
    if (!type) return false;
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    uint8_t value[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EVP_DigestInit_ex(context, type, nullptr);
    input.ForEach([&](const uint8_t* bytes, uint32_t count) {
        return EVP_DigestUpdate(context, bytes, count) == 1;
    });
    EVP_DigestFinal_ex(context, value, &size);
    EVP_MD_CTX_free(context);
    digest.Assign(value, static_cast<int32_t>(size));
    return true;
}

bool CryptoSession::Hmac(uint32_t authCode, const ByteBuffer& key, const uint8_t* message,
                         uint32_t length, ByteBuffer& mac) {
    mac.Clear();
    if (authCode == kAuthSha224) return HmacSha224(key.data, key.length, message, length, mac);
    const EVP_MD* type = DigestOf(authCode);
    if (!type) return false;
    uint8_t value[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    HMAC(type, key.data, static_cast<int>(key.length), message, length, value, &size);
    mac.Assign(value, static_cast<int32_t>(size));
    return true;
}

bool CryptoSession::DesEncryptBlock(const uint8_t (&key)[kDesKeySize],
                                    const uint8_t (&block)[kDesBlockSize],
                                    uint8_t (&cipher)[kDesBlockSize]) {
    for (size_t i = 0; i < kDesBlockSize; ++i) cipher[i] = block[i];
    return RunDes(EVP_des_ede3_ecb(), key, nullptr, true, cipher, kDesBlockSize);
}

bool CryptoSession::DesDecrypt(const uint8_t (&key)[kDesKeySize],
                               const uint8_t (&iv)[kDesBlockSize], const uint8_t* cipher,
                               uint32_t length, ByteBuffer& plain) {
    plain.Clear();
    if (length % kDesBlockSize != 0) {
        DebugLogA("Err %d\n", static_cast<int>(0x80090004));  // as the platform's library says it
        return false;
    }
    plain.Assign(cipher, static_cast<int32_t>(length));
    return RunDes(EVP_des_ede3_cbc(), key, iv, false, plain.data, length);
}

}  // namespace vndiscover
