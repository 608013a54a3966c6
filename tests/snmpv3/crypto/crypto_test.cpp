// Hashes, keys and privacy against published vectors.
#include "snmpv3/crypto/crypto.h"

#include <gtest/gtest.h>

#include "helpers/log_capture.h"
#include "helpers/password_to_key.h"
#include "helpers/snmp_datagrams.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"
#include "snmpv3/crypto/protocol_codes.h"
#include "snmpv3/crypto/sha224.h"

namespace vndiscover {

extern int g_mebibyteHashes;  // natively: hashes of 1 MiB, one for each password's key

namespace {

// RFC 2202 and RFC 4231, test case 1.
TEST(Crypto, HmacsMatchPublishedVectors) {
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

Bytes Sha224Of(const Bytes& bytes) {
    ByteBuffer digest;
    HashSha224({bytes.data(), bytes.size(), bytes.size()}, digest);
    return ToBytes(digest);
}

// The hash of the concatenated digests of 5a, 5a5a, ... of all lengths up to 200, each updated in
// two parts split anywhere; computed with Python's hashlib.
TEST(Sha224Test, HashesEveryLengthHoweverItIsSplit) {
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

// RFC 4231 test case 6; for a key of one block, computed with Python's hmac.
TEST(Sha224Test, HashesKeysLongerThanABlockFirst) {
    const Bytes message = TextBytes("Test Using Larger Than Block-Size Key - Hash Key First");
    for (const auto& [size, expected] :
         {std::pair(131, "95e9a0db962095adaebe9b2d6f0dbce2d499f112f2d2b7273fa6870e"),
          std::pair(64, "05b01df0416b54b668ecbd5f3f2f9f652200e04458dfa6e21f253b81")}) {
        const Bytes key(static_cast<size_t>(size), 0xaa);
        ByteBuffer mac;
        HmacSha224(key.data(), key.size(), message.data(), message.size(), mac);
        EXPECT_EQ(Hex(expected), ToBytes(mac));
    }
}

Bytes KeyOf(uint32_t authCode, const Bytes& password) {
    CryptoSession crypto;
    return ToBytes(PasswordToKey(crypto, authCode, ToBuffer(password),
                                 ToBuffer(Hex("00 00 00 00 00 00 00 00 00 00 00 02"))));
}

// RFC 3414 A.3.1 and A.3.2; the others computed with Python's hashlib.
TEST(Keys, LocalisedKeysMatchPublishedVectors) {
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

TEST(Keys, PasswordsAreHashedOnceForAllEngines) {
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
    const ByteBuffer engine = ToBuffer(Hex("00 00 00 00 00 00 00 00 00 00 00 02"));
    EXPECT_EQ(KeyOf(kAuthSha1, TextBytes("authpass1")),
              ToBytes(keys.LocalisedKey(crypto, kAuthSha1, passwords[0], engine)))
        << "of another protocol";
    EXPECT_EQ("", log.Text());
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(keys.LocalisedKey(crypto, 7, passwords[0], {}).Empty());
    }
    EXPECT_EQ("Not supported HashAlgorithm:5\nNot supported HashAlgorithm:5\n", log.Text());
}

// 20,400 bytes: longer than the unit of repetition. Computed with Python's hashlib.
TEST(Keys, LongPasswordsAreRepeatedToo) {
    Bytes password;
    for (int i = 0; i < 80 * 255; ++i) password.push_back(static_cast<uint8_t>(i % 255 + 1));
    EXPECT_EQ(Hex("bc01d512f3ea8b1a3f8650b2258adcff0634eab578bf4ab9850cd23fbb260e8b"),
              KeyOf(kAuthSha256, password));
}

// With boots 01020304, time 0a0b0c0d and the key 10 11 12 ... Refused input gives no bytes.
class Privacy : public testing::Test {
  protected:
    Bytes Encrypt(bool des, const Bytes& plain, size_t keySize = 32) {
        const ByteBuffer text = ToBuffer(plain), key = CountingKey(keySize);
        const PrivacyInput input = {text, key, 0x01020304, 0x0A0B0C0D};
        ByteBuffer cipher, salt;
        const bool done = des ? DesPrivacy().Encrypt(crypto_, input, cipher, salt)
                              : AesPrivacy().Encrypt(input, cipher, salt);
        EXPECT_EQ(done, !cipher.Empty());
        usedSalt_ = ToBytes(salt);
        return ToBytes(cipher);
    }
    Bytes Decrypt(bool des, const Bytes& cipher, const Bytes& salt, size_t keySize = 32) {
        const ByteBuffer text = ToBuffer(cipher), key = CountingKey(keySize);
        const PrivacyInput input = {text, key, 0x01020304, 0x0A0B0C0D};
        ByteBuffer plain;
        const bool done = des ? DesPrivacy::Decrypt(crypto_, input, ToBuffer(salt), plain)
                              : AesPrivacy::Decrypt(input, ToBuffer(salt), plain);
        EXPECT_EQ(done, !plain.Empty());
        return ToBytes(plain);
    }
    static ByteBuffer CountingKey(size_t size) {
        Bytes key;
        for (size_t i = 0; i < size; ++i) key.push_back(static_cast<uint8_t>(0x10 + i));
        return ToBuffer(key);
    }

    const Bytes plain_ = TextBytes("seventeen bytes !");
    // Computed with `openssl enc -nopad` over the plain text and zeros, with the key and IV of each
    // protocol.
    const Bytes desCipher_ = Hex("2186371841a9bd899bbe06313181630504d4f8581af6a8c3");
    const Bytes desSalt_ = Hex("01020304 002a4c1a");
    const Bytes aesCipher_ =
        Hex("f0dc0e2870676a4e4f1c8023f03247cd 65293661c359bbf6e89e268e4c67bb77");
    const Bytes aesSalt_ = Hex("3c5a96e1d27b04f9");
    Bytes usedSalt_;
    CryptoSession crypto_;
};

TEST_F(Privacy, EncryptsLikeAnIndependentTool) {
    for (size_t keySize : {16, 32}) {
        EXPECT_EQ(desCipher_, Encrypt(true, plain_, keySize));
        EXPECT_EQ(desSalt_, usedSalt_);
        EXPECT_EQ(aesCipher_, Encrypt(false, plain_, keySize));
        EXPECT_EQ(aesSalt_, usedSalt_);
    }
}

TEST_F(Privacy, PlainTextIsAsLongAsTheCipherText) {
    EXPECT_EQ(plain_ + Bytes(7, 0), Decrypt(true, desCipher_, desSalt_));
    EXPECT_EQ(plain_ + Bytes(15, 0), Decrypt(false, aesCipher_, aesSalt_));
    for (size_t size = 1; size <= plain_.size(); ++size) {
        EXPECT_EQ(Prefix(plain_, size), Decrypt(false, Prefix(aesCipher_, size), aesSalt_));
    }
}

TEST_F(Privacy, PadsDesToBlocksAndAesByAtLeastAByte) {
    const size_t rows[][3] = {{1, 8, 16}, {16, 16, 32}, {17, 24, 32}, {32, 32, 48}, {33, 40, 48}};
    for (const auto& row : rows) {
        EXPECT_EQ(row[1], Encrypt(true, Bytes(row[0], 0x30)).size()) << row[0];
        EXPECT_EQ(row[2], Encrypt(false, Bytes(row[0], 0x30)).size()) << row[0];
    }
}

TEST_F(Privacy, RefusesShortKeysWrongSaltsAndOddCipherTexts) {
    for (const bool des : {true, false}) {
        const Bytes& cipher = des ? desCipher_ : aesCipher_;
        for (size_t size : {0, 8, 15}) {
            EXPECT_EQ(Bytes(), Encrypt(des, plain_, size));
            EXPECT_EQ(Bytes(), Decrypt(des, cipher, Bytes(8, 1), size));
        }
        for (size_t size : {0, 7, 9}) EXPECT_EQ(Bytes(), Decrypt(des, cipher, Bytes(size, 1)));
        EXPECT_EQ(Bytes(), Decrypt(des, {}, Bytes(8, 1)));
    }
    for (size_t size : {1, 7, 9, 23}) {
        UnitLog log;
        EXPECT_EQ(Bytes(), Decrypt(true, Prefix(desCipher_, size), desSalt_)) << size;
        EXPECT_EQ("Err -2146893820\n", log.Text());  // NTE_BAD_LEN
    }
}

TEST_F(Privacy, CountersIncreasePerObjectAndWrapToOne) {
    const ByteBuffer text = ToBuffer(plain_), key = CountingKey(16);
    const PrivacyInput input = {text, key, 0, 0};
    ByteBuffer cipher, desSalt, aesSalt;
    DesPrivacy des(0x7FFFFFFE);
    AesPrivacy aes(0x7FFFFFFFFFFFFFFE);
    const char* const salts[][2] = {{"00000000 7fffffff", "7fffffff ffffffff"},
                                    {"00000000 00000001", "00000000 00000001"}};
    for (const auto& expected : salts) {
        des.Encrypt(crypto_, input, cipher, desSalt);
        aes.Encrypt(input, cipher, aesSalt);
        EXPECT_EQ(Hex(expected[0]), ToBytes(desSalt));
        EXPECT_EQ(Hex(expected[1]), ToBytes(aesSalt));
    }
}

}  // namespace
}  // namespace vndiscover
