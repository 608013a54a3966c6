// SHA-224 (FIPS 180-4) and its HMAC (RFC 2104): SHA-256 with other initial values and the digest
// truncated to 28 bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

constexpr size_t kSha224Size = 28;
constexpr size_t kSha224Rounds = 64;

class Sha224 {
  public:
    Sha224() noexcept;
    ~Sha224();  // wipes its state
    Sha224(const Sha224&) = delete;
    Sha224& operator=(const Sha224&) = delete;

    void Update(const uint8_t* bytes, size_t count) noexcept;
    // May be called once, after all updates.
    void Final(uint8_t (&digest)[kSha224Size]) noexcept;

  private:
    static constexpr size_t kBlockSize = 64;
    void Compress(const uint8_t* block) noexcept;

    uint32_t chain_[8];
    uint64_t bitCount_ = 0;
    uint8_t block_[kBlockSize];
    size_t used_ = 0;                   // bytes waiting in block_
    uint32_t schedule_[kSha224Rounds];  // a member so that it is wiped once, not after each block
};

// Both always succeed.
bool HashSha224(const RepeatedBytes& input, ByteBuffer& digest);
bool HmacSha224(const uint8_t* key, size_t keyLength, const uint8_t* message, size_t length,
                ByteBuffer& mac);

}  // namespace vndiscover
