#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/windows/capi_crypto.h"
#include "snmpv3/crypto/windows/capi_key_blob.h"
#include "support/debug_log.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

ALG_ID AlgorithmOf(uint32_t authCode) { return authCode == kAuthMd5 ? CALG_MD5 : CALG_SHA1; }

}  // namespace

OwnedCryptProvider OpenHashProvider(DWORD flags) {
    OwnedCryptProvider provider;
    if (!CryptAcquireContextA(provider.Receive(), nullptr, MS_ENHANCED_PROV_A, PROV_RSA_FULL,
                              flags)) {
        DebugLogA("Error [%d] CryptAcquireConext failed.\n", LastErrorForLog());
        provider.Release();  // not a valid handle
    }
    return provider;
}

CapiHash::CapiHash(HCRYPTPROV provider, uint32_t authCode, HCRYPTKEY hmacKey)
    : authCode_(authCode) {
    const ALG_ID algorithm = AlgorithmOf(authCode);
    if (Create(provider, hmacKey ? CALG_HMAC : algorithm, hmacKey) && hmacKey) {
        ChooseHmac(algorithm);
    }
}

bool CapiHash::Create(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key) {
    if (CryptCreateHash(provider, algorithm, key, 0, hash_.Receive())) return true;
    const int error = LastErrorForLog();
    if (authCode_ == kAuthMd5) {
        DebugLogA("Error CALG_MD5 [%d] CryptCreateHash failed.\n", error);
    } else {
        DebugLogA("Error CALG_SHA1 [%d] CryptCreateHash failed.\n", error);
    }
    hash_.Release();
    return false;
}

void CapiHash::ChooseHmac(ALG_ID algorithm) {
    HMAC_INFO info = {};
    info.HashAlgid = algorithm;
    if (CryptSetHashParam(hash_.Get(), HP_HMAC_INFO, reinterpret_cast<const BYTE*>(&info), 0)) {
        return;
    }
    DebugLogA("Err %d\n", LastErrorForLog());
    hash_.Reset();
}

bool CapiHash::Add(const uint8_t* bytes, uint32_t count) {
    if (!hash_) return false;
    if (CryptHashData(hash_.Get(), bytes, count, 0)) return true;
    const int error = LastErrorForLog();
    if (authCode_ == kAuthMd5) {
        DebugLogA("Error [%d] CryptHashData failed.\n", error);
    } else {
        DebugLogA("Error CALG_SHA1 [%d] CryptHashData failed.\n", error);
    }
    return false;
}

bool CapiHash::Finish(ByteBuffer& digest) {
    digest.Clear();
    if (!hash_) return false;
    BYTE value[20];  // SHA-1's; MD5's is shorter
    const WipeAtExit wipe(value);
    DWORD size = sizeof value;
    if (!CryptGetHashParam(hash_.Get(), HP_HASHVAL, value, &size, 0)) {
        DebugLogA("Error [%d] CryptGetHashParam failed.\n", LastErrorForLog());
        return false;
    }
    digest.Assign(value, static_cast<int32_t>(size));
    return true;
}

bool CapiHasher::Hash(uint32_t authCode, const RepeatedBytes& input, ByteBuffer& digest) {
    digest.Clear();
    if (!provider_) provider_ = OpenHashProvider(CRYPT_VERIFYCONTEXT);
    if (!provider_) return false;
    CapiHash hash(provider_.Get(), authCode);
    return input.ForEach([&](const uint8_t* bytes, uint32_t count) {
        return hash.Add(bytes, count);
    }) && hash.Finish(digest);
}

bool CapiHmac(uint32_t authCode, const ByteBuffer& key, const uint8_t* message, uint32_t length,
              ByteBuffer& mac) {
    mac.Clear();
    // Without a container name, no key container is opened or created.
    const OwnedCryptProvider provider = OpenHashProvider(CRYPT_VERIFYCONTEXT | CRYPT_NEWKEYSET);
    if (!provider) return false;
    // RC2 accepts a key of any bytes; the flag lifts its limit of 16.
    const OwnedCryptKey hmacKey =
        ImportPlainKey(provider.Get(), CALG_RC2, key.data, key.length, CRYPT_IPSEC_HMAC_KEY);
    if (!hmacKey) return false;
    CapiHash hash(provider.Get(), authCode, hmacKey.Get());
    return hash.Add(message, length) && hash.Finish(mac);
}

}  // namespace vndiscover
