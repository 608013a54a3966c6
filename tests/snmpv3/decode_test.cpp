// What VxSNMPv3 reads.
#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "helpers/v3_answer.h"
#include "snmpv3/keys.h"
#include "snmpv3/privacy.h"
#include "snmpv3/vx_snmpv3.h"

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

const char kEntry[] = "VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n";
const char kMatch[] = "MATCH _authenticationParameters\n";
const char kNoMatch[] = "NOT MATCH _authenticationParameters\n";

std::string FirstText(const VxSNMPv3& message) {
    std::string text;
    if (message.Bindings().count > 0) VarBindValueToText(message.Bindings().bindings[0], text);
    return text;
}

int32_t DecodeInto(VxSNMPv3& message, const Bytes& datagram) {
    ExactBlock block(datagram);
    return message.Decode(block.Data(), block.Size());
}

// The object behind a request with these protocols, and the keys of its device.
class DecodeTest : public testing::Test {
  protected:
    void Ask(uint32_t authCode, uint32_t privCode, bool auth, bool priv) {
        const ByteBuffer engine = ToBuffer(answer_.engineId);
        message_.SetUser("user");
        message_.SetAuth(authCode, "authpass1");
        message_.SetPrivacy(privCode, "privpass1");
        message_.SetFlags(auth, priv);
        message_.SetEngine(engine, 7, 70000);
        authKey_ = PasswordToKey(crypto_, authCode, ToBuffer(TextBytes("authpass1")), engine);
        privKey_ = PasswordToKey(crypto_, authCode, ToBuffer(TextBytes("privpass1")), engine);
        answer_.flagsTlv = Tlv(0x04, {static_cast<uint8_t>((auth ? 1 : 0) | (priv ? 2 : 0))});
    }
    // Encrypts whole blocks of plain text, so that the caller's padding is all there is.
    void EncryptDes(const Bytes& plain) {
        const ByteBuffer text = ToBuffer(plain);
        ByteBuffer cipher, salt;
        DesPrivacy().Encrypt(crypto_, {text, privKey_, 7, 70000}, cipher, salt);
        answer_.scopedTlv = Tlv(0x04, ToBytes(cipher));
        answer_.salt = ToBytes(salt);
    }

    VxSNMPv3 message_;
    V3Datagram answer_;
    CryptoSession crypto_;
    ByteBuffer authKey_;
    ByteBuffer privKey_;
};

TEST_F(DecodeTest, AReportTeachesTheEngine) {
    answer_.user.clear();
    answer_.msgMaxSize = 1500;
    answer_.scopedTlv =
        ScopedPduTlv(0xA8, BindingTlv(Hex("2b 06 01 06 03 0f 01 01 04 00"), Tlv(0x41, {0x05})));
    const Bytes datagram = answer_.Build();
    message_.SetFlags(true, true);
    UnitLog log;
    EXPECT_EQ(static_cast<int32_t>(datagram.size()), DecodeInto(message_, datagram));
    EXPECT_EQ(answer_.engineId, ToBytes(message_.EngineId()));
    EXPECT_EQ(7, message_.EngineBoots());
    EXPECT_EQ(70000, message_.EngineTime());
    EXPECT_EQ(1500u, message_.MsgMaxSize());
    EXPECT_EQ(1, message_.Bindings().count);
    const MessageRecord& record = message_.Record();
    EXPECT_FALSE(record.authFlag || record.privFlag || record.reportableFlag);
    EXPECT_EQ(Lines{kEntry}, log.Lines());
}

TEST_F(DecodeTest, AReportWithoutAnEngineIdTeachesNothing) {
    answer_.engineId.clear();
    answer_.flagsTlv = Tlv(0x04, {0x03});
    EXPECT_GT(DecodeInto(message_, answer_.Build()), 0);
    EXPECT_TRUE(message_.EngineId().Empty());
}

