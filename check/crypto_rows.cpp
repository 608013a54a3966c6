// CryptoAPI and CNG, called with the module's providers, algorithms and flags. The expected results
// are those of FIPS 81, RFC 2202, FIPS 180-4 and RFC 4231.
#include "check/windows_headers.h"

#include <bcrypt.h>

#include <cstring>

#include "check/crypto.h"
#include "check/rows.h"

namespace check {
namespace {

std::string HexOf(const BYTE* bytes, size_t size) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

std::string Error(const char* step) {
    return std::string(step) + ", error " + Number(GetLastError());
}

struct Provider {
    HCRYPTPROV handle = 0;
    Provider(const char* name, DWORD flags) {
        CryptAcquireContextA(&handle, nullptr, name, PROV_RSA_FULL, flags);
    }
    ~Provider() {
        if (handle) CryptReleaseContext(handle, 0);
    }
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;
};

const Bytes kDesKey = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};

std::string DesBlock() {
    const Provider provider(MS_DEF_PROV_A, CRYPT_VERIFYCONTEXT);
    const HCRYPTKEY key = PlainKey(provider.handle, CALG_DES, kDesKey, 0);
    if (!key) return Error("import");
    BYTE block[16] = {'N', 'o', 'w', ' ', 'i', 's', ' ', 't'};
    DWORD length = 8;
    const bool done = CryptEncrypt(key, 0, TRUE, 0, block, &length, sizeof block) != 0;
    std::string text = done ? HexOf(block, 8) : Error("encrypt");
    CryptDestroyKey(key);
    return text;
}

// Two blocks without padding, which the final flag would require.
std::string DesDecryption() {
    const Provider provider(MS_DEF_PROV_A, CRYPT_VERIFYCONTEXT);
    const HCRYPTKEY key = PlainKey(provider.handle, CALG_DES, kDesKey, 0);
    if (!key) return Error("import");
    const BYTE iv[8] = {0x12, 0x34, 0x56, 0x78, 0x90, 0xAB, 0xCD, 0xEF};
    BYTE text[16] = {0xE5, 0xC7, 0xCD, 0xDE, 0x87, 0x2B, 0xF2, 0x7C,
                     0x43, 0xE9, 0x34, 0x00, 0x8C, 0x38, 0x9C, 0x0F};
    DWORD length = sizeof text;
    const bool done =
        CryptSetKeyParam(key, KP_IV, iv, 0) && CryptDecrypt(key, 0, FALSE, 0, text, &length);
    std::string seen = done ? std::string(text, text + length) : Error("decrypt");
    CryptDestroyKey(key);
    return seen;
}

std::string OlderHmac(ALG_ID algorithm, const Bytes& key) {
    const Provider provider(MS_ENHANCED_PROV_A, CRYPT_VERIFYCONTEXT | CRYPT_NEWKEYSET);
    if (!provider.handle) return Error("provider");
    const HCRYPTKEY imported = PlainKey(provider.handle, CALG_RC2, key, CRYPT_IPSEC_HMAC_KEY);
    if (!imported) return Error("import");
    HCRYPTHASH hash = 0;
    HMAC_INFO info = {};
    info.HashAlgid = algorithm;
    BYTE value[20];
    DWORD size = sizeof value;
    const bool done = CryptCreateHash(provider.handle, CALG_HMAC, imported, 0, &hash) &&
                      CryptSetHashParam(hash, HP_HMAC_INFO, reinterpret_cast<BYTE*>(&info), 0) &&
                      CryptHashData(hash, reinterpret_cast<const BYTE*>("Hi There"), 8, 0) &&
                      CryptGetHashParam(hash, HP_HASHVAL, value, &size, 0);
    std::string text = done ? HexOf(value, size) : Error("hash");
    if (hash) CryptDestroyHash(hash);
    CryptDestroyKey(imported);
    return text;
}

// The first eight bytes of the hash, or of the HMAC if there is a key.
std::string NewerHash(const wchar_t* name, const char* key, const char* message) {
    const ULONG flags = key ? BCRYPT_ALG_HANDLE_HMAC_FLAG : 0;
    const auto bytes = [](const char* text) {
        return reinterpret_cast<UCHAR*>(const_cast<char*>(text));
    };
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
    UCHAR value[64];
    ULONG size = 0, written = 0;
    const auto getSize = [&] {
        return BCryptGetProperty(algorithm, BCRYPT_HASH_LENGTH, reinterpret_cast<UCHAR*>(&size),
                                 sizeof size, &written, 0);
    };
    NTSTATUS status = BCryptOpenAlgorithmProvider(&algorithm, name, nullptr, flags);
    if (status == 0) status = getSize();
    if (status == 0) {
        status = BCryptCreateHash(algorithm, &hash, nullptr, 0, key ? bytes(key) : nullptr,
                                  key ? ULONG(strlen(key)) : 0, 0);
    }
    if (status == 0) status = BCryptHashData(hash, bytes(message), ULONG(strlen(message)), 0);
    if (status == 0) status = BCryptFinishHash(hash, value, size, 0);
    if (hash) BCryptDestroyHash(hash);
    if (algorithm) BCryptCloseAlgorithmProvider(algorithm, 0);
    return status == 0 ? HexOf(value, 8) : "status " + Number(status);
}

}  // namespace

void CryptoRows(Report& report) {
    report.Section("Crypto libraries");
    report.Add("DES, one block, padded", "3fa40e8a984d4815", DesBlock());
    report.Add("DES-CBC, decryption without padding", "Now is the time ", DesDecryption());
    report.Add("HMAC-MD5 with a plain key", "9294727a3638bb1c13f48ef8158bfc9d",
               OlderHmac(CALG_MD5, Bytes(16, 0x0B)));
    report.Add("HMAC-SHA-1 with a plain key of 20 bytes",
               "b617318655057264e28bc0b6fb378c8ef146be00", OlderHmac(CALG_SHA1, Bytes(20, 0x0B)));
    struct {
        const wchar_t* name;
        const char *label, *hash, *hmac;
    } const kNewer[] = {{L"SHA256", "SHA-256", "ba7816bf8f01cfea", "5bdcc146bf60754e"},
                        {L"SHA384", "SHA-384", "cb00753f45a35e8b", "af45d2e376484031"},
                        {L"SHA512", "SHA-512", "ddaf35a193617aba", "164b7a7bfcf819e2"}};
    for (const auto& row : kNewer) {
        report.Add(row.label, row.hash, NewerHash(row.name, nullptr, "abc"));
        report.Add(std::string("HMAC-") + row.label, row.hmac,
                   NewerHash(row.name, "Jefe", "what do ya want for nothing?"));
    }
}

}  // namespace check
