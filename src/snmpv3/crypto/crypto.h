// Hashes, HMACs and DES, by authentication code. Three back ends stand behind it: the platform's
// older and newer crypto libraries, and SHA-224 of our own, which neither of them has.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

constexpr size_t kDesBlockSize = 8;
constexpr size_t kDesKeySize = 8;

// The first `total` bytes of `unit` written over and over.
struct RepeatedBytes {
    const uint8_t* unit;
    size_t unitLength;  // at least 1, unless total is 0
    size_t total;

    // Calls add(bytes, count) for one piece after the other until all were given or it returns
    // false.
    template <class Add>
    bool ForEach(Add&& add) const {
        for (size_t rest = total; rest != 0;) {
            const size_t count = rest < unitLength ? rest : unitLength;
            if (!add(unit, static_cast<uint32_t>(count))) return false;
            rest -= count;
        }
        return true;
    }
};

// Keeps loaded what sessions load for these protocols. The platform would else load and free it for
// each message, which costs more than all that the message needs it for. Silent: what cannot be
// loaded fails, and is logged, where it is used.
class CryptoLibraries {
  public:
    CryptoLibraries(uint32_t authCode, uint32_t privCode);
    ~CryptoLibraries();
    CryptoLibraries(const CryptoLibraries&) = delete;
    CryptoLibraries& operator=(const CryptoLibraries&) = delete;

  private:
    struct Loaded;
    std::unique_ptr<Loaded> loaded_;
};

// Keeps open what was opened for the first operation, so that a message loads and opens it once:
// opening can cost more than hashing. Every operation logs its own failure, returns false and
// leaves the result empty. Not for two threads at once.
class CryptoSession {
  public:
    CryptoSession();
    ~CryptoSession();
    CryptoSession(const CryptoSession&) = delete;
    CryptoSession& operator=(const CryptoSession&) = delete;

    bool Hash(uint32_t authCode, const RepeatedBytes& input, ByteBuffer& digest);
    bool Hash(uint32_t authCode, const ByteBuffer& input, ByteBuffer& digest) {
        return Hash(authCode, RepeatedBytes{input.data, input.length, input.length}, digest);
    }

    // The whole HMAC; its sender cuts it.
    bool Hmac(uint32_t authCode, const ByteBuffer& key, const uint8_t* message, uint32_t length,
              ByteBuffer& mac);

    // One block, without chaining.
    bool DesEncryptBlock(const uint8_t (&key)[kDesKeySize], const uint8_t (&block)[kDesBlockSize],
                         uint8_t (&cipher)[kDesBlockSize]);

    // CBC. No padding is checked or removed: agents pad as they like. What is not whole blocks
    // fails.
    bool DesDecrypt(const uint8_t (&key)[kDesKeySize], const uint8_t (&iv)[kDesBlockSize],
                    const uint8_t* cipher, uint32_t length, ByteBuffer& plain);

  private:
    struct BackEnds;
    std::unique_ptr<BackEnds> backEnds_;
};

}  // namespace vndiscover
