// The agents' side of SNMPv3: hashes and ciphers of CryptoAPI, but with another provider and other
// calls than the module's; SHA-224, which it lacks, is implemented here.
#pragma once

#include "check/windows_headers.h"

#include <wincrypt.h>

#include "check/ber.h"

namespace check {

enum class Digest { kNone, kMd5, kSha1, kSha224, kSha256, kSha384, kSha512 };

Bytes HashOf(Digest digest, const Bytes& message);
Bytes HmacOf(Digest digest, Bytes key, const Bytes& message);
// RFC 3414, A.2: a password's key for one engine.
Bytes LocalisedKey(Digest digest, const std::string& password, const Bytes& engineId);

// 0 if it cannot be imported.
HCRYPTKEY PlainKey(HCRYPTPROV provider, ALG_ID algorithm, const Bytes& key, DWORD flags);
Bytes DesCbc(const Bytes& key, const Bytes& iv, Bytes input, bool encrypts);
Bytes AesCfb(const Bytes& key, const Bytes& iv, const Bytes& input, bool encrypts);

}  // namespace check
