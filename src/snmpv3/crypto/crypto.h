// Hashes, HMACs and DES, by authentication code. There are three back ends: CryptoAPI, CNG, and a
// SHA-224 of our own, which neither of these has.
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

    // Calls add(bytes, count) for each piece in turn until all were passed or it returns false.
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

// Keeps the libraries for these protocols loaded. Otherwise each message would load and free them,
// which takes longer than all its cryptography. A library that cannot be loaded is not logged here
// but where it is used.
class CryptoLibraries {
  public:
    CryptoLibraries(uint32_t authCode, uint32_t privCode);
    ~CryptoLibraries();

  private:
    struct Loaded;
    std::unique_ptr<Loaded> loaded_;
};

// Opens libraries and providers when they are first needed and keeps them open for one message,
// because opening can take longer than hashing. An operation that fails logs this, returns false
// and leaves the result empty. For one thread at a time.
class CryptoSession {
  public:
    CryptoSession();
    ~CryptoSession();

    bool Hash(uint32_t authCode, const RepeatedBytes& input, ByteBuffer& digest);
    bool Hash(uint32_t authCode, const ByteBuffer& input, ByteBuffer& digest) {
        return Hash(authCode, RepeatedBytes{input.data, input.length, input.length}, digest);
    }

    // The whole HMAC, which the sender truncates.
    bool Hmac(uint32_t authCode, const ByteBuffer& key, const uint8_t* message, uint32_t length,
              ByteBuffer& mac);

    // One block, without chaining.
    bool DesEncryptBlock(const uint8_t (&key)[kDesKeySize], const uint8_t (&block)[kDesBlockSize],
                         uint8_t (&cipher)[kDesBlockSize]);

    // CBC. Padding is neither checked nor removed, because agents pad in different ways. Fails
    // unless the length is a multiple of the block size.
    bool DesDecrypt(const uint8_t (&key)[kDesKeySize], const uint8_t (&iv)[kDesBlockSize],
                    const uint8_t* cipher, uint32_t length, ByteBuffer& plain);

  private:
    struct BackEnds;
    std::unique_ptr<BackEnds> backEnds_;
};

}  // namespace vndiscover
