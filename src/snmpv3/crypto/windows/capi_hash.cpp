#include <cstddef>
#include <cstring>

#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/windows/capi_crypto.h"
#include "support/debug_log.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

constexpr DWORD kChunkBytes = 4096;

struct FileHandleTraits {
    using Value = HANDLE;
    static Value Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Value file) noexcept { CloseHandle(file); }
};
using OwnedFileHandle = Owned<FileHandleTraits>;

bool AddFile(HANDLE file, CapiHash& hash) {
    uint8_t chunk[kChunkBytes];
    for (;;) {
        DWORD count = 0;
        if (!ReadFile(file, chunk, sizeof chunk, &count, nullptr)) {
            DebugLogA("Error [%d] ReadFile failed.\n", LastErrorForLog());
            return false;
        }
        if (count == 0) return true;
        if (!hash.Add(chunk, count)) return false;
    }
}

struct PlainKeyBlob {
    BLOBHEADER header;
    DWORD length;
    BYTE key[kMaxPlainKey];
};

}  // namespace

OwnedCryptKey ImportPlainKey(HCRYPTPROV provider, ALG_ID algorithm, const uint8_t* key,
                             uint32_t length, DWORD flags) {
    OwnedCryptKey imported;
    if (length > kMaxPlainKey) return imported;
    PlainKeyBlob blob = {};
    const WipeAtExit wipe(blob);
    blob.header.bType = PLAINTEXTKEYBLOB;
    blob.header.bVersion = CUR_BLOB_VERSION;
    blob.header.aiKeyAlg = algorithm;
    blob.length = length;
    std::memcpy(blob.key, key, length);
    const DWORD size = static_cast<DWORD>(offsetof(PlainKeyBlob, key)) + length;
    if (!CryptImportKey(provider, reinterpret_cast<const BYTE*>(&blob), size, 0, flags,
                        imported.Receive())) {
        DebugLogA("Err %d\n", LastErrorForLog());
        imported.Release();  // not a valid handle
    }
    return imported;
}

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
    HMAC_INFO info = {};
    info.HashAlgid = authCode == kAuthMd5 ? CALG_MD5 : CALG_SHA1;
    if (!CryptCreateHash(provider, hmacKey ? CALG_HMAC : info.HashAlgid, hmacKey, 0,
                         hash_.Receive())) {
        const int error = LastErrorForLog();
        if (authCode_ == kAuthMd5) {
            DebugLogA("Error CALG_MD5 [%d] CryptCreateHash failed.\n", error);
        } else {
            DebugLogA("Error CALG_SHA1 [%d] CryptCreateHash failed.\n", error);
        }
        hash_.Release();  // not a valid handle
    } else if (hmacKey && !CryptSetHashParam(hash_.Get(), HP_HMAC_INFO,
                                             reinterpret_cast<const BYTE*>(&info), 0)) {
        DebugLogA("Err %d\n", LastErrorForLog());
        hash_.Reset();
    }
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

bool CapiHashFile(const char* path, ByteBuffer& digest) {
    digest.Clear();
    const OwnedFileHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr,
                                           OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) {
        DebugLogA("Error [%d] opening file %s.\n", LastErrorForLog(), path);
        return false;
    }
    const OwnedCryptProvider provider = OpenHashProvider(CRYPT_VERIFYCONTEXT);
    if (!provider) return false;
    CapiHash hash(provider.Get(), kAuthMd5);
    return AddFile(file.Get(), hash) && hash.Finish(digest);
}

}  // namespace vndiscover
