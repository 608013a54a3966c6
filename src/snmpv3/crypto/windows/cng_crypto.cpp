#include "snmpv3/crypto/windows/cng_crypto.h"

#include "snmpv3/crypto/windows/cng_library.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

struct CngAlgorithm {
    const wchar_t* name;
    ULONG digestSize;
};

// Null for an unknown number, which is logged.
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

// Stays open between hashes.
struct CngCrypto::Opened {
    CngLibrary library;
    int32_t number = 0;                       // of the provider
    OwnedCngAlgorithm provider{nullptr, {}};  // closed before the library
};

CngCrypto::CngCrypto() = default;
CngCrypto::~CngCrypto() = default;

CngCrypto::Opened& CngCrypto::Open() {
    if (!opened_) opened_ = std::make_unique<Opened>();
    return *opened_;
}

bool CngCrypto::Hash(int32_t number, const RepeatedBytes& input, ByteBuffer& digest) {
    digest.Clear();
    const CngAlgorithm* algorithm = FindAlgorithm(number);
    if (!algorithm) return false;
    Opened& opened = Open();
    if (!opened.provider || opened.number != number) {
        opened.provider = opened.library.OpenAlgorithm(algorithm->name, 0);
        opened.number = number;
    }
    return opened.provider && RunHash(CngHash(opened.library, opened.provider.get(), nullptr),
                                      input, algorithm->digestSize, digest);
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
