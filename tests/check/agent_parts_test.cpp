// The parts of windows_check.exe that its results depend on: its BER, its crypto against published
// vectors, and the requests that its device refuses.
#include <gtest/gtest.h>

#include <algorithm>

#include "check/device.h"

namespace check {
namespace {

Bytes FromHex(const std::string& hex) {
    Bytes bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(uint8_t(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

TEST(Ber, LengthsUseTheShortestFormAndReadBack) {
    const std::pair<size_t, const char*> kRows[] = {
        {0, "0400"}, {127, "047f"}, {128, "048180"}, {255, "0481ff"}, {256, "04820100"}};
    for (const auto& [length, head] : kRows) {
        const Bytes content(length, 'x');
        const Bytes whole = Tlv(kOctetString, content);
        EXPECT_EQ(Join({FromHex(head), content}), whole) << length;
        BerReader reader(whole);
        EXPECT_EQ(content, reader.Octets(kOctetString)) << length;
        EXPECT_FALSE(reader.Failed()) << length;
    }
}

TEST(Ber, IntegersUseTheFewestBytesAndReadBack) {
    const std::pair<int32_t, const char*> kRows[] = {{0, "020100"},
                                                     {127, "02017f"},
                                                     {128, "02020080"},
                                                     {256, "02020100"},
                                                     {-1, "0201ff"},
                                                     {-128, "020180"},
                                                     {-129, "0202ff7f"},
                                                     {65507, "020300ffe3"},
                                                     {INT32_MAX, "02047fffffff"},
                                                     {INT32_MIN, "020480000000"}};
    for (const auto& [value, bytes] : kRows) {
        EXPECT_EQ(FromHex(bytes), Integer(value));
        const Bytes written = Integer(value);
        EXPECT_EQ(value, BerReader(written).Number());
    }
}

TEST(Ber, OidArcsUseSevenBitsPerByte) {
    EXPECT_EQ(FromHex("2b06010401ae4b2b0501010101"), OidOf(kModelOid));
    EXPECT_EQ(FromHex("2b0681008fffffff7f"), OidOf(".1.3.6.128.4294967295"));
}

TEST(Ber, CutValuesAndOtherTagsReadAsEmpty) {
    const Bytes whole = Tlv(kSequence, Tlv(kOctetString, Bytes(200, 'x')));
    for (size_t size = 0; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + std::ptrdiff_t(size));
        BerReader reader(cut);
        EXPECT_TRUE(reader.Enter(kSequence).Failed()) << size;
        EXPECT_TRUE(reader.Failed()) << size;
        EXPECT_EQ(Bytes(), reader.Whole()) << size;
    }
    BerReader reader(whole);
    EXPECT_EQ(Bytes(), reader.Octets(kOctetString));
    EXPECT_EQ(Bytes(), reader.Octets(kSequence)) << "it has failed";
    const Bytes longLength = FromHex("0484ffffffff00");
    EXPECT_EQ(Bytes(), BerReader(longLength).Octets(kOctetString));
}

TEST(Crypto, HashesMatchPublishedVectors) {  // FIPS 180-4, RFC 4231 case 2
    EXPECT_EQ(FromHex("23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"),
              HashOf(Digest::kSha224, BytesOf("abc")));
    EXPECT_EQ(FromHex("75388b16512776cc5dba5da1fd890150b0c6455cb4f58b1952522525"),
              HashOf(Digest::kSha224,
                     BytesOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")));
    const std::pair<Digest, const char*> kHmacs[] = {
        {Digest::kMd5, "750c783e6ab0b503eaa86e310a5db738"},
        {Digest::kSha1, "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
        {Digest::kSha224, "a30e01098bc6dbbf45690f3a7e9e6d0f8bbea2a39e6148008fd05e44"},
        {Digest::kSha256, "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
        {Digest::kSha384,
         "af45d2e376484031617f78d2b58a6b1b9c7ef464f5a01b47e42ec3736322445e8e2240ca5e69e2c78b3239ecf"
         "ab21649"}};
    for (const auto& [digest, mac] : kHmacs) {
        EXPECT_EQ(FromHex(mac),
                  HmacOf(digest, BytesOf("Jefe"), BytesOf("what do ya want for nothing?")));
    }
}

TEST(Crypto, LocalisedKeysMatchPublishedVectors) {  // RFC 3414, A.3
    const Bytes engineId = FromHex("000000000000000000000002");
    EXPECT_EQ(FromHex("526f5eed9fcce26f8964c2930787d82b"),
              LocalisedKey(Digest::kMd5, "maplesyrup", engineId));
    EXPECT_EQ(FromHex("6695febc9288e36282235fc7151f128497b38f3f"),
              LocalisedKey(Digest::kSha1, "maplesyrup", engineId));
}

TEST(Crypto, CiphersMatchPublishedVectors) {  // FIPS 81, SP 800-38A F.3.13
    const Bytes desKey = FromHex("0123456789abcdef"), desIv = FromHex("1234567890abcdef");
    const Bytes plain = BytesOf("Now is the time for all ");
    const Bytes cipher = FromHex("e5c7cdde872bf27c43e934008c389c0f683788499a7c05f6");
    EXPECT_EQ(cipher, DesCbc(desKey, desIv, plain, true));
    EXPECT_EQ(plain, DesCbc(desKey, desIv, cipher, false));
    const Bytes aesKey = FromHex("2b7e151628aed2a6abf7158809cf4f3c");
    const Bytes aesIv = FromHex("000102030405060708090a0b0c0d0e0f");
    const Bytes text = FromHex("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45");
    const Bytes crypted = FromHex("3b3fd92eb72dad20333449f8e83cfb4ac8a64537a0b3a93fcde3cdad9f");
    EXPECT_EQ(crypted, AesCfb(aesKey, aesIv, text, true));
    EXPECT_EQ(text, AesCfb(aesKey, aesIv, crypted, false));
}

// ---------------------------------------------------------------- the device

Bytes Pdu(uint8_t type, const char* oid, const Bytes& value = Tlv(kNull, {})) {
    const Bytes binding = Tlv(kSequence, Join({Tlv(kOid, OidOf(oid)), value}));
    return Tlv(type, Join({Integer(77), Integer(0), Integer(0), Tlv(kSequence, binding)}));
}

Bytes V1(const char* community, const Bytes& pdu) {
    return Tlv(kSequence, Join({Integer(0), Tlv(kOctetString, BytesOf(community)), pdu}));
}

TEST(DeviceV1, AnswersWithTheVariableOrAnError) {
    Device device;
    const auto answer = [&](uint8_t type, const char* oid) {
        return device.Answer(V1("sesame", Pdu(type, oid)));
    };
    EXPECT_EQ(V1("sesame", Pdu(0xA2, kServicesOid, Integer(72))), answer(0xA0, kServicesOid));
    EXPECT_EQ(V1("sesame", Pdu(0xA2, kServicesOid, Integer(72))), answer(0xA1, kContactOid));
    const Bytes error =
        Tlv(0xA2, Join({Integer(77), Integer(2), Integer(1),
                        Tlv(kSequence,
                            Tlv(kSequence, Join({Tlv(kOid, OidOf(kModelOid)), Tlv(kNull, {})})))}));
    EXPECT_EQ(V1("sesame", error), answer(0xA1, kModelOid)) << "nothing follows the last";
}

TEST(DeviceV1, WritesOnlyForItsWriteCommunity) {
    Device device;
    const Bytes value = Tlv(kOctetString, BytesOf("new"));
    const Bytes before = device.Answer(V1("sesame", Pdu(0xA0, kContactOid)));
    device.Answer(V1("sesame", Pdu(0xA3, kContactOid, value)));
    EXPECT_EQ(before, device.Answer(V1("sesame", Pdu(0xA0, kContactOid))));
    device.Answer(V1(kWriteCommunity, Pdu(0xA3, kContactOid, value)));
    EXPECT_EQ(V1("sesame", Pdu(0xA2, kContactOid, value)),
              device.Answer(V1("sesame", Pdu(0xA0, kContactOid))));
}

const Bytes kEngine = FromHex("80001f8804636865636b");

// A request for the model with an HMAC of 12 bytes, which the caller may corrupt.
Bytes V3(uint8_t flags, const char* user, const Bytes& engineId, bool hasMac) {
    const Bytes scoped =
        Tlv(kSequence,
            Join({Tlv(kOctetString, engineId), Tlv(kOctetString, {}), Pdu(0xA0, kModelOid)}));
    const auto with = [&](const Bytes& mac) {
        const Bytes security =
            Join({Tlv(kOctetString, engineId), Integer(7), Integer(4711),
                  Tlv(kOctetString, BytesOf(user)), Tlv(kOctetString, mac), Tlv(kOctetString, {})});
        const Bytes header =
            Join({Integer(256), Integer(65507), Tlv(kOctetString, {flags}), Integer(3)});
        return Tlv(kSequence, Join({Integer(3), Tlv(kSequence, header),
                                    Tlv(kOctetString, Tlv(kSequence, security)), scoped}));
    };
    if (!hasMac) return with({});
    Bytes mac =
        HmacOf(Digest::kMd5, LocalisedKey(Digest::kMd5, kAuthPassword, kEngine), with(Bytes(12)));
    mac.resize(12);
    return with(mac);
}

TEST(DeviceV3, ReportsItsEngineAndAnswersItsUser) {
    Device device;
    device.SetUser({Digest::kMd5, Cipher::kNone});
    const Bytes report = device.Answer(V3(4, "", {}, false));
    EXPECT_NE(report.end(),
              std::search(report.begin(), report.end(), kEngine.begin(), kEngine.end()));
    const Bytes answer = device.Answer(V3(5, Device::kUserName, kEngine, true));
    const Bytes model = BytesOf(kModel);
    EXPECT_NE(answer.end(), std::search(answer.begin(), answer.end(), model.begin(), model.end()));
    EXPECT_EQ("", device.Problem());
}

TEST(DeviceV3, ExplainsEachRefusal) {
    Device device;
    device.SetUser({Digest::kMd5, Cipher::kNone});
    Bytes changed = V3(5, Device::kUserName, kEngine, true);
    changed.back() ^= 1;
    const std::pair<Bytes, const char*> kRows[] = {
        {changed, "the request's HMAC is wrong"},
        {V3(5, Device::kUserName, kEngine, false), "the request's HMAC is wrong"},
        {V3(4, Device::kUserName, kEngine, false), "the request has another security level"},
        {V3(7, Device::kUserName, kEngine, true), "the request has another security level"},
        {V3(5, "somebody", kEngine, true), "the user has another name"}};
    for (const auto& [request, problem] : kRows) {
        EXPECT_EQ(Bytes(), device.Answer(request)) << problem;
        EXPECT_EQ(problem, device.Problem());
    }
}

TEST(DeviceV3, RefusesEveryPrefixOfARequest) {
    Device device;
    device.SetUser({Digest::kMd5, Cipher::kNone});
    const Bytes whole = V3(5, Device::kUserName, kEngine, true);
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(Bytes(),
                  device.Answer(Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(size))));
        EXPECT_NE("", device.Problem()) << size;
    }
}

}  // namespace
}  // namespace check
