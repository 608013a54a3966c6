#include "snmpv3/crypto/windows/capi_key_blob.h"

#include <cstddef>
#include <cstring>

#include "support/debug_log.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

struct PlainKeyBlob {
    BLOBHEADER header;
    DWORD length;
    BYTE key[kMaxPlainKey];
};

}  // namespace

OwnedCryptKey ImportPlainKey(HCRYPTPROV provider, ALG_ID algorithm, const uint8_t* key,
                             uint32_t length, DWORD flags) {
    OwnedCryptKey imported;
    if (length > kMaxPlainKey) return imported;
    PlainKeyBlob blob = {};
    const WipeAtExit wipe(blob);
    blob.header.bType = PLAINTEXTKEYBLOB;
    blob.header.bVersion = CUR_BLOB_VERSION;
    blob.header.aiKeyAlg = algorithm;
    blob.length = length;
    std::memcpy(blob.key, key, length);
    const DWORD size = static_cast<DWORD>(offsetof(PlainKeyBlob, key)) + length;
    if (!CryptImportKey(provider, reinterpret_cast<const BYTE*>(&blob), size, 0, flags,
                        imported.Receive())) {
        DebugLogA("Err %d\n", LastErrorForLog());
        imported.Release();  // not a valid handle
    }
    return imported;
}

}  // namespace vndiscover
