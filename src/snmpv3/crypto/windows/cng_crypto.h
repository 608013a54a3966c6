// SHA-256, SHA-384, SHA-512 and their HMACs with CNG, which is loaded at run time: older systems
// lack it and must still load this module.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"
#include "support/system_library.h"
#include "support/win.h"

#include <bcrypt.h>

namespace vndiscover {

constexpr wchar_t kCngLibrary[] = L"bcrypt.dll";

struct CngAlgorithmCloser {
    decltype(&BCryptCloseAlgorithmProvider) close;
    void operator()(void* algorithm) const noexcept { close(algorithm, 0); }
};
using OwnedCngAlgorithm = std::unique_ptr<void, CngAlgorithmCloser>;

struct CngHashCloser {
    decltype(&BCryptDestroyHash) close;
    void operator()(void* hash) const noexcept { close(hash); }
};
using OwnedCngHash = std::unique_ptr<void, CngHashCloser>;

class CngLibrary {
  public:
    CngLibrary();

    // Empty on failure, which is logged, even if the library or one of its functions is missing.
    OwnedCngAlgorithm OpenAlgorithm(const wchar_t* name, ULONG flags) const;

  private:
    friend class CngHash;
    SystemLibrary library_;
    decltype(&BCryptOpenAlgorithmProvider) openAlgorithm_;
    decltype(&BCryptCloseAlgorithmProvider) closeAlgorithm_;
    decltype(&BCryptGetProperty) getProperty_;
    decltype(&BCryptCreateHash) createHash_;
    decltype(&BCryptHashData) hashData_;
    decltype(&BCryptFinishHash) finishHash_;
    decltype(&BCryptDestroyHash) destroyHash_;
};

// Memory of the process heap, wiped before it is freed.
class HeapBlock {
  public:
    explicit HeapBlock(size_t size) noexcept;
    ~HeapBlock();
    HeapBlock(const HeapBlock&) = delete;
    HeapBlock& operator=(const HeapBlock&) = delete;

    uint8_t* Get() const noexcept { return memory_; }  // null if the heap is exhausted
    ULONG Size() const noexcept { return static_cast<ULONG>(size_); }

  private:
    size_t size_;
    uint8_t* memory_;
};

// One hash, or its HMAC if there is a key. Failures are logged.
class CngHash {
  public:
    CngHash(const CngLibrary& library, BCRYPT_ALG_HANDLE algorithm, const ByteBuffer* hmacKey);
    bool Add(const uint8_t* bytes, uint32_t count);
    bool Finish(ULONG digestSize, ByteBuffer& digest);

  private:
    const CngLibrary& library_;
    HeapBlock object_;  // holds the hash, and so outlives it
    OwnedCngHash hash_;
};

// Algorithms by number, which is the authentication code minus 2: 2 SHA-256, 3 SHA-384, 4 SHA-512.
// Failures are logged and leave the result empty. The library, and the provider of the last hash,
// stay open after their first use.
class CngCrypto {
  public:
    bool Hash(int32_t number, const RepeatedBytes& input, ByteBuffer& digest);
    bool Hmac(int32_t number, const ByteBuffer& key, const uint8_t* message, uint32_t length,
              ByteBuffer& mac);

  private:
    const CngLibrary& Library();

    std::optional<CngLibrary> library_;
    int32_t number_ = 0;                       // of the provider
    OwnedCngAlgorithm provider_{nullptr, {}};  // closed before the library
};

}  // namespace vndiscover
