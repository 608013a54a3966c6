#include "snmpv3/crypto.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "snmpv3/keys.h"
#include "snmpv3/protocol_codes.h"
#include "snmpv3/sha224.h"

namespace vndiscover {
namespace {

// RFC 2202 and RFC 4231, test case 1.
TEST(Crypto, AuthenticatesLikeTheStandards) {
    const char* const macs[] = {"9294727a3638bb1c13f48ef8158bfc9d",
                                "b617318655057264e28bc0b6fb378c8ef146be00",
                                "896fb1128abbdf196832107cd49df33f47b4b1169912ba4f53684b22",
                                "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7",
                                "afd03944d84895626b0825f4ab46907f15f9dadbe4101ec682aa034c7cebc59c"
                                "faea9ea9076ede7f4af152e8b2fa9cb6",
                                "87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cde"
                                "daa833b7d6b8a702038b274eaea3f4e4be9d914eeb61f1702e696c203a126854"};
    CryptoSession crypto;
    const Bytes message = TextBytes("Hi There");
    uint32_t code = kAuthMd5;
    for (const char* expected : macs) {
        ByteBuffer mac;
        const Bytes key(code == kAuthMd5 ? 16 : 20, 0x0b);
        EXPECT_TRUE(crypto.Hmac(code++, ToBuffer(key), message.data(), 8, mac));
        EXPECT_EQ(Hex(expected), ToBytes(mac));
    }
}

// FIPS 81, tables B1 and C1.
TEST(Crypto, EncryptsAndDecryptsDesLikeTheStandard) {
    CryptoSession crypto;
    const uint8_t key[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef};
    const uint8_t iv[] = {0x12, 0x34, 0x56, 0x78, 0x90, 0xab, 0xcd, 0xef};
    const uint8_t block[] = {'N', 'o', 'w', ' ', 'i', 's', ' ', 't'};
    uint8_t cipher[8] = {};
    ASSERT_TRUE(crypto.DesEncryptBlock(key, block, cipher));
    EXPECT_EQ(Hex("3fa40e8a984d4815"), Bytes(cipher, cipher + 8));

    const Bytes chained = Hex("e5c7cdde872bf27c 43e934008c389c0f 683788499a7c05f6");
    ByteBuffer plain;
    ASSERT_TRUE(crypto.DesDecrypt(key, iv, chained.data(), 24, plain));
    EXPECT_EQ(TextBytes("Now is the time for all "), ToBytes(plain));
}

Bytes Sha224Of(const Bytes& bytes) {
    ByteBuffer digest;
    HashSha224({bytes.data(), bytes.size(), bytes.size()}, digest);
    return ToBytes(digest);
}

// The digests of 5a, 5a5a, ... of all lengths up to 200, each in two parts cut anywhere, put
// together and hashed: their hash was computed with Python's hashlib.
TEST(Sha224Test, HashesEveryLengthHoweverItIsCut) {
    Bytes digests;
    for (size_t size = 0; size <= 200; ++size) {
        const Bytes bytes(size, 0x5a);
        uint8_t digest[kSha224Size];
        for (size_t cut = 0; cut <= size; ++cut) {
            Sha224 hash;
            hash.Update(bytes.data(), cut);
            hash.Update(bytes.data() + cut, size - cut);
            hash.Final(digest);
            ASSERT_EQ(Sha224Of(bytes), Bytes(digest, digest + sizeof digest)) << size << " " << cut;
        }
        digests.insert(digests.end(), digest, digest + sizeof digest);
    }
    EXPECT_EQ(Hex("19463609fc4b8d39ae9552caa56f53e856593c437d120878baa95df9"), Sha224Of(digests));
}

// RFC 4231 test case 6.
TEST(Sha224Test, HashesAKeyLongerThanItsBlockFirst) {
    const Bytes key(131, 0xaa);
    const Bytes message = TextBytes("Test Using Larger Than Block-Size Key - Hash Key First");
    ByteBuffer mac;
    HmacSha224(key.data(), key.size(), message.data(), message.size(), mac);
    EXPECT_EQ(Hex("95e9a0db962095adaebe9b2d6f0dbce2d499f112f2d2b7273fa6870e"), ToBytes(mac));
}

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

// 20,400 bytes: longer than what is put together before hashing. Computed with Python's hashlib.
TEST(Keys, LongPasswordsAreRepeatedToo) {
    Bytes password;
    for (int i = 0; i < 80 * 255; ++i) password.push_back(static_cast<uint8_t>(i % 255 + 1));
    EXPECT_EQ(Hex("bc01d512f3ea8b1a3f8650b2258adcff0634eab578bf4ab9850cd23fbb260e8b"),
              KeyOf(kAuthSha256, password));
}

}  // namespace
}  // namespace vndiscover
