#include "snmpv3/crypto/keys.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#ifndef _WIN32
#include "native/crypto_openssl.h"
#endif
#include "snmpv3/crypto/protocol_codes.h"

namespace vndiscover {
namespace {

Bytes KeyOf(uint32_t authCode, const Bytes& password) {
    CryptoSession crypto;
    return ToBytes(PasswordToKey(crypto, authCode, ToBuffer(password),
                                 ToBuffer(Hex("00 00 00 00 00 00 00 00 00 00 00 02"))));
}

// RFC 3414 A.3.1 and A.3.2; the others computed with Python's hashlib.
TEST(Keys, MapleSyrupGivesTheKnownKeys) {
    const char* const keys[] = {"526f5eed9fcce26f8964c2930787d82b",
                                "6695febc9288e36282235fc7151f128497b38f3f",
                                "0bd8827c6e29f8065e08e09237f177e410f69b90e1782be682075674",
                                "8982e0e549e866db361a6b625d84cccc11162d453ee8ce3a6445c2d6776f0f8b",
                                "3b298f16164a11184279d5432bf169e2d2a48307de02b3d3f7e2b4f36eb6f045"
                                "5a53689a3937eea07319a633d2ccba78",
                                "22a5a36cedfcc085807a128d7bc6c2382167ad6c0dbc5fdff856740f3d84c099"
                                "ad1ea87a8db096714d9788bd544047c9021e4229ce27e4c0a69250adfcffbb0b"};
    uint32_t code = kAuthMd5;
    for (const char* key : keys) EXPECT_EQ(Hex(key), KeyOf(code++, TextBytes("maplesyrup")));
    EXPECT_EQ(Bytes(), KeyOf(code, TextBytes("maplesyrup"))) << "no such protocol";
    EXPECT_EQ(Bytes(), KeyOf(kAuthSha1, {}));
}

TEST(Keys, APasswordIsHashedOnceForAllEnginesAndFailuresEachTime) {
    CryptoSession crypto;
    PasswordKeys keys;
    UnitLog log;
    const ByteBuffer passwords[] = {ToBuffer(TextBytes("authpass1")),
                                    ToBuffer(TextBytes("privpass1"))};
#ifndef _WIN32
    const int before = g_mebibyteHashes;
#endif
    for (uint8_t engine = 1; engine <= 3; ++engine) {
        for (const ByteBuffer& password : passwords) {
            EXPECT_EQ(
                ToBytes(PasswordToKey(crypto, kAuthSha256, password, ToBuffer({engine}))),
                ToBytes(keys.LocalisedKey(crypto, kAuthSha256, password, ToBuffer({engine}))));
        }
    }
#ifndef _WIN32
    EXPECT_EQ(3 * 2 + 2, g_mebibyteHashes - before);
#endif
    EXPECT_EQ(KeyOf(kAuthSha1, TextBytes("authpass1")),
              ToBytes(keys.LocalisedKey(crypto, kAuthSha1, passwords[0],
                                        ToBuffer(Hex("00 00 00 00 00 00 00 00 00 00 00 02")))));
    EXPECT_TRUE(log.Lines().empty());
    const std::vector<std::string> line = {"Not supported HashAlgorithm:5\n"};
    for (int i = 0; i < 2; ++i) {
        log.Clear();
        EXPECT_TRUE(keys.LocalisedKey(crypto, 7, passwords[0], {}).Empty());
        EXPECT_EQ(line, log.Lines());
    }
}

// 20,400 bytes: longer than what is put together before hashing. Computed with Python's hashlib.
TEST(Keys, LongPasswordsAreRepeatedToo) {
    Bytes password;
    for (int i = 0; i < 80 * 255; ++i) password.push_back(static_cast<uint8_t>(i % 255 + 1));
    EXPECT_EQ(Hex("bc01d512f3ea8b1a3f8650b2258adcff0634eab578bf4ab9850cd23fbb260e8b"),
              KeyOf(kAuthSha256, password));
}

}  // namespace
}  // namespace vndiscover
