// Imports plain-text keys into CryptoAPI.
#pragma once

#include <cstdint>

#include "snmpv3/crypto/windows/capi_handles.h"

namespace vndiscover {

constexpr uint32_t kMaxPlainKey = 64;

// Empty on failure, which is logged, or if the key exceeds kMaxPlainKey bytes.
OwnedCryptKey ImportPlainKey(HCRYPTPROV provider, ALG_ID algorithm, const uint8_t* key,
                             uint32_t length, DWORD flags);

}  // namespace vndiscover
