#pragma once

#include "snmpv3/crypto/keys.h"

namespace vndiscover {

// A password's localised key, without a cache.
inline ByteBuffer PasswordToKey(CryptoSession& crypto, uint32_t authCode,
                                const ByteBuffer& password, const ByteBuffer& engineId) {
    return PasswordKeys().LocalisedKey(crypto, authCode, password, engineId);
}

}  // namespace vndiscover
