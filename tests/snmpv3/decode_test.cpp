// What VxSNMPv3 reads.
#include <gtest/gtest.h>

#include <map>

#include "helpers/bytes.h"
#include "helpers/snmp_datagrams.h"
#include "helpers/unit_log.h"
#include "snmpv3/crypto.h"
#include "snmpv3/keys.h"
#include "snmpv3/privacy.h"
#include "snmpv3/vx_snmpv3.h"

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

const char kEntry[] = "VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n";
const char kMatch[] = "MATCH _authenticationParameters\n";
const char kNoMatch[] = "NOT MATCH _authenticationParameters\n";

// The object behind a request, the answer to it, and the keys of its device.
class DecodeTest : public testing::Test {
  protected:
    // flags: of the request and of the answer.
    void Ask(uint32_t authCode, uint32_t privCode, uint8_t flags) {
        const ByteBuffer engine = ToBuffer(answer_.engineId);
        message_.SetAuth(authCode, "authpass1");
        message_.SetPrivacy(privCode, "privpass1");
        message_.SetFlags((flags & kMsgFlagAuth) != 0, (flags & kMsgFlagPriv) != 0);
        message_.SetEngine(engine, 7, 70000);
        authKey_ = PasswordToKey(crypto_, authCode, ToBuffer(TextBytes("authpass1")), engine);
        privKey_ = PasswordToKey(crypto_, authCode, ToBuffer(TextBytes("privpass1")), engine);
        answer_.flagsTlv = Tlv(0x04, {flags});
    }
    // Encrypts whole blocks of plain text, so that the caller's padding is all there is.
    void EncryptDes(const Bytes& plain) {
        const ByteBuffer text = ToBuffer(plain);
        ByteBuffer cipher, salt;
        DesPrivacy().Encrypt(crypto_, {text, privKey_, 7, 70000}, cipher, salt);
        answer_.scopedTlv = Tlv(0x04, ToBytes(cipher));
        answer_.salt = ToBytes(salt);
    }
    int32_t Decode(const Bytes& datagram) {
        ExactBlock block(datagram);
        return message_.Decode(block.Data(), block.Size());
    }
    int32_t Decode() { return Decode(answer_.Build()); }
    std::string FirstText() {
        std::string text;
        const VarBindList& list = message_.Bindings();
        if (list.count > 0) VarBindValueToText(list.bindings[0], text);
        return text;
    }
    Bytes Signed(uint32_t code, size_t size) {
        return answer_.BuildSigned(size, [&](const Bytes& datagram) {
            ByteBuffer mac;
            const auto length = static_cast<uint32_t>(datagram.size());
            crypto_.Hmac(code, authKey_, datagram.data(), length, mac);
            return ToBytes(mac);
        });
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
    message_.SetFlags(true, true);
    UnitLog log;
    EXPECT_EQ(static_cast<int32_t>(answer_.Build().size()), Decode());
    EXPECT_EQ(answer_.engineId, ToBytes(message_.EngineId()));
    EXPECT_EQ(7, message_.EngineBoots());
    EXPECT_EQ(70000, message_.EngineTime());
    EXPECT_EQ(1500u, message_.MsgMaxSize());
    const MessageRecord& record = message_.Record();
    EXPECT_FALSE(record.authFlag || record.privFlag || record.reportableFlag);
    EXPECT_EQ(Lines{kEntry}, log.Lines());
    message_.SetFlags(true, true);
    answer_.flagsTlv = Tlv(0x04, {});
    EXPECT_EQ(0, Decode());
    EXPECT_FALSE(record.authFlag || record.privFlag || record.reportableFlag);
}

// An answer of net-snmp 5.9.3.
TEST_F(DecodeTest, ReadsWhatARealAgentEncrypted) {
    answer_.engineId = Hex("80001f8880f9d87e2563c9056b00000000");
    Ask(kAuthSha256, kPrivAes, 3);
    UnitLog log;
    EXPECT_EQ(
        158,
        Decode(Hex(
            "30819b020103300f02020100020300ffe304010302010304463044041180001f8880f9d87e2563c9056b00"
            "00000002010102010504057332353661041848a5f573ba764ae7bbd1315213a422a62028360cdb38d9ac04"
            "08c67e867803b298e8043dc6885b55841412b59899f1ac561d55f4fdd2bdf590a32b3f96cd4cb7b118dd81"
            "e8f8779f23dc374805f0861c42cceda72011b7bb14c2c26269fa931dcc")));
    EXPECT_EQ("lab-device", FirstText());
    EXPECT_TRUE(log.Has(kMatch));
}

TEST_F(DecodeTest, AWrongMacIsLoggedAndTheAnswerUsed) {
    const uint32_t macLengths[] = {12, 12, 16, 24, 32, 48};
    for (uint32_t code = kAuthMd5; code <= kAuthSha512; ++code) {
        Ask(code, kPrivNone, 1);
        Bytes datagram = Signed(code, macLengths[code - 1]);
        UnitLog log;
        EXPECT_EQ(static_cast<int32_t>(datagram.size()), Decode(datagram));
        EXPECT_EQ("value", FirstText());
        EXPECT_EQ(macLengths[code - 1], message_.Record().usm.authParameters.length);
        datagram.back() ^= 1;
        Decode(datagram);
        EXPECT_EQ("valud", FirstText());
        EXPECT_EQ((Lines{kEntry, kMatch, kEntry, kNoMatch}), log.Lines()) << code;
    }
    // As good as wrong: one that is cut to eleven bytes, and none to compare it with.
    UnitLog log;
    Ask(kAuthMd5, kPrivNone, 1);
    EXPECT_GT(Decode(Signed(kAuthMd5, 11)), 0);
    Ask(kAuthMd5, kPrivNone, 1);
    message_.SetAuth(kAuthMd5, "");
    EXPECT_GT(Decode(), 0);
    EXPECT_EQ((Lines{kEntry, kNoMatch, kEntry, "ERROR:not yet supported HASH VALUE:1\n", kNoMatch}),
              log.Lines());
}

TEST_F(DecodeTest, ZeroesTheMacInTheReceivedBufferAndNothingElse) {
    const Bytes mac = Hex("a1a2a3a4a5a6a7a8a9aaabac");
    const Bytes rows[][2] = {
        {Hex("04 0c") + mac, Hex("04 0c") + Bytes(12, 0)},
        // A length in its long form shifts the zeros by a byte: they stay within the OCTET STRING.
        {Hex("04 81 0c") + mac, Hex("04 81") + Bytes(12, 0) + Hex("ac")}};
    for (const auto& row : rows) {
        answer_.macTlv = row[0];
        ExactBlock block(answer_.Build());
        EXPECT_GT(message_.Decode(block.Data(), block.Size()), 0);
        EXPECT_EQ(mac, ToBytes(message_.Record().usm.authParameters));
        answer_.macTlv = row[1];
        EXPECT_EQ(answer_.Build(), block.Content());
    }
}

// As PKCS#5 has it, or garbage, behind scoped PDUs of all eight lengths modulo a block.
TEST_F(DecodeTest, DesPaddingOfAnyStyleIsIgnored) {
    for (size_t size = 1; size <= 8; ++size) {
        const Bytes scoped = ScopedTextTlv(std::string(size, 'v'));
        const size_t missing = 8 - scoped.size() % 8;
        for (const Bytes& padding : {Bytes(missing, missing & 0xFF), Bytes(missing + 8, 0x30)}) {
            Ask(kAuthMd5, kPrivDes, 2);
            EncryptDes(scoped + padding);
            EXPECT_GT(Decode(), 0);
            EXPECT_EQ(std::string(size, 'v'), FirstText()) << padding.size();
        }
    }
}

TEST_F(DecodeTest, CipherTextsThatCannotBeDecryptedAreNoAnswer) {
    Ask(kAuthMd5, kPrivDes, 2);
    EncryptDes(ScopedTextTlv("twelve bytes"));
    const Bytes cipher(answer_.scopedTlv.begin() + 2, answer_.scopedTlv.end());
    for (const size_t missing : {size_t{1}, size_t{8}, cipher.size()}) {
        Ask(kAuthMd5, kPrivDes, 2);
        answer_.scopedTlv = Tlv(0x04, Prefix(cipher, cipher.size() - missing));
        EXPECT_EQ(0, Decode()) << missing;
    }
    // Without a key, private answers to a plain request stay closed.
    Ask(kAuthNone, kPrivNone, 0);
    answer_.flagsTlv = Tlv(0x04, {0x03});
    answer_.scopedTlv = Tlv(0x04, cipher);
    EXPECT_EQ(0, Decode());
    EXPECT_EQ(0, message_.Bindings().count);
}

TEST_F(DecodeTest, APlainReportToAPrivateRequestIsRead) {
    Ask(kAuthSha1, kPrivAes, 3);
    answer_.flagsTlv = Tlv(0x04, {0x00});
    UnitLog log;
    EXPECT_GT(Decode(), 0);
    EXPECT_EQ("value", FirstText());
    EXPECT_EQ(Lines{kEntry}, log.Lines());
}

TEST_F(DecodeTest, AnotherLayoutIsNoAnswer) {
    std::vector<V3Datagram> others(5, answer_);
    others[0].securityModel = 2;
    others[1].flagsTlv = Tlv(0x02, {0x00});
    others[2].scopedTlv[0] = 0x31;
    others[3].scopedTlv = Tlv(0x04, answer_.scopedTlv);  // encrypted, but the flag is missing
    others[4].scopedTlv = ScopedTextTlv(std::string(127, 'v'));  // more than a binding holds
    for (const V3Datagram& other : others) {
        EXPECT_EQ(0, Decode(other.Build())) << testing::PrintToString(other.Build());
    }
    const Bytes whole = answer_.Build();
    const size_t usmAt = 5 + 2 + whole[6];  // behind version and header
    const std::pair<size_t, int> bytes[] = {
        {0, 0x31},
        {5, 0x31},
        {usmAt, 0x30},
        {usmAt + 2, 0x31},
        // Sequences that are shorter or longer than their fields.
        {6, whole[6] - 1},
        {usmAt + 3, whole[usmAt + 3] - 1},
        {usmAt + 3, whole[usmAt + 3] + 1}};
    for (const auto& [at, byte] : bytes) {
        Bytes changed = whole;
        changed[at] = static_cast<uint8_t>(byte);
        EXPECT_EQ(0, Decode(changed)) << at << " " << byte;
    }
    EXPECT_EQ(0, message_.Decode(nullptr, 0));
    EXPECT_EQ(0, message_.Decode(ExactBlock(whole).Data(), -1));
    EXPECT_GT(Decode(whole), 0);
}

// What stands there would do as the next part.
TEST_F(DecodeTest, NoFieldLeavesItsSequence) {
    const Bytes front = IntegerTlv(256) + IntegerTlv(65507) + answer_.flagsTlv;
    // The security parameters are the security model's length: it ends in 00 00 00 01, and its
    // content is 3.
    const Bytes fields = Hex("30 0c 04 00 02 00 02 00 04 00 04 00 04 00");
    const Bytes usm = Tlv(0x04, fields + Hex("00 00 00 01 03"));
    const Bytes model = {0x02, static_cast<uint8_t>(0x80 | (usm.size() - 1))};
    EXPECT_EQ(
        0, Decode(Tlv(0x30, IntegerTlv(3) + Tlv(0x30, front + model) + usm + answer_.scopedTlv)));
    // An empty OCTET STRING, and a SEQUENCE behind it that is security parameters and scoped PDU in
    // one.
    const Bytes both = Hex("30 0e 04 00 04 00 a2 00 04 00 04 00 04 00 30 00");
    EXPECT_EQ(0, Decode(Tlv(0x30, IntegerTlv(3) + Tlv(0x30, front + IntegerTlv(3)) + Tlv(0x04, {}) +
                                      both)));
}

// With an outer length that fits, so that the inner ones are checked.
TEST_F(DecodeTest, EveryPrefixIsRefusedAndLeavesWhatWasReadUntilThen) {
    const Bytes content = answer_.Content();
    for (size_t size = 0; size < content.size(); ++size) {
        message_.SetOid(".1.3.6.1.2.1.1.5.0");
        EXPECT_EQ(0, Decode(Tlv(0x30, Prefix(content, size)))) << size;
        EXPECT_EQ(0, message_.Bindings().count);
    }
    EXPECT_EQ(answer_.engineId, ToBytes(message_.EngineId()));
}

TEST_F(DecodeTest, ADecodedUserNameSurvivesAProbeAsText) {
    answer_.engineId.clear();
    for (const Bytes& name : {Bytes{'a', 'b', 0, 'c'}, Bytes(200, 'n')}) {
        answer_.user = name;
        EXPECT_GT(Decode(), 0);
        EXPECT_EQ(name, ToBytes(message_.Record().usm.userName));
        message_.Encode();
        EXPECT_EQ(Prefix(name, name.size() == 4 ? 2 : 127),
                  ToBytes(message_.Record().usm.userName));
    }
}

// Of DES with SHA-1 and with SHA-2, and, on decoding, of AES with SHA-2; SHA-224 is another
// protocol.
TEST_F(DecodeTest, TheLogTellsOfThesePrivacyKeysAlone) {
    const std::string sha1Des = "=====pkey for privacy password (SHA1) w/ DES===== \n";
    const std::string sha2Des = "=====akey for authentication password (SHA2)===== \n";
    const std::string sha2Aes =
        "=====In SHA2 for _userSecurityModel._authenticationSecret  AES=====\n";
    const std::map<std::pair<uint32_t, uint32_t>, std::pair<std::string, std::string>> told = {
        {{2, 1}, {sha1Des, sha1Des}}, {{4, 1}, {sha2Des, sha2Des}}, {{5, 1}, {sha2Des, sha2Des}},
        {{6, 1}, {sha2Des, sha2Des}}, {{4, 2}, {"", sha2Aes}},      {{5, 2}, {"", sha2Aes}},
        {{6, 2}, {"", sha2Aes}}};
    for (uint32_t auth = kAuthNone; auth <= kAuthSha512; ++auth) {
        for (uint32_t priv = kPrivDes; priv <= 3; ++priv) {
            Ask(auth, priv, 2);
            UnitLog log;
            message_.Encode();
            message_.Decode(nullptr, 0);
            std::string lines;
            for (const std::string& line : log.Lines()) lines += line;
            const auto found = told.find({auth, priv});
            const auto expected = found == told.end() ? decltype(found->second)() : found->second;
            EXPECT_EQ("VxSNMPv3::Encode()\n" + expected.first + kEntry + expected.second, lines);
        }
    }
}

}  // namespace
}  // namespace vndiscover