// Answers of net-snmp 5.9.3 to the requests in encode_test.cpp.
TEST(DecodeAgent, ReadsWhatARealAgentEncrypted) {
    struct Row {
        const char* user;
        uint32_t authCode, privCode;
        const char* datagram;
    };
    const Row rows[] = {
        {"sha1u", kAuthSha1, kPrivDes,
         "308192020103300f02020100020300ffe3040103020103043a3038041180001f8880f9d87e2563c9056b0000"
         "000002010102010404057368613175040cc6c3a4fae3877f0bde8b6dbb04080000000143cbabc00440e0bff0"
         "32701f04beaddb4e2c2de0936b4d951c895f9cf82779eaded514de5ee8b3b8d376c0f5522f4d53856fe760c4"
         "dadd0c3ae75c7673391a7acfb04241276c"},
        {"s256a", kAuthSha256, kPrivAes,
         "30819b020103300f02020100020300ffe304010302010304463044041180001f8880f9d87e2563c9056b0000"
         "0000020101020105040573323536610418"
         "48a5f573ba764ae7bbd1315213a422a62028360cdb38d9ac0408c67e867803b298e8043dc6885b5584141"
         "2b59899f1ac561d55f4fdd2bdf590a32b3f96cd4cb7b118dd81e8f8779f23dc374805f0861c42cceda72011b"
         "7bb14c2c26269fa931dcc"}};
    for (const Row& row : rows) {
        VxSNMPv3 message;
        message.SetAuth(row.authCode, "authpass1");
        message.SetPrivacy(row.privCode, "privpass1");
        message.SetFlags(true, true);
        message.SetEngine(ToBuffer(Hex("80001f8880f9d87e2563c9056b00000000")), 1, 5);
        UnitLog log;
        EXPECT_GT(DecodeInto(message, Hex(row.datagram)), 0) << row.user;
        EXPECT_EQ("lab-device", FirstText(message)) << row.user;
        EXPECT_TRUE(log.Has(kMatch)) << row.user;
    }
}

TEST_F(DecodeTest, EachProtocolsAnswerMatches) {
    for (uint32_t code = kAuthMd5; code <= kAuthSha512; ++code) {
        Ask(code, kPrivNone, true, false);
        const Bytes datagram = answer_.BuildAuthenticated(crypto_, code, authKey_);
        UnitLog log;
        EXPECT_EQ(static_cast<int32_t>(datagram.size()), DecodeInto(message_, datagram));
        EXPECT_EQ((Lines{kEntry, kMatch}), log.Lines()) << code;
        EXPECT_EQ("value", FirstText(message_));
    }
}

TEST_F(DecodeTest, AWrongMacIsLoggedAndTheAnswerUsed) {
    Ask(kAuthMd5, kPrivNone, true, false);
    Bytes datagram = answer_.BuildAuthenticated(crypto_, kAuthMd5, authKey_);
    datagram.back() ^= 1;  // "value" becomes "valud"
    UnitLog log;
    EXPECT_GT(DecodeInto(message_, datagram), 0);
    EXPECT_EQ("valud", FirstText(message_));
    EXPECT_EQ((Lines{kEntry, kNoMatch}), log.Lines());
    // As good as none: cut to eleven bytes, and without a key to check it with.
    log.Clear();
    Ask(kAuthMd5, kPrivNone, true, false);
    answer_.macTlv = Tlv(0x04, Bytes(11, 0));
    EXPECT_GT(DecodeInto(message_, answer_.Build()), 0);
    Ask(kAuthMd5, kPrivNone, true, false);
    message_.SetAuth(kAuthMd5, "");
    EXPECT_GT(DecodeInto(message_, answer_.Build()), 0);
    EXPECT_EQ((Lines{kEntry, kNoMatch, kEntry, "ERROR:not yet supported HASH VALUE:1\n", kNoMatch}),
              log.Lines());
}

