// DES with CryptoAPI.
#include <cstring>
#include <utility>

#include "snmpv3/crypto/windows/capi_crypto.h"
#include "support/debug_log.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

bool Failed() {
    DebugLogA("Err %d\n", LastErrorForLog());
    return false;
}

// A DES key in a context of its own.
class DesKey {
  public:
    explicit DesKey(const uint8_t (&key)[kDesKeySize]) {
        if (!CryptAcquireContextA(provider_.Receive(), nullptr, MS_DEF_PROV_A, PROV_RSA_FULL,
                                  CRYPT_VERIFYCONTEXT)) {
            Failed();
            provider_.Release();
            return;
        }
        key_ = ImportPlainKey(provider_.Get(), CALG_DES, key, kDesKeySize, 0);
    }
    explicit operator bool() const { return static_cast<bool>(key_); }
    HCRYPTKEY Get() const { return key_.Get(); }

  private:
    OwnedCryptProvider provider_;  // outlives its key
    OwnedCryptKey key_;
};

}  // namespace

// Each block opens and closes its own key. The provider chains blocks, but with an IV of zero, so a
// single block is plain DES.
bool CryptoSession::DesEncryptBlock(const uint8_t (&key)[kDesKeySize],
                                    const uint8_t (&block)[kDesBlockSize],
                                    uint8_t (&cipher)[kDesBlockSize]) {
    const DesKey desKey(key);
    if (!desKey) return false;
    // The final call appends a block of padding, which is not used.
    BYTE buffer[2 * kDesBlockSize] = {};
    const WipeAtExit wipe(buffer);
    std::memcpy(buffer, block, kDesBlockSize);
    DWORD length = kDesBlockSize;
    if (!CryptEncrypt(desKey.Get(), 0, TRUE, 0, buffer, &length, sizeof buffer)) return Failed();
    std::memcpy(cipher, buffer, kDesBlockSize);
    return true;
}

// The call is not marked as the final one: that would require PKCS#5 padding, and reject or cut the
// zeros, counts and garbage that agents append to a scoped PDU. All blocks are decrypted either
// way.
bool CryptoSession::DesDecrypt(const uint8_t (&key)[kDesKeySize],
                               const uint8_t (&iv)[kDesBlockSize], const uint8_t* cipher,
                               uint32_t length, ByteBuffer& plain) {
    plain.Clear();
    const DesKey desKey(key);
    if (!desKey) return false;
    if (!CryptSetKeyParam(desKey.Get(), KP_IV, iv, 0)) return Failed();
    if (length % kDesBlockSize != 0) {  // not every provider checks
        SetLastError(static_cast<DWORD>(NTE_BAD_LEN));
        return Failed();
    }
    ByteBuffer buffer;
    buffer.Assign(cipher, static_cast<int32_t>(length));
    DWORD decrypted = length;
    if (!CryptDecrypt(desKey.Get(), 0, FALSE, 0, buffer.data, &decrypted)) return Failed();
    plain = std::move(buffer);
    return true;
}

}  // namespace vndiscover
