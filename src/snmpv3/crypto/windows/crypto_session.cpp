// Chooses the back end for each operation.
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/sha224.h"
#include "snmpv3/crypto/windows/capi_crypto.h"
#include "snmpv3/crypto/windows/cng_crypto.h"

namespace vndiscover {
namespace {

// Codes without a hash get numbers that CngCrypto rejects and logs.
int32_t CngNumber(uint32_t authCode) { return static_cast<int32_t>(authCode - 2); }

bool UsesCapi(uint32_t authCode, uint32_t privCode) {
    return authCode == kAuthMd5 || authCode == kAuthSha1 || privCode == kPrivDes;
}

bool UsesCng(uint32_t authCode) { return authCode >= kAuthSha256 && authCode <= kAuthSha512; }

}  // namespace

// CryptoAPI itself is part of advapi32; it loads its provider for each context.
struct CryptoLibraries::Loaded {
    SystemLibrary capi, cng;
};

CryptoLibraries::CryptoLibraries(uint32_t authCode, uint32_t privCode)
    : loaded_(std::make_unique<Loaded>()) {
    if (UsesCapi(authCode, privCode)) loaded_->capi = SystemLibrary(L"rsaenh.dll");
    if (UsesCng(authCode)) loaded_->cng = SystemLibrary(kCngLibrary);
}
CryptoLibraries::~CryptoLibraries() = default;

struct CryptoSession::BackEnds {
    CapiHasher capi;
    CngCrypto cng;
};

CryptoSession::CryptoSession() : backEnds_(std::make_unique<BackEnds>()) {}
CryptoSession::~CryptoSession() = default;

bool CryptoSession::Hash(uint32_t authCode, const RepeatedBytes& input, ByteBuffer& digest) {
    switch (authCode) {
        case kAuthMd5:
        case kAuthSha1:
            return backEnds_->capi.Hash(authCode, input, digest);
        case kAuthSha224:
            return HashSha224(input, digest);
        default:
            return backEnds_->cng.Hash(CngNumber(authCode), input, digest);
    }
}

bool CryptoSession::Hmac(uint32_t authCode, const ByteBuffer& key, const uint8_t* message,
                         uint32_t length, ByteBuffer& mac) {
    switch (authCode) {
        case kAuthMd5:
        case kAuthSha1:
            return CapiHmac(authCode, key, message, length, mac);
        case kAuthSha224:
            return HmacSha224(key.data, key.length, message, length, mac);
        default:
            return backEnds_->cng.Hmac(CngNumber(authCode), key, message, length, mac);
    }
}

}  // namespace vndiscover
