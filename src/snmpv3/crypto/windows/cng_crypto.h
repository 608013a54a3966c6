// SHA-256, SHA-384, SHA-512 and their HMACs with CNG, which is loaded at run time.
#pragma once

#include <memory>

#include "snmp/codec/byte_buffer.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// Algorithms by number, which is the authentication code minus 2: 2 SHA-256, 3 SHA-384, 4 SHA-512.
// Failures are logged and leave the result empty. The library, and the provider of the last hash,
// stay open after their first use.
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
    struct Opened;
    Opened& Open();

    std::unique_ptr<Opened> opened_;
};

}  // namespace vndiscover
