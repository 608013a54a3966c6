#include "snmpv3/privacy.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"

namespace vndiscover {
namespace {

// With boots 01020304, time 0a0b0c0d and the key 10 11 12 ... What is refused gives no bytes.
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
    // Computed with `openssl enc -nopad` over the plain text and zeros, with the key's and the IV's
    // bytes as the protocols make them.
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

TEST_F(Privacy, DecryptsToTheCipherTextsLength) {
    EXPECT_EQ(plain_ + Bytes(7, 0), Decrypt(true, desCipher_, desSalt_));
    EXPECT_EQ(plain_ + Bytes(15, 0), Decrypt(false, aesCipher_, aesSalt_));
    for (size_t size = 1; size <= plain_.size(); ++size) {
        EXPECT_EQ(Prefix(plain_, size), Decrypt(false, Prefix(aesCipher_, size), aesSalt_));
    }
}

TEST_F(Privacy, PadsDesToBlocksAndAesBeyondThem) {
    const size_t rows[][3] = {{1, 8, 16}, {16, 16, 32}, {17, 24, 32}, {32, 32, 48}, {33, 40, 48}};
    for (const auto& row : rows) {
        EXPECT_EQ(row[1], Encrypt(true, Bytes(row[0], 0x30)).size()) << row[0];
        EXPECT_EQ(row[2], Encrypt(false, Bytes(row[0], 0x30)).size()) << row[0];
    }
}

TEST_F(Privacy, RefusesAShortKeyAndWhatNoSenderMakes) {
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
        EXPECT_EQ(Bytes(), Decrypt(true, Prefix(desCipher_, size), desSalt_)) << size;
    }
}

TEST_F(Privacy, CountersGoOnWithinAnObjectAndRestartAtOneBehindTheLargest) {
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