TEST_F(DecodeTest, ZeroesTheMacInTheReceivedBufferAndNothingElse) {
    const Bytes mac = Hex("a1a2a3a4a5a6a7a8a9aaabac");
    answer_.macTlv = Tlv(0x04, mac);
    ExactBlock block(answer_.Build());
    EXPECT_GT(message_.Decode(block.Data(), block.Size()), 0);
    EXPECT_EQ(mac, ToBytes(message_.Record().usm.authParameters));
    answer_.macTlv = Tlv(0x04, Bytes(12, 0));
    EXPECT_EQ(answer_.Build(), block.Content());

    // A length in its long form shifts the zeros by a byte: they stay within the OCTET STRING.
    answer_.macTlv = Hex("04 81 0c") + mac;
    ExactBlock shifted(answer_.Build());
    EXPECT_GT(message_.Decode(shifted.Data(), shifted.Size()), 0);
    answer_.macTlv = Hex("04 81") + Bytes(12, 0) + Hex("ac");
    EXPECT_EQ(answer_.Build(), shifted.Content());
}

// Zeros, counts as PKCS#5 has them, and garbage, behind scoped PDUs of all eight lengths modulo a
// block.
TEST_F(DecodeTest, DesPaddingOfAnyStyleIsIgnored) {
    Ask(kAuthMd5, kPrivDes, false, true);
    for (size_t size = 1; size <= 8; ++size) {
        const std::string value(size, 'v');
        const Bytes scoped = ScopedTextTlv(value);
        const size_t missing = 8 - scoped.size() % 8;
        for (const Bytes& padding : {Bytes(missing % 8, 0), Bytes(missing, missing & 0xFF),
                                     Bytes(missing, 0xA5), Bytes(missing + 8, 0x30)}) {
            Ask(kAuthMd5, kPrivDes, false, true);
            EncryptDes(scoped + padding);
            EXPECT_GT(DecodeInto(message_, answer_.Build()), 0);
            EXPECT_EQ(value, FirstText(message_)) << size << " " << padding.size();
        }
    }
}

TEST_F(DecodeTest, CipherTextsThatCannotBeDecryptedAreNoAnswer) {
    const auto refuses = [&](const Bytes& cipher, const Bytes& salt) {
        Ask(kAuthMd5, kPrivDes, false, true);
        answer_.scopedTlv = Tlv(0x04, cipher);
        answer_.salt = salt;
        return DecodeInto(message_, answer_.Build()) == 0 && message_.Bindings().count == 0;
    };
    Ask(kAuthMd5, kPrivDes, false, true);
    EncryptDes(ScopedTextTlv("twelve bytes"));
    const Bytes cipher(answer_.scopedTlv.begin() + 2, answer_.scopedTlv.end());
    const Bytes salt = answer_.salt;
    EXPECT_FALSE(refuses(cipher, salt));
    EXPECT_TRUE(refuses({}, salt));
    EXPECT_TRUE(refuses(Prefix(cipher, cipher.size() - 1), salt));
    EXPECT_TRUE(refuses(Prefix(cipher, cipher.size() - 8), salt));
    EXPECT_TRUE(refuses(cipher, {}));
    EXPECT_TRUE(refuses(cipher, salt + Bytes{0}));
    message_.SetPrivacy(kPrivNone, "");
    message_.SetFlags(false, true);
    EXPECT_EQ(0, DecodeInto(message_, answer_.Build()));
}

TEST_F(DecodeTest, AnAnswersFlagsReplaceTheCallers) {
    Ask(kAuthSha1, kPrivAes, true, true);
    answer_.flagsTlv = Tlv(0x04, {0x00});  // a plain report to a private request
    UnitLog log;
    EXPECT_GT(DecodeInto(message_, answer_.Build()), 0);
    EXPECT_EQ("value", FirstText(message_));
    EXPECT_EQ(Lines{kEntry}, log.Lines());
    // Without keys, private answers to a plain request stay closed.
    message_.SetFlags(false, false);
    answer_.flagsTlv = Tlv(0x04, {0x03});
    answer_.scopedTlv = Tlv(0x04, Bytes(64, 0x11));
    answer_.salt = Bytes(8, 0);
    EXPECT_EQ(0, DecodeInto(message_, answer_.Build()));
    EXPECT_TRUE(log.Has(kNoMatch));
}

