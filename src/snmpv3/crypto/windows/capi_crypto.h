// MD5, SHA-1, their HMACs and DES with CryptoAPI. Failures are logged and leave the result empty.
#pragma once

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/windows/capi_handles.h"

namespace vndiscover {

// One MD5 or SHA-1 hash, or its HMAC if there is a key.
class CapiHash {
  public:
    // authCode: kAuthMd5 or kAuthSha1.
    CapiHash(HCRYPTPROV provider, uint32_t authCode, HCRYPTKEY hmacKey = 0);
    bool Add(const uint8_t* bytes, uint32_t count);
    bool Finish(ByteBuffer& digest);

  private:
    bool Create(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key);
    void ChooseHmac(ALG_ID algorithm);

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

bool CapiDesEncryptBlock(const uint8_t (&key)[kDesKeySize], const uint8_t (&block)[kDesBlockSize],
                         uint8_t (&cipher)[kDesBlockSize]);

bool CapiDesDecrypt(const uint8_t (&key)[kDesKeySize], const uint8_t (&iv)[kDesBlockSize],
                    const uint8_t* cipher, uint32_t length, ByteBuffer& plain);

}  // namespace vndiscover
