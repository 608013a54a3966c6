// Owners of CryptoAPI handles, and its error codes for the log.
#pragma once

#include "support/owned.h"
#include "support/win.h"

#include <wincrypt.h>

namespace vndiscover {

struct CryptProviderTraits {
    using Value = HCRYPTPROV;
    static Value Empty() noexcept { return 0; }
    static void Close(Value provider) noexcept { CryptReleaseContext(provider, 0); }
};
using OwnedCryptProvider = Owned<CryptProviderTraits>;

struct CryptHashTraits {
    using Value = HCRYPTHASH;
    static Value Empty() noexcept { return 0; }
    static void Close(Value hash) noexcept { CryptDestroyHash(hash); }
};
using OwnedCryptHash = Owned<CryptHashTraits>;

struct CryptKeyTraits {
    using Value = HCRYPTKEY;
    static Value Empty() noexcept { return 0; }
    static void Close(Value key) noexcept { CryptDestroyKey(key); }
};
using OwnedCryptKey = Owned<CryptKeyTraits>;

// To be called right after the failing function.
inline int LastErrorForLog() noexcept { return static_cast<int>(GetLastError()); }

}  // namespace vndiscover
