// SHA-256, SHA-384, SHA-512 and their HMACs by the newer crypto library, which is looked up at run
// time.
#pragma once

#include <memory>

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// Algorithms by number: 2 SHA-256, 3 SHA-384, 4 SHA-512, the authentication code minus 2. Failures
// are logged; the result is then left empty. Keeps the library, and the provider of the last hash,
// from the first use on.
class CngCrypto {
  public:
    CngCrypto();
    ~CngCrypto();
    CngCrypto(const CngCrypto&) = delete;
    CngCrypto& operator=(const CngCrypto&) = delete;

    bool Hash(int32_t number, const RepeatedBytes& input, ByteBuffer& digest);
    bool Hmac(int32_t number, const ByteBuffer& key, const uint8_t* message, uint32_t length,
              ByteBuffer& mac);

  private:
    struct Kept;
    Kept& Open();

    std::unique_ptr<Kept> kept_;
};

}  // namespace vndiscover