TEST_F(DecodeTest, AnotherLayoutIsNoAnswer) {
    const auto reads = [](const V3Datagram& datagram) {
        VxSNMPv3 message;
        return DecodeInto(message, datagram.Build());
    };
    EXPECT_GT(reads(answer_), 0);
    V3Datagram other = answer_;
    other.securityModel = 2;
    EXPECT_EQ(0, reads(other));
    other = answer_;
    other.flagsTlv = Tlv(0x04, {});
    EXPECT_EQ(0, reads(other));
    other.flagsTlv = Tlv(0x02, {0x00});
    EXPECT_EQ(0, reads(other));
    other = answer_;
    other.scopedTlv[0] = 0x31;
    EXPECT_EQ(0, reads(other));
    other.scopedTlv = Tlv(0x04, answer_.scopedTlv);  // encrypted, but the flag is missing
    EXPECT_EQ(0, reads(other));
    other = answer_;
    other.scopedTlv = ScopedPduTlv(0xA2, BindingTlv(SysNameOid(), Tlv(0x04, Bytes(127, 'v'))));
    EXPECT_EQ(0, reads(other));  // more than a binding holds
    Bytes wrongTag = answer_.Build();
    wrongTag[0] = 0x31;
    VxSNMPv3 message;
    EXPECT_EQ(0, DecodeInto(message, wrongTag));
    EXPECT_EQ(0, message.Decode(nullptr, 0));
    EXPECT_EQ(0, message.Decode(wrongTag.data(), -1));
}

// The security parameters' SEQUENCE, one byte shorter and longer than its fields.
TEST_F(DecodeTest, FieldsThatDoNotFitTheirWrapperAreRefused) {
    const Bytes whole = answer_.Build();
    const size_t headerAt = 5;
    const size_t usmAt = headerAt + 2 + whole[headerAt + 1];
    ASSERT_EQ(0x04, whole[usmAt]);
    ASSERT_EQ(0x30, whole[usmAt + 2]);
    for (int change : {-1, 1}) {
        Bytes changed = whole;
        changed[usmAt + 3] = static_cast<uint8_t>(changed[usmAt + 3] + change);
        VxSNMPv3 message;
        EXPECT_EQ(0, DecodeInto(message, changed)) << change;
    }
}

TEST_F(DecodeTest, ADecodedUserNameSurvivesAProbeAsText) {
    answer_.engineId.clear();
    for (const Bytes& name : {Bytes{'a', 'b', 0, 'c'}, Bytes(200, 'n')}) {
        answer_.user = name;
        EXPECT_GT(DecodeInto(message_, answer_.Build()), 0);
        EXPECT_EQ(name, ToBytes(message_.Record().usm.userName));
        message_.Encode();
        EXPECT_EQ(Prefix(name, name.size() == 4 ? 2 : 127),
                  ToBytes(message_.Record().usm.userName));
    }
}

TEST_F(DecodeTest, AFailureLeavesNoBindingAndWhatWasReadUntilThen) {
    message_.SetOid(".1.3.6.1.2.1.1.5.0");
    answer_.scopedTlv = ScopedPduTlv(0xA2, Tlv(0x30, Tlv(0x06, {}) + Hex("02 7f")));
    EXPECT_EQ(0, DecodeInto(message_, answer_.Build()));
    EXPECT_EQ(answer_.engineId, ToBytes(message_.EngineId()));
    EXPECT_EQ(0, message_.Bindings().count);
}

