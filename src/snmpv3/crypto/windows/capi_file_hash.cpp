#include "snmpv3/crypto/windows/capi_file_hash.h"

#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/windows/capi_crypto.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr DWORD kChunkBytes = 4096;

struct FileHandleTraits {
    using Value = HANDLE;
    static Value Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Value file) noexcept { CloseHandle(file); }
};
using OwnedFileHandle = Owned<FileHandleTraits>;

bool AddFile(HANDLE file, CapiHash& hash) {
    uint8_t chunk[kChunkBytes];
    for (;;) {
        DWORD count = 0;
        if (!ReadFile(file, chunk, sizeof chunk, &count, nullptr)) {
            DebugLogA("Error [%d] ReadFile failed.\n", LastErrorForLog());
            return false;
        }
        if (count == 0) return true;
        if (!hash.Add(chunk, count)) return false;
    }
}

}  // namespace

bool CapiHashFile(const char* path, ByteBuffer& digest) {
    digest.Clear();
    const OwnedFileHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr,
                                           OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) {
        DebugLogA("Error [%d] opening file %s.\n", LastErrorForLog(), path);
        return false;
    }
    const OwnedCryptProvider provider = OpenHashProvider(CRYPT_VERIFYCONTEXT);
    if (!provider) return false;
    CapiHash hash(provider.Get(), kAuthMd5);
    return AddFile(file.Get(), hash) && hash.Finish(digest);
}

}  // namespace vndiscover
