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

// An answer of net-snmp 5.9.3.
TEST_F(DecodeTest, ReadsWhatARealAgentEncrypted) {
    message_.SetAuth(kAuthSha256, "authpass1");
    message_.SetPrivacy(kPrivAes, "privpass1");
    message_.SetFlags(true, true);
    message_.SetEngine(ToBuffer(Hex("80001f8880f9d87e2563c9056b00000000")), 1, 5);
    UnitLog log;
    const Bytes datagram = Hex(
        "30819b020103300f02020100020300ffe304010302010304463044041180001f8880f9d87e2563c9056b0000"
        "000002010102010504057332353661041848a5f573ba764ae7bbd1315213a422a62028360cdb38d9ac0408c6"
        "7e867803b298e8043dc6885b55841412b59899f1ac561d55f4fdd2bdf590a32b3f96cd4cb7b118dd81e8f877"
        "9f23dc374805f0861c42cceda72011b7bb14c2c26269fa931dcc");
    EXPECT_EQ(158, DecodeInto(message_, datagram));
    EXPECT_EQ("lab-device", FirstText(message_));
    EXPECT_TRUE(log.Has(kMatch));
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
    Ask(kAuthMd5, kPrivDes, false, true);
    EncryptDes(ScopedTextTlv("twelve bytes"));
    const Bytes cipher(answer_.scopedTlv.begin() + 2, answer_.scopedTlv.end());
    const Bytes salt = answer_.salt;
    const auto reads = [&](const Bytes& text, const Bytes& parameters, uint32_t privCode) {
        Ask(kAuthMd5, privCode, false, true);
        answer_.scopedTlv = Tlv(0x04, text);
        answer_.salt = parameters;
        return DecodeInto(message_, answer_.Build()) != 0 || message_.Bindings().count != 0;
    };
    EXPECT_TRUE(reads(cipher, salt, kPrivDes));
    EXPECT_FALSE(reads({}, salt, kPrivDes));
    EXPECT_FALSE(reads(Prefix(cipher, cipher.size() - 1), salt, kPrivDes));
    EXPECT_FALSE(reads(Prefix(cipher, cipher.size() - 8), salt, kPrivDes));
    EXPECT_FALSE(reads(cipher, {}, kPrivDes));
    EXPECT_FALSE(reads(cipher, salt, kPrivNone));
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
    const auto changed = [&](auto&& change) {
        V3Datagram datagram = answer_;
        change(datagram);
        return datagram.Build();
    };
    const Bytes whole = answer_.Build();
    const size_t usmAt = 5 + 2 + whole[6];  // behind version and header
    const auto withByte = [&](size_t at, int byte) {
        Bytes bytes = whole;
        bytes[at] = static_cast<uint8_t>(byte);
        return bytes;
    };
    const Bytes rows[] = {
        changed([](V3Datagram& other) { other.securityModel = 2; }),
        changed([](V3Datagram& other) { other.flagsTlv = Tlv(0x04, {}); }),
        changed([](V3Datagram& other) { other.flagsTlv = Tlv(0x02, {0x00}); }),
        changed([](V3Datagram& other) { other.scopedTlv[0] = 0x31; }),
        // Encrypted, but the flag is missing.
        changed([](V3Datagram& other) { other.scopedTlv = Tlv(0x04, other.scopedTlv); }),
        // More than a binding holds.
        changed([](V3Datagram& other) { other.scopedTlv = ScopedTextTlv(std::string(127, 'v')); }),
        withByte(0, 0x31), withByte(5, 0x31), withByte(usmAt, 0x30), withByte(usmAt + 2, 0x31),
        // Sequences that are shorter or longer than their fields.
        withByte(6, whole[6] - 1), withByte(usmAt + 3, whole[usmAt + 3] - 1),
        withByte(usmAt + 3, whole[usmAt + 3] + 1)};
    ASSERT_EQ(0x04, whole[usmAt]);
    ASSERT_GT(DecodeInto(message_, whole), 0);
    for (const Bytes& row : rows) {
        VxSNMPv3 message;
        EXPECT_EQ(0, DecodeInto(message, row)) << testing::PrintToString(row);
    }
    EXPECT_EQ(0, message_.Decode(nullptr, 0));
    Bytes none = whole;
    EXPECT_EQ(0, message_.Decode(none.data(), -1));
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

// With an outer length that fits, so that the inner ones are checked.
TEST_F(DecodeTest, EveryPrefixIsRefused) {
    const Bytes content = answer_.Content();
    for (size_t size = 0; size < content.size(); ++size) {
        VxSNMPv3 message;
        EXPECT_EQ(0, DecodeInto(message, Tlv(0x30, Prefix(content, size)))) << size;
        EXPECT_EQ(0, message.Bindings().count);
    }
}

TEST(KeyLog, TellsHowPrivacyKeysAreMade) {
    struct Row {
        uint32_t authCode, privCode;
        Lines encode, decode;
    };
    const Lines none;
    const Lines sha1Des = {"=====pkey for privacy password (SHA1) w/ DES===== \n"};
    const Lines sha2Des = {"=====akey for authentication password (SHA2)===== \n"};
    const Lines sha2Aes = {"=====In SHA2 for _userSecurityModel._authenticationSecret  AES=====\n"};
    const Row rows[] = {
        {kAuthMd5, kPrivDes, none, none},          {kAuthSha1, kPrivDes, sha1Des, sha1Des},
        {kAuthSha224, kPrivDes, none, none},       {kAuthSha256, kPrivDes, sha2Des, sha2Des},
        {kAuthSha512, kPrivDes, sha2Des, sha2Des}, {kAuthSha1, kPrivAes, none, none},
        {kAuthSha384, kPrivAes, none, sha2Aes},    {kAuthSha256, 3, none, none},
        {kAuthNone, kPrivDes, none, none}};
    for (const Row& row : rows) {
        VxSNMPv3 message;
        message.SetAuth(row.authCode, "authpass1");
        message.SetPrivacy(row.privCode, "privpass1");
        message.SetFlags(false, true);
        message.SetEngine(ToBuffer({1, 2, 3, 4, 5}), 1, 1);
        Lines expected = {"VxSNMPv3::Encode()\n"};
        expected.insert(expected.end(), row.encode.begin(), row.encode.end());
        expected.push_back(kEntry);
        expected.insert(expected.end(), row.decode.begin(), row.decode.end());
        UnitLog log;
        message.Encode();
        message.Decode(nullptr, 0);
        EXPECT_EQ(expected, log.Lines()) << row.authCode << " " << row.privCode;
    }
}

}  // namespace
}  // namespace vndiscover