TEST_F(DecodeTest, EveryPrefixIsRefused) {
    const Bytes whole = answer_.Build();
    for (size_t size = 0; size < whole.size(); ++size) {
        VxSNMPv3 message;
        EXPECT_EQ(0, DecodeInto(message, Prefix(whole, size))) << size;
    }
    // The same with an outer length that fits, so that the inner ones are checked.
    const Bytes content = answer_.Content();
    for (size_t size = 0; size < content.size(); ++size) {
        VxSNMPv3 message;
        EXPECT_EQ(0, DecodeInto(message, Tlv(0x30, Prefix(content, size)))) << size;
        EXPECT_EQ(0, message.Bindings().count);
    }
}

TEST_F(DecodeTest, EveryPrefixOfAPrivateAnswerIsRefused) {
    Ask(kAuthMd5, kPrivDes, false, true);
    const Bytes scoped = ScopedTextTlv("value");
    for (size_t size = 8; size + 7 < scoped.size(); size += 8) {
        Ask(kAuthMd5, kPrivDes, false, true);
        EncryptDes(Prefix(scoped, size));
        EXPECT_EQ(0, DecodeInto(message_, answer_.Build())) << size;
    }
}

// Every byte of a plain answer, set to what lengths and tags trip over: nothing is read or written
// beyond the block, whatever the result.
TEST_F(DecodeTest, SurvivesEveryHostileByte) {
    answer_.macTlv = Tlv(0x04, Bytes(12, 0xAA));
    const Bytes whole = answer_.Build();
    for (size_t at = 0; at < whole.size(); ++at) {
        for (uint8_t hostile : {0x00, 0x05, 0x7F, 0x80, 0x81, 0x84, 0x88, 0xFF}) {
            Bytes changed = whole;
            changed[at] = hostile;
            VxSNMPv3 message;
            EXPECT_LE(DecodeInto(message, changed), static_cast<int32_t>(whole.size()));
            message.Encode();
        }
    }
}

struct LogRow {
    uint32_t authCode, privCode;
    const char* encodeLine;  // null: none
    const char* decodeLine;
};

TEST(KeyLog, TellsHowPrivacyKeysAreMade) {
    const char kSha1Des[] = "=====pkey for privacy password (SHA1) w/ DES===== \n";
    const char kSha2Des[] = "=====akey for authentication password (SHA2)===== \n";
    const char kSha2Aes[] = "=====In SHA2 for _userSecurityModel._authenticationSecret  AES=====\n";
    const LogRow rows[] = {
        {kAuthMd5, kPrivDes, nullptr, nullptr},      {kAuthSha1, kPrivDes, kSha1Des, kSha1Des},
        {kAuthSha256, kPrivDes, kSha2Des, kSha2Des}, {kAuthSha512, kPrivDes, kSha2Des, kSha2Des},
        {kAuthSha1, kPrivAes, nullptr, nullptr},     {kAuthSha384, kPrivAes, nullptr, kSha2Aes},
        {kAuthSha256, 3, nullptr, nullptr},          {kAuthNone, kPrivDes, nullptr, nullptr}};
    for (const LogRow& row : rows) {
        VxSNMPv3 message;
        message.SetAuth(row.authCode, "authpass1");
        message.SetPrivacy(row.privCode, "privpass1");
        message.SetFlags(false, true);
        message.SetEngine(ToBuffer({1, 2, 3, 4, 5}), 1, 1);
        Lines encode = {"VxSNMPv3::Encode()\n"};
        if (row.encodeLine) encode.push_back(row.encodeLine);
        UnitLog log;
        message.Encode();
        EXPECT_EQ(encode, log.Lines()) << row.authCode << " " << row.privCode;
        Lines decode = {kEntry};
        if (row.decodeLine) decode.push_back(row.decodeLine);
        log.Clear();
        message.Decode(nullptr, 0);
        EXPECT_EQ(decode, log.Lines()) << row.authCode << " " << row.privCode;
    }
}

}  // namespace
}  // namespace vndiscover
