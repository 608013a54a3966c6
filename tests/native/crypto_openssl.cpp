// The crypto interface with libcrypto, for systems without CryptoAPI and CNG.
#include "snmpv3/crypto/crypto.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <iterator>
#include <vector>

#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/sha224.h"
#include "support/debug_log.h"

namespace vndiscover {

int g_mebibyteHashes = 0;  // one for each password's key

namespace {

const EVP_MD* DigestOf(uint32_t authCode) {
    static const char* const kNames[] = {"", "MD5", "SHA1", "", "SHA256", "SHA384", "SHA512"};
    if (authCode < std::size(kNames) && *kNames[authCode]) {
        return EVP_get_digestbyname(kNames[authCode]);
    }
    DebugLogA("Not supported HashAlgorithm:%d\n", static_cast<int>(authCode - 2));
    return nullptr;
}

// DES as triple DES with three equal keys, which libcrypto has without its legacy provider.
bool RunDes(bool encrypt, const uint8_t* key, const uint8_t* iv, const uint8_t* in, uint32_t length,
            uint8_t* out) {
    uint8_t tripleKey[3 * kDesKeySize];
    for (size_t i = 0; i < sizeof tripleKey; ++i) tripleKey[i] = key[i % kDesKeySize];
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EVP_CipherInit_ex(context, EVP_des_ede3_cbc(), nullptr, tripleKey, iv, encrypt);
    const int done = EVP_Cipher(context, out, in, length);
    EVP_CIPHER_CTX_free(context);
    return done > 0;
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
    std::vector<uint8_t> whole;
    input.ForEach([&](const uint8_t* bytes, uint32_t count) {
        whole.insert(whole.end(), bytes, bytes + count);
        return true;
    });
    uint8_t value[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EVP_Digest(whole.data(), whole.size(), value, &size, type, nullptr);
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
    const uint8_t zeros[kDesBlockSize] = {};
    return RunDes(true, key, zeros, block, kDesBlockSize, cipher);
}

bool CryptoSession::DesDecrypt(const uint8_t (&key)[kDesKeySize],
                               const uint8_t (&iv)[kDesBlockSize], const uint8_t* cipher,
                               uint32_t length, ByteBuffer& plain) {
    plain.Clear();
    if (length % kDesBlockSize != 0) {
        DebugLogA("Err %d\n", static_cast<int>(0x80090004));  // as CryptoAPI reports it
        return false;
    }
    plain.Assign(cipher, static_cast<int32_t>(length));
    return RunDes(false, key, iv, plain.data, length, plain.data);
}

}  // namespace vndiscover
