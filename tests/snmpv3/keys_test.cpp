#include "snmpv3/keys.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmpv3/protocol_codes.h"

namespace vndiscover {
namespace {

ByteBuffer EngineTwo() { return ToBuffer(Hex("00 00 00 00 00 00 00 00 00 00 00 02")); }

Bytes KeyOf(uint32_t authCode, const Bytes& password) {
    CryptoSession crypto;
    return ToBytes(PasswordToKey(crypto, authCode, ToBuffer(password), EngineTwo()));
}

// RFC 3414 A.3.1 and A.3.2; the others computed with Python's hashlib.
TEST(Keys, MapleSyrupGivesTheKnownKeys) {
    const Bytes password = TextBytes("maplesyrup");
    EXPECT_EQ(Hex("526f5eed9fcce26f8964c2930787d82b"), KeyOf(kAuthMd5, password));
    EXPECT_EQ(Hex("6695febc9288e36282235fc7151f128497b38f3f"), KeyOf(kAuthSha1, password));
    EXPECT_EQ(Hex("0bd8827c6e29f8065e08e09237f177e410f69b90e1782be682075674"),
              KeyOf(kAuthSha224, password));
    EXPECT_EQ(Hex("8982e0e549e866db361a6b625d84cccc11162d453ee8ce3a6445c2d6776f0f8b"),
              KeyOf(kAuthSha256, password));
    EXPECT_EQ(Hex("3b298f16164a11184279d5432bf169e2d2a48307de02b3d3f7e2b4f36eb6f045"
                  "5a53689a3937eea07319a633d2ccba78"),
              KeyOf(kAuthSha384, password));
    EXPECT_EQ(Hex("22a5a36cedfcc085807a128d7bc6c2382167ad6c0dbc5fdff856740f3d84c099"
                  "ad1ea87a8db096714d9788bd544047c9021e4229ce27e4c0a69250adfcffbb0b"),
              KeyOf(kAuthSha512, password));
}

// 20,400 bytes: longer than what is put together before hashing. Computed with Python's hashlib.
TEST(Keys, LongPasswordsAreRepeatedToo) {
    Bytes password;
    for (int i = 0; i < 80 * 255; ++i) password.push_back(static_cast<uint8_t>(i % 255 + 1));
    EXPECT_EQ(Hex("bc01d512f3ea8b1a3f8650b2258adcff0634eab578bf4ab9850cd23fbb260e8b"),
              KeyOf(kAuthSha256, password));
}

TEST(Keys, EmptyPasswordAndUnknownCodeGiveNone) {
    EXPECT_EQ(Bytes(), KeyOf(kAuthSha1, {}));
    EXPECT_EQ(Bytes(), KeyOf(7, TextBytes("maplesyrup")));
}

TEST(Keys, AuthenticationIsCutByProtocol) {
    const ByteBuffer key = ToBuffer(Bytes(64, 0x0b));
    const Bytes message = TextBytes("message");
    CryptoSession crypto;
    const uint32_t lengths[] = {0, 12, 12, 16, 24, 32, 48, 0};
    for (uint32_t code = 0; code < 8; ++code) {
        const ByteBuffer mac = AuthenticationOf(crypto, code, key, message.data(), 7);
        EXPECT_EQ(lengths[code], mac.length) << code;
        EXPECT_EQ(lengths[code], MacLength(code)) << code;
    }
}

TEST(Keys, WithoutAKeyOnlyAnUnknownHashIsLogged) {
    CryptoSession crypto;
    UnitLog log;
    EXPECT_TRUE(AuthenticationOf(crypto, kAuthSha512, {}, nullptr, 0).Empty());
    EXPECT_TRUE(AuthenticationOf(crypto, kAuthNone, {}, nullptr, 0).Empty());
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_TRUE(AuthenticationOf(crypto, 7, {}, nullptr, 0).Empty());
    EXPECT_TRUE(log.Has("Not supported HashAlgorithm:5\n"));
}

TEST(ProtocolCodes, LabelsInAnyLetterCaseGiveCodes) {
    EXPECT_EQ(kAuthMd5, AuthCodeOf(L"md5"));
    EXPECT_EQ(kAuthSha1, AuthCodeOf(L"Sha1"));
    EXPECT_EQ(kAuthSha224, AuthCodeOf(L"SHA-2(224)"));
    EXPECT_EQ(kAuthSha256, AuthCodeOf(L"sha-2(256)"));
    EXPECT_EQ(kAuthSha384, AuthCodeOf(L"SHA-2(384)"));
    EXPECT_EQ(kAuthSha512, AuthCodeOf(L"SHA-2(512)"));
    EXPECT_EQ(kPrivDes, PrivCodeOf(L"dEs"));
    EXPECT_EQ(kPrivAes, PrivCodeOf(L"AES"));
    for (const wchar_t* other : {L"", L"MD", L"MD55", L"SHA-2(2", L"SHA256", L"AES128"}) {
        EXPECT_EQ(0u, AuthCodeOf(other));
        EXPECT_EQ(0u, PrivCodeOf(other));
    }
    EXPECT_EQ(0u, AuthCodeOf(nullptr));
    EXPECT_EQ(0u, PrivCodeOf(nullptr));
}

}  // namespace
}  // namespace vndiscover
