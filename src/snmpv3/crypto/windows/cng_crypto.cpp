#include "snmpv3/crypto/windows/cng_crypto.h"

#include "snmpv3/crypto/windows/cng_library.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

struct CngAlgorithm {
    const wchar_t* name;
    ULONG digestSize;
};

// Null, and logged, for a number that is none.
const CngAlgorithm* FindAlgorithm(int32_t number) {
    static constexpr CngAlgorithm kAlgorithms[] = {
        {L"SHA256", 32}, {L"SHA384", 48}, {L"SHA512", 64}};
    if (number >= 2 && number <= 4) return &kAlgorithms[number - 2];
    DebugLogA("Not supported HashAlgorithm:%d\n", number);
    return nullptr;
}

bool RunHash(CngHash&& hash, const RepeatedBytes& input, ULONG digestSize, ByteBuffer& digest) {
    return input.ForEach([&](const uint8_t* bytes, uint32_t count) {
        return hash.Add(bytes, count);
    }) && hash.Finish(digestSize, digest);
}

}  // namespace

// What stays open between hashes.
struct CngCrypto::Kept {
    CngLibrary library;
    int32_t number = 0;                       // of the provider
    OwnedCngAlgorithm provider{nullptr, {}};  // closed before the library
};

CngCrypto::CngCrypto() = default;
CngCrypto::~CngCrypto() = default;

CngCrypto::Kept& CngCrypto::Open() {
    if (!kept_) kept_ = std::make_unique<Kept>();
    return *kept_;
}

bool CngCrypto::Hash(int32_t number, const RepeatedBytes& input, ByteBuffer& digest) {
    digest.Clear();
    const CngAlgorithm* algorithm = FindAlgorithm(number);
    if (!algorithm) return false;
    Kept& kept = Open();
    if (!kept.provider || kept.number != number) {
        kept.provider = kept.library.OpenAlgorithm(algorithm->name, 0);
        kept.number = number;
    }
    return kept.provider && RunHash(CngHash(kept.library, kept.provider.get(), nullptr), input,
                                    algorithm->digestSize, digest);
}

bool CngCrypto::Hmac(int32_t number, const ByteBuffer& key, const uint8_t* message, uint32_t length,
                     ByteBuffer& mac) {
    mac.Clear();
    const CngAlgorithm* algorithm = FindAlgorithm(number);
    if (!algorithm) return false;
    const CngLibrary& library = Open().library;
    const OwnedCngAlgorithm provider =
        library.OpenAlgorithm(algorithm->name, BCRYPT_ALG_HANDLE_HMAC_FLAG);
    return provider && RunHash(CngHash(library, provider.get(), &key), {message, length, length},
                               algorithm->digestSize, mac);
}

}  // namespace vndiscover
