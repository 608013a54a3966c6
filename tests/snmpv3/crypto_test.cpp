#include "snmpv3/crypto.h"

#include <gtest/gtest.h>

#include <vector>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmpv3/protocol_codes.h"
#include "snmpv3/sha224.h"

namespace vndiscover {
namespace {

struct Protocol {
    const char* name;
    uint32_t code;
    const char* digestOfAbc;  // RFC 1321, FIPS 180-4
    size_t hmacKeySize;
    const char* hmacOfHiThere;   // key 0b..., RFC 2202 and RFC 4231 test case 1
    const char* hmacOfFiftyDds;  // key aa..., test case 3
};

class CryptoByProtocol : public testing::TestWithParam<Protocol> {
  protected:
    Bytes HmacOf(uint8_t keyByte, const Bytes& message) {
        ByteBuffer mac;
        EXPECT_TRUE(crypto_.Hmac(GetParam().code, ToBuffer(Bytes(GetParam().hmacKeySize, keyByte)),
                                 message.data(), static_cast<uint32_t>(message.size()), mac));
        return ToBytes(mac);
    }
    CryptoSession crypto_;
};

TEST_P(CryptoByProtocol, HashesLikeTheStandard) {
    ByteBuffer digest;
    ASSERT_TRUE(crypto_.Hash(GetParam().code, ToBuffer(TextBytes("abc")), digest));
    EXPECT_EQ(Hex(GetParam().digestOfAbc), ToBytes(digest));
    EXPECT_EQ(digest.length, DigestLength(GetParam().code));
}

TEST_P(CryptoByProtocol, AuthenticatesLikeTheStandard) {
    EXPECT_EQ(Hex(GetParam().hmacOfHiThere), HmacOf(0x0b, TextBytes("Hi There")));
    EXPECT_EQ(Hex(GetParam().hmacOfFiftyDds), HmacOf(0xaa, Bytes(50, 0xdd)));
}

TEST_P(CryptoByProtocol, HashesRepeatedBytesAsIfTheyStoodInOneBlock) {
    const Bytes unit = TextBytes("password");
    Bytes whole;
    while (whole.size() < 1003) whole.push_back(unit[whole.size() % unit.size()]);
    ByteBuffer expected;
    ByteBuffer actual;
    crypto_.Hash(GetParam().code, ToBuffer(whole), expected);
    ASSERT_TRUE(crypto_.Hash(GetParam().code, {unit.data(), unit.size(), whole.size()}, actual));
    EXPECT_EQ(ToBytes(expected), ToBytes(actual));
}

INSTANTIATE_TEST_SUITE_P(
    All, CryptoByProtocol,
    testing::Values(Protocol{"Md5", kAuthMd5, "900150983cd24fb0d6963f7d28e17f72", 16,
                             "9294727a3638bb1c13f48ef8158bfc9d",
                             "56be34521d144c88dbb8c733f0e8b3f6"},
                    Protocol{"Sha1", kAuthSha1, "a9993e364706816aba3e25717850c26c9cd0d89d", 20,
                             "b617318655057264e28bc0b6fb378c8ef146be00",
                             "125d7342b9ac11cd91a39af48aa17b4f63f175d3"},
                    Protocol{"Sha224", kAuthSha224,
                             "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7", 20,
                             "896fb1128abbdf196832107cd49df33f47b4b1169912ba4f53684b22",
                             "7fb3cb3588c6c1f6ffa9694d7d6ad2649365b0c1f65d69d1ec8333ea"},
                    Protocol{"Sha256", kAuthSha256,
                             "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", 20,
                             "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7",
                             "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe"},
                    Protocol{"Sha384", kAuthSha384,
                             "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed"
                             "8086072ba1e7cc2358baeca134c825a7",
                             20,
                             "afd03944d84895626b0825f4ab46907f15f9dadbe4101ec682aa034c7cebc59c"
                             "faea9ea9076ede7f4af152e8b2fa9cb6",
                             "88062608d3e6ad8a0aa2ace014c8a86f0aa635d947ac9febe83ef4e55966144b"
                             "2a5ab39dc13814b94e3ab6e101a34f27"},
                    Protocol{"Sha512", kAuthSha512,
                             "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
                             "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f",
                             20,
                             "87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cde"
                             "daa833b7d6b8a702038b274eaea3f4e4be9d914eeb61f1702e696c203a126854",
                             "fa73b0089d56a284efb0f0756c890be9b1b5dbdd8ee81a3655f83e33b2279d39"
                             "bf3e848279a722c806b485a47e67c807b946a337bee8942674278859e13292fb"}),
    [](const auto& row) { return row.param.name; });

TEST(Crypto, RefusesAndLogsAnUnknownAlgorithmByItsNumber) {
    CryptoSession crypto;
    ByteBuffer result;
    result.SetByte(1);
    UnitLog log;
    EXPECT_FALSE(crypto.Hash(7, ToBuffer({1}), result));
    EXPECT_TRUE(result.Empty());
    EXPECT_FALSE(crypto.Hmac(0, ToBuffer({1}), nullptr, 0, result));
    EXPECT_EQ((std::vector<std::string>{"Not supported HashAlgorithm:5\n",
                                        "Not supported HashAlgorithm:-2\n"}),
              log.Lines());
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

// FIPS 180-4 examples: no block, two blocks, many blocks.
TEST(Sha224Test, MatchesTheStandardsExamples) {
    const auto hashOf = [](const std::string& text) {
        const Bytes bytes = TextBytes(text);
        ByteBuffer digest;
        HashSha224({bytes.data(), bytes.size(), bytes.size()}, digest);
        return ToBytes(digest);
    };
    EXPECT_EQ(Hex("d14a028c2a3a2bc9476102bb288234c415a2b01f828ea62ac5b3e42f"), hashOf(""));
    EXPECT_EQ(Hex("75388b16512776cc5dba5da1fd890150b0c6455cb4f58b1952522525"),
              hashOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"));
    EXPECT_EQ(Hex("20794655980c91d8bbb4c1ea97618a4bf03f42581948b2ee4ee7ad67"),
              hashOf(std::string(1000000, 'a')));
}

// Lengths around the block's end, where the padding changes, in two parts cut anywhere.
TEST(Sha224Test, DoesNotCareHowItsInputIsCut) {
    for (size_t size : {55u, 56u, 63u, 64u, 65u, 119u, 128u, 200u}) {
        const Bytes bytes(size, 0x5a);
        ByteBuffer whole;
        HashSha224({bytes.data(), size, size}, whole);
        for (size_t cut = 0; cut <= size; ++cut) {
            Sha224 hash;
            hash.Update(bytes.data(), cut);
            hash.Update(bytes.data() + cut, size - cut);
            uint8_t digest[kSha224Size];
            hash.Final(digest);
            ASSERT_EQ(ToBytes(whole), Bytes(digest, digest + sizeof digest)) << size << " " << cut;
        }
    }
}

// RFC 4231 test case 6.
TEST(Sha224Test, HashesAKeyLongerThanItsBlockFirst) {
    const Bytes key(131, 0xaa);
    const Bytes message = TextBytes("Test Using Larger Than Block-Size Key - Hash Key First");
    ByteBuffer mac;
    HmacSha224(key.data(), key.size(), message.data(), message.size(), mac);
    EXPECT_EQ(Hex("95e9a0db962095adaebe9b2d6f0dbce2d499f112f2d2b7273fa6870e"), ToBytes(mac));
}

}  // namespace
}  // namespace vndiscover
