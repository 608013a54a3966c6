#include "snmpv3/crypto/sha224.h"

#include <algorithm>
#include <cstring>

#include "support/big_endian.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

constexpr uint32_t kInitial[8] = {0xc1059ed8, 0x367cd507, 0x3070dd17, 0xf70e5939,
                                  0xffc00b31, 0x68581511, 0x64f98fa7, 0xbefa4fa4};

constexpr uint32_t kRound[kSha224Rounds] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t RotateRight(uint32_t x, int count) { return (x >> count) | (x << (32 - count)); }

uint32_t LoadBigEndian(const uint8_t* bytes) {
    return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) |
           uint32_t{bytes[3]};
}

void ExpandSchedule(const uint8_t* block, uint32_t (&w)[kSha224Rounds]) {
    for (size_t t = 0; t < 16; ++t) w[t] = LoadBigEndian(block + 4 * t);
    for (size_t t = 16; t < kSha224Rounds; ++t) {
        const uint32_t a = w[t - 15];
        const uint32_t b = w[t - 2];
        const uint32_t sigma0 = RotateRight(a, 7) ^ RotateRight(a, 18) ^ (a >> 3);
        const uint32_t sigma1 = RotateRight(b, 17) ^ RotateRight(b, 19) ^ (b >> 10);
        w[t] = sigma1 + w[t - 7] + sigma0 + w[t - 16];
    }
}

// One of eight rounds, after which the working variables a to h are back in place: each round
// renames them by one place instead of moving them.
template <size_t Turn>
inline void Round(uint32_t (&v)[8], uint32_t addend) {
    const uint32_t a = v[(8 - Turn) % 8], b = v[(9 - Turn) % 8], c = v[(10 - Turn) % 8];
    const uint32_t e = v[(12 - Turn) % 8], f = v[(13 - Turn) % 8], g = v[(14 - Turn) % 8];
    uint32_t& d = v[(11 - Turn) % 8];
    uint32_t& h = v[(15 - Turn) % 8];
    h += (RotateRight(e, 6) ^ RotateRight(e, 11) ^ RotateRight(e, 25)) + (g ^ (e & (f ^ g))) +
         addend;
    d += h;
    h += (RotateRight(a, 2) ^ RotateRight(a, 13) ^ RotateRight(a, 22)) + ((a & b) | (c & (a | b)));
}

constexpr size_t kPadSize = 64;  // of RFC 2104: the block of the hash

void StartWithPad(Sha224& hash, const uint8_t* key, size_t keyLength, uint8_t filler) {
    uint8_t pad[kPadSize];
    const WipeAtExit wipe(pad);
    std::memset(pad, filler, sizeof pad);
    for (size_t i = 0; i < keyLength; ++i) pad[i] ^= key[i];
    hash.Update(pad, sizeof pad);
}

void Finish(Sha224& hash, ByteBuffer& digest) {
    uint8_t value[kSha224Size];
    const WipeAtExit wipe(value);
    hash.Final(value);
    digest.Assign(value, sizeof value);
}

}  // namespace

Sha224::Sha224() noexcept { std::memcpy(chain_, kInitial, sizeof chain_); }

Sha224::~Sha224() {
    SecureWipe(chain_, sizeof chain_);
    SecureWipe(block_, sizeof block_);
    SecureWipe(schedule_, sizeof schedule_);
}

void Sha224::Compress(const uint8_t* block) noexcept {
    uint32_t(&w)[kSha224Rounds] = schedule_;
    ExpandSchedule(block, w);
    uint32_t v[8];
    std::memcpy(v, chain_, sizeof v);
    for (size_t t = 0; t < kSha224Rounds; t += 8) {
        Round<0>(v, kRound[t] + w[t]);
        Round<1>(v, kRound[t + 1] + w[t + 1]);
        Round<2>(v, kRound[t + 2] + w[t + 2]);
        Round<3>(v, kRound[t + 3] + w[t + 3]);
        Round<4>(v, kRound[t + 4] + w[t + 4]);
        Round<5>(v, kRound[t + 5] + w[t + 5]);
        Round<6>(v, kRound[t + 6] + w[t + 6]);
        Round<7>(v, kRound[t + 7] + w[t + 7]);
    }
    for (int i = 0; i < 8; ++i) chain_[i] += v[i];
}

void Sha224::Update(const uint8_t* bytes, size_t count) noexcept {
    bitCount_ += uint64_t{count} * 8;
    while (count != 0) {
        if (used_ == 0 && count >= kBlockSize) {  // whole blocks need no copy
            Compress(bytes);
            bytes += kBlockSize;
            count -= kBlockSize;
            continue;
        }
        const size_t taken = std::min(count, kBlockSize - used_);
        std::memcpy(block_ + used_, bytes, taken);
        used_ += taken;
        bytes += taken;
        count -= taken;
        if (used_ == kBlockSize) {
            Compress(block_);
            used_ = 0;
        }
    }
}

void Sha224::Final(uint8_t (&digest)[kSha224Size]) noexcept {
    constexpr size_t kLengthAt = kBlockSize - 8;
    const uint64_t bitCount = bitCount_;  // Update counts the padding too
    static constexpr uint8_t kPadding[kBlockSize] = {0x80};
    const size_t padded = used_ < kLengthAt ? kLengthAt - used_ : kBlockSize + kLengthAt - used_;
    Update(kPadding, padded);
    uint8_t length[8];
    StoreBigEndian(bitCount, length);
    Update(length, sizeof length);
    for (size_t i = 0; i < kSha224Size / 4; ++i) StoreBigEndian(chain_[i], digest + 4 * i);
}

bool HashSha224(const RepeatedBytes& input, ByteBuffer& digest) {
    Sha224 hash;
    input.ForEach([&](const uint8_t* bytes, uint32_t count) {
        hash.Update(bytes, count);
        return true;
    });
    Finish(hash, digest);
    return true;
}

bool HmacSha224(const uint8_t* key, size_t keyLength, const uint8_t* message, size_t length,
                ByteBuffer& mac) {
    ByteBuffer shortened;
    if (keyLength > kPadSize) {
        HashSha224({key, keyLength, keyLength}, shortened);
        key = shortened.data;
        keyLength = shortened.length;
    }
    ByteBuffer innerDigest;
    Sha224 inner;
    StartWithPad(inner, key, keyLength, 0x36);
    inner.Update(message, length);
    Finish(inner, innerDigest);
    Sha224 outer;
    StartWithPad(outer, key, keyLength, 0x5c);
    outer.Update(innerDigest.data, innerDigest.length);
    Finish(outer, mac);
    return true;
}

}  // namespace vndiscover
