#include "check/crypto.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace check {
namespace {

// FIPS 180-4, 4.2.2 and 5.3.2.
constexpr uint32_t kRound[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};
using State = std::array<uint32_t, 8>;
constexpr State kSha224Start = {0xc1059ed8, 0x367cd507, 0x3070dd17, 0xf70e5939,
                                0xffc00b31, 0x68581511, 0x64f98fa7, 0xbefa4fa4};

uint32_t Rotated(uint32_t value, int by) { return value >> by | value << (32 - by); }

void Compress(State& state, const uint8_t* block) {
    uint32_t w[64];
    for (size_t i = 0; i < 16; ++i) {
        w[i] = uint32_t(block[4 * i]) << 24 | block[4 * i + 1] << 16 | block[4 * i + 2] << 8 |
               block[4 * i + 3];
    }
    for (int i = 16; i < 64; ++i) {
        const uint32_t a = w[i - 15], b = w[i - 2];
        w[i] = w[i - 16] + w[i - 7] + (Rotated(a, 7) ^ Rotated(a, 18) ^ a >> 3) +
               (Rotated(b, 17) ^ Rotated(b, 19) ^ b >> 10);
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (int i = 0; i < 64; ++i) {
        const uint32_t first = h + (Rotated(e, 6) ^ Rotated(e, 11) ^ Rotated(e, 25)) +
                               ((e & f) ^ (~e & g)) + kRound[i] + w[i];
        const uint32_t second =
            (Rotated(a, 2) ^ Rotated(a, 13) ^ Rotated(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
    }
    const State round = {a, b, c, d, e, f, g, h};
    for (size_t i = 0; i < state.size(); ++i) state[i] += round[i];
}

Bytes Sha224(Bytes message) {
    const uint64_t bits = uint64_t(message.size()) * 8;
    message.push_back(0x80);
    while (message.size() % 64 != 56) message.push_back(0);
    for (int shift = 56; shift >= 0; shift -= 8) message.push_back(uint8_t(bits >> shift));
    State state = kSha224Start;
    for (size_t at = 0; at < message.size(); at += 64) Compress(state, &message[at]);
    Bytes digest;
    for (int i = 0; i < 7; ++i) {
        for (int shift = 24; shift >= 0; shift -= 8) digest.push_back(uint8_t(state[i] >> shift));
    }
    return digest;
}

// A context that is kept while the program runs; 0 if the system has no such provider.
HCRYPTPROV Provider() {
    static const HCRYPTPROV provider = [] {
        HCRYPTPROV opened = 0;
        CryptAcquireContextA(&opened, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT);
        return opened;
    }();
    return provider;
}

// In the order of Digest.
constexpr ALG_ID kAlgorithms[] = {0,           CALG_MD5, CALG_SHA1, 0, CALG_SHA_256, CALG_SHA_384,
                                  CALG_SHA_512};

}  // namespace

HCRYPTKEY PlainKey(HCRYPTPROV provider, ALG_ID algorithm, const Bytes& key, DWORD flags) {
    struct Blob {
        BLOBHEADER header;
        DWORD size;
        BYTE key[64];
    } blob = {{PLAINTEXTKEYBLOB, CUR_BLOB_VERSION, 0, algorithm}, DWORD(key.size()), {}};
    if (key.size() > sizeof blob.key) return 0;
    std::memcpy(blob.key, key.data(), key.size());
    const DWORD size = DWORD(offsetof(Blob, key) + key.size());
    HCRYPTKEY imported = 0;
    CryptImportKey(provider, reinterpret_cast<const BYTE*>(&blob), size, 0, flags, &imported);
    return imported;
}

Bytes HashOf(Digest digest, const Bytes& message) {
    if (digest == Digest::kSha224) return Sha224(message);
    HCRYPTHASH hash = 0;
    Bytes value(64);
    DWORD size = DWORD(value.size());
    if (!CryptCreateHash(Provider(), kAlgorithms[size_t(digest)], 0, 0, &hash)) return {};
    const bool done = CryptHashData(hash, message.data(), DWORD(message.size()), 0) &&
                      CryptGetHashParam(hash, HP_HASHVAL, value.data(), &size, 0);
    CryptDestroyHash(hash);
    value.resize(done ? size : 0);
    return value;
}

Bytes HmacOf(Digest digest, Bytes key, const Bytes& message) {
    const size_t block = digest >= Digest::kSha384 ? 128 : 64;
    key.resize(block);
    Bytes inner = key, outer = key;
    for (uint8_t& byte : inner) byte ^= 0x36;
    for (uint8_t& byte : outer) byte ^= 0x5c;
    return HashOf(digest, Join({outer, HashOf(digest, Join({inner, message}))}));
}

Bytes LocalisedKey(Digest digest, const std::string& password, const Bytes& engineId) {
    Bytes repeated(1 << 20);
    for (size_t i = 0; i < repeated.size(); ++i) {
        repeated[i] = uint8_t(password[i % password.size()]);
    }
    const Bytes key = HashOf(digest, repeated);
    return HashOf(digest, Join({key, engineId, key}));
}

Bytes DesCbc(const Bytes& key, const Bytes& iv, Bytes input, bool encrypts) {
    const HCRYPTKEY imported = PlainKey(Provider(), CALG_DES, key, 0);
    DWORD length = DWORD(input.size());
    const bool done = imported && CryptSetKeyParam(imported, KP_IV, iv.data(), 0) &&
                      (encrypts ? CryptEncrypt(imported, 0, FALSE, 0, input.data(), &length, length)
                                : CryptDecrypt(imported, 0, FALSE, 0, input.data(), &length));
    if (imported) CryptDestroyKey(imported);
    return done ? input : Bytes();
}

Bytes AesCfb(const Bytes& key, const Bytes& iv, const Bytes& input, bool encrypts) {
    const HCRYPTKEY imported = PlainKey(Provider(), CALG_AES_128, key, 0);
    DWORD mode = CRYPT_MODE_ECB;
    if (!imported) return {};
    CryptSetKeyParam(imported, KP_MODE, reinterpret_cast<const BYTE*>(&mode), 0);
    Bytes output, chain = iv;
    for (size_t at = 0; at < input.size(); ++at) {
        if (at % 16 == 0) {
            DWORD length = 16;
            if (!CryptEncrypt(imported, 0, FALSE, 0, chain.data(), &length, 16)) break;
        }
        output.push_back(uint8_t(input[at] ^ chain[at % 16]));
        chain[at % 16] = encrypts ? output[at] : input[at];
    }
    CryptDestroyKey(imported);
    return output;
}

}  // namespace check
