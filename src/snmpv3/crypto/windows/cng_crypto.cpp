#include "snmpv3/crypto/windows/cng_crypto.h"

#include "support/debug_log.h"
#include "support/secure_wipe.h"

namespace vndiscover {
namespace {

constexpr NTSTATUS kEntryPointNotFound = static_cast<NTSTATUS>(0xC0000139);
constexpr ULONG kMaxDigest = 64;

bool Failed(NTSTATUS status) { return status < 0; }

// 0 on failure.
ULONG ObjectSize(decltype(&BCryptGetProperty) getProperty, BCRYPT_ALG_HANDLE algorithm) {
    ULONG size = 0;
    ULONG written = 0;
    const NTSTATUS status = getProperty(algorithm, BCRYPT_OBJECT_LENGTH,
                                        reinterpret_cast<UCHAR*>(&size), sizeof size, &written, 0);
    if (!Failed(status)) return size;
    DebugLogA("**** Error 0x%x returned by BCryptGetProperty\n", static_cast<unsigned>(status));
    return 0;
}

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

CngLibrary::CngLibrary()
    : library_(kCngLibrary),
      openAlgorithm_(library_.Find<decltype(openAlgorithm_)>("BCryptOpenAlgorithmProvider")),
      closeAlgorithm_(library_.Find<decltype(closeAlgorithm_)>("BCryptCloseAlgorithmProvider")),
      getProperty_(library_.Find<decltype(getProperty_)>("BCryptGetProperty")),
      createHash_(library_.Find<decltype(createHash_)>("BCryptCreateHash")),
      hashData_(library_.Find<decltype(hashData_)>("BCryptHashData")),
      finishHash_(library_.Find<decltype(finishHash_)>("BCryptFinishHash")),
      destroyHash_(library_.Find<decltype(destroyHash_)>("BCryptDestroyHash")) {}

OwnedCngAlgorithm CngLibrary::OpenAlgorithm(const wchar_t* name, ULONG flags) const {
    const bool complete = openAlgorithm_ && closeAlgorithm_ && getProperty_ && createHash_ &&
                          hashData_ && finishHash_ && destroyHash_;
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    const NTSTATUS status =
        complete ? openAlgorithm_(&algorithm, name, nullptr, flags) : kEntryPointNotFound;
    if (Failed(status)) {
        DebugLogA("**** Error 0x%x returned by BCryptOpenAlgorithmProvider\n",
                  static_cast<unsigned>(status));
        algorithm = nullptr;
    }
    return OwnedCngAlgorithm(algorithm, CngAlgorithmCloser{closeAlgorithm_});
}

HeapBlock::HeapBlock(size_t size) noexcept
    : size_(size),
      memory_(size ? static_cast<uint8_t*>(HeapAlloc(GetProcessHeap(), 0, size)) : nullptr) {}

HeapBlock::~HeapBlock() {
    if (!memory_) return;
    SecureWipe(memory_, size_);
    HeapFree(GetProcessHeap(), 0, memory_);
}

CngHash::CngHash(const CngLibrary& library, BCRYPT_ALG_HANDLE algorithm, const ByteBuffer* hmacKey)
    : library_(library),
      object_(ObjectSize(library.getProperty_, algorithm)),
      hash_(nullptr, CngHashCloser{library.destroyHash_}) {
    if (!object_.Get()) return;
    BCRYPT_HASH_HANDLE hash = nullptr;
    const NTSTATUS status =
        library_.createHash_(algorithm, &hash, object_.Get(), object_.Size(),
                             hmacKey ? hmacKey->data : nullptr, hmacKey ? hmacKey->length : 0, 0);
    if (Failed(status)) {
        DebugLogA("**** Error 0x%x returned by BCryptCreateHash\n", static_cast<unsigned>(status));
        return;
    }
    hash_.reset(hash);
}

bool CngHash::Add(const uint8_t* bytes, uint32_t count) {
    if (!hash_) return false;
    // Not a const parameter, but only read.
    const NTSTATUS status = library_.hashData_(hash_.get(), const_cast<uint8_t*>(bytes), count, 0);
    if (!Failed(status)) return true;
    DebugLogA("**** Error 0x%x returned by BCryptHashData\n", static_cast<unsigned>(status));
    return false;
}

bool CngHash::Finish(ULONG digestSize, ByteBuffer& digest) {
    digest.Clear();
    if (!hash_) return false;
    uint8_t value[kMaxDigest];
    const WipeAtExit wipe(value);
    const NTSTATUS status = library_.finishHash_(hash_.get(), value, digestSize, 0);
    if (Failed(status)) {
        DebugLogA("**** Error 0x%x returned by BCryptFinishHash\n", static_cast<unsigned>(status));
        return false;
    }
    digest.Assign(value, static_cast<int32_t>(digestSize));
    return true;
}

const CngLibrary& CngCrypto::Library() {
    if (!library_) library_.emplace();
    return *library_;
}

bool CngCrypto::Hash(int32_t number, const RepeatedBytes& input, ByteBuffer& digest) {
    digest.Clear();
    const CngAlgorithm* algorithm = FindAlgorithm(number);
    if (!algorithm) return false;
    const CngLibrary& library = Library();
    if (!provider_ || number_ != number) {
        provider_ = library.OpenAlgorithm(algorithm->name, 0);
        number_ = number;
    }
    return provider_ && RunHash(CngHash(library, provider_.get(), nullptr), input,
                                algorithm->digestSize, digest);
}

bool CngCrypto::Hmac(int32_t number, const ByteBuffer& key, const uint8_t* message, uint32_t length,
                     ByteBuffer& mac) {
    mac.Clear();
    const CngAlgorithm* algorithm = FindAlgorithm(number);
    if (!algorithm) return false;
    const CngLibrary& library = Library();
    const OwnedCngAlgorithm provider =
        library.OpenAlgorithm(algorithm->name, BCRYPT_ALG_HANDLE_HMAC_FLAG);
    return provider && RunHash(CngHash(library, provider.get(), &key), {message, length, length},
                               algorithm->digestSize, mac);
}

}  // namespace vndiscover
