// MD5, SHA-1 and their HMACs with CryptoAPI. Failures are logged and leave the result empty.
#pragma once

#include <cstdint>

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"
#include "support/owned.h"
#include "support/win.h"

#include <wincrypt.h>

namespace vndiscover {

struct CryptProviderTraits {
    using Value = HCRYPTPROV;
    static Value Empty() noexcept { return 0; }
    static void Close(Value provider) noexcept { CryptReleaseContext(provider, 0); }
};
using OwnedCryptProvider = Owned<CryptProviderTraits>;

using OwnedCryptHash = Owned<ClosedBy<HCRYPTHASH, CryptDestroyHash>>;
using OwnedCryptKey = Owned<ClosedBy<HCRYPTKEY, CryptDestroyKey>>;

// To be called right after the failing function.
inline int LastErrorForLog() noexcept { return static_cast<int>(GetLastError()); }

constexpr uint32_t kMaxPlainKey = 64;

// Imports a plain-text key. Empty on failure, which is logged, or if the key exceeds kMaxPlainKey
// bytes.
OwnedCryptKey ImportPlainKey(HCRYPTPROV provider, ALG_ID algorithm, const uint8_t* key,
                             uint32_t length, DWORD flags);

// One MD5 or SHA-1 hash, or its HMAC if there is a key.
class CapiHash {
  public:
    // authCode: kAuthMd5 or kAuthSha1.
    CapiHash(HCRYPTPROV provider, uint32_t authCode, HCRYPTKEY hmacKey = 0);
    bool Add(const uint8_t* bytes, uint32_t count);
    bool Finish(ByteBuffer& digest);

  private:
    uint32_t authCode_;
    OwnedCryptHash hash_;
};

// A context for hashes and HMACs; empty on failure.
OwnedCryptProvider OpenHashProvider(DWORD flags);

// Opens its context with the first hash and keeps it.
class CapiHasher {
  public:
    bool Hash(uint32_t authCode, const RepeatedBytes& input, ByteBuffer& digest);

  private:
    OwnedCryptProvider provider_;
};

bool CapiHmac(uint32_t authCode, const ByteBuffer& key, const uint8_t* message, uint32_t length,
              ByteBuffer& mac);

// The MD5 of a whole file. Nothing in the module calls it.
bool CapiHashFile(const char* path, ByteBuffer& digest);

}  // namespace vndiscover
