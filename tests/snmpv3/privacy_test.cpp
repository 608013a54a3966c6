#include "snmpv3/privacy.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"

namespace vndiscover {
namespace {

constexpr int32_t kBoots = 0x01020304;
constexpr int32_t kTime = 0x0A0B0C0D;

// 10 11 12 ...
ByteBuffer CountingKey(size_t size) {
    Bytes key;
    for (size_t i = 0; i < size; ++i) key.push_back(static_cast<uint8_t>(0x10 + i));
    return ToBuffer(key);
}

struct Result {
    bool done;
    Bytes text;
    Bytes salt;
};

class Privacy : public testing::Test {
  protected:
    Result EncryptDes(const Bytes& plain, size_t keySize = 32) {
        const ByteBuffer text = ToBuffer(plain), key = CountingKey(keySize);
        ByteBuffer cipher, salt;
        const bool done = DesPrivacy().Encrypt(crypto_, {text, key, kBoots, kTime}, cipher, salt);
        return {done, ToBytes(cipher), ToBytes(salt)};
    }
    Result EncryptAes(const Bytes& plain, size_t keySize = 32) {
        const ByteBuffer text = ToBuffer(plain), key = CountingKey(keySize);
        ByteBuffer cipher, salt;
        const bool done = AesPrivacy().Encrypt({text, key, kBoots, kTime}, cipher, salt);
        return {done, ToBytes(cipher), ToBytes(salt)};
    }
    Result DecryptDes(const Bytes& cipher, const Bytes& salt, size_t keySize = 32) {
        const ByteBuffer text = ToBuffer(cipher), key = CountingKey(keySize);
        ByteBuffer plain;
        const bool done =
            DesPrivacy::Decrypt(crypto_, {text, key, kBoots, kTime}, ToBuffer(salt), plain);
        return {done, ToBytes(plain), salt};
    }
    Result DecryptAes(const Bytes& cipher, const Bytes& salt, size_t keySize = 32) {
        const ByteBuffer text = ToBuffer(cipher), key = CountingKey(keySize);
        ByteBuffer plain;
        const bool done = AesPrivacy::Decrypt({text, key, kBoots, kTime}, ToBuffer(salt), plain);
        return {done, ToBytes(plain), salt};
    }

    const Bytes plain_ = TextBytes("seventeen bytes !");
    // Computed with `openssl enc -nopad` over the plain text and zeros, with the key's and the IV's
    // bytes as the protocols make them.
    const Bytes desCipher_ = Hex("2186371841a9bd899bbe06313181630504d4f8581af6a8c3");
    const Bytes desSalt_ = Hex("01020304 002a4c1a");
    const Bytes aesCipher_ =
        Hex("f0dc0e2870676a4e4f1c8023f03247cd65293661c359bbf6e89e268e4c67bb77");
    const Bytes aesSalt_ = Hex("3c5a96e1d27b04f9");
    CryptoSession crypto_;
};

TEST_F(Privacy, EncryptsLikeAnIndependentTool) {
    const Result des = EncryptDes(plain_);
    EXPECT_EQ(desCipher_, des.text);
    EXPECT_EQ(desSalt_, des.salt);
    const Result aes = EncryptAes(plain_);
    EXPECT_EQ(aesCipher_, aes.text);
    EXPECT_EQ(aesSalt_, aes.salt);
}

TEST_F(Privacy, DecryptsToTheCipherTextsLength) {
    EXPECT_EQ(plain_ + Bytes(7, 0), DecryptDes(desCipher_, desSalt_).text);
    EXPECT_EQ(plain_ + Bytes(15, 0), DecryptAes(aesCipher_, aesSalt_).text);
    for (size_t size = 1; size <= plain_.size(); ++size) {
        EXPECT_EQ(Prefix(plain_, size), DecryptAes(Prefix(aesCipher_, size), aesSalt_).text);
    }
}

TEST_F(Privacy, PadsDesToBlocksAndAesBeyondThem) {
    const size_t rows[][3] = {{1, 8, 16},   {8, 8, 16},   {15, 16, 16}, {16, 16, 32},
                              {17, 24, 32}, {32, 32, 48}, {33, 40, 48}};
    for (const auto& row : rows) {
        EXPECT_EQ(row[1], EncryptDes(Bytes(row[0], 0x30)).text.size()) << row[0];
        EXPECT_EQ(row[2], EncryptAes(Bytes(row[0], 0x30)).text.size()) << row[0];
    }
}

TEST_F(Privacy, RefusesAShortKey) {
    for (size_t size : {0u, 8u, 15u}) {
        EXPECT_FALSE(EncryptDes(plain_, size).done);
        EXPECT_FALSE(EncryptAes(plain_, size).done);
        EXPECT_FALSE(DecryptDes(desCipher_, desSalt_, size).done);
        EXPECT_FALSE(DecryptAes(aesCipher_, aesSalt_, size).done);
    }
    EXPECT_EQ(desCipher_, EncryptDes(plain_, 16).text);  // exactly long enough
    EXPECT_EQ(aesCipher_, EncryptAes(plain_, 16).text);
}

TEST_F(Privacy, RefusesWhatNoSenderMakes) {
    for (const Bytes& salt : {Bytes(), Bytes(7, 1), Bytes(9, 1)}) {
        EXPECT_FALSE(DecryptDes(desCipher_, salt).done);
        EXPECT_FALSE(DecryptAes(aesCipher_, salt).done);
    }
    EXPECT_FALSE(DecryptAes({}, aesSalt_).done);
    for (size_t size : {0u, 1u, 7u, 9u, 23u}) {
        const Result result = DecryptDes(Prefix(desCipher_, size), desSalt_);
        EXPECT_FALSE(result.done) << size;
        EXPECT_EQ(Bytes(), result.text);
    }
}

TEST_F(Privacy, CountersGoOnWithinAnObjectAndRestartAtOneBehindTheLargest) {
    const ByteBuffer text = ToBuffer(plain_), key = CountingKey(16);
    const PrivacyInput input = {text, key, 0, 0};
    ByteBuffer cipher, salt;
    DesPrivacy des(0x7FFFFFFE);
    des.Encrypt(crypto_, input, cipher, salt);
    EXPECT_EQ(Hex("00000000 7fffffff"), ToBytes(salt));
    des.Encrypt(crypto_, input, cipher, salt);
    EXPECT_EQ(Hex("00000000 00000001"), ToBytes(salt));
    AesPrivacy aes(0x7FFFFFFFFFFFFFFE);
    aes.Encrypt(input, cipher, salt);
    EXPECT_EQ(Hex("7fffffffffffffff"), ToBytes(salt));
    aes.Encrypt(input, cipher, salt);
    EXPECT_EQ(Hex("0000000000000001"), ToBytes(salt));
}

}  // namespace
}  // namespace vndiscover
