// SNMPv3 messages that VxSNMPv3 builds and reads.
#include "snmpv3/codec/vx_snmpv3.h"

#include <gtest/gtest.h>

#include "helpers/log_capture.h"
#include "helpers/password_to_key.h"
#include "helpers/snmp_datagrams.h"
#include "snmpv3/codec/security_settings.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"

namespace vndiscover {
namespace {

class EncodeTest : public testing::Test {
  protected:
    EncodeTest() {
        message_.SetUser("user");
        message_.SetEngine(ToBuffer(sent_.engineId), 7, 70000);
        message_.SetOid(kSysName);
    }
    Bytes Encoded() { return ToBytes(message_.Encode()); }

    PasswordKeys keys_;
    VxSNMPv3 message_{&keys_};
    V3Datagram sent_ = V3RequestFields(kSysName);  // the expected request
};

TEST(EncodeDiscovery, CarriesNoEngineAndNoSecurityWhateverTheFlags) {
    VxSNMPv3 probe;
    probe.SetEngine({}, 7, 70000);  // of a report without an engine ID
    EXPECT_EQ(V3Discovery(), ToBytes(probe.Encode()));
    probe.SetUser("user");
    probe.SetAuth(kAuthSha1, "authpass1");
    probe.SetPrivacy(kPrivAes, "privpass1");
    probe.SetFlags(true, true);
    EXPECT_EQ(V3Discovery("07"), ToBytes(probe.Encode()));
    EXPECT_EQ(TextBytes("user"), ToBytes(probe.Record().usm.userName));
    EXPECT_TRUE(probe.Record().authFlag && probe.Record().privFlag);
}

TEST_F(EncodeTest, NoAuthNoPrivRequestIsPlain) {
    message_.SetPduType(kPduGetNextRequest);
    message_.SetMsgId(0x12345678);
    message_.SetOid(kSysName);
    sent_ = V3RequestFields(kSysName, 0xA1);
    sent_.msgId = 0x12345678;
    message_.SetAuth(kAuthSha512, "authpass1");
    message_.SetPrivacy(kPrivDes, "privpass1");
    sent_.macTlv = Tlv(0x04, Bytes(48, 0));
    sent_.salt = Bytes(8, 0);
    EXPECT_EQ(sent_.Build(), Encoded()) << "parameters of protocols without their flags";
}

// tshark 4.0, given the passwords, verified and decrypted this request, and the agent
// net-snmp 5.9.3 answered it.
TEST_F(EncodeTest, MatchesARequestThatIndependentToolsVerified) {
    message_.SetUser("sha1u");
    message_.SetAuth(kAuthSha1, "authpass1");
    message_.SetPrivacy(kPrivDes, "privpass1");
    message_.SetFlags(true, true);
    message_.SetEngine(ToBuffer(Hex("80001f8880f9d87e2563c9056b00000000")), 1, 4);
    const Bytes checked = Hex(
        "307a020103300f020201000203010000040107020103043a3038041180001f8880f9d87e2563c9056b000000"
        "0002010102010404057368613175040cf8fe75f0ed008d3aaa11b2b8040800000001002a4c1a04287ae6b9e2"
        "a3f3e5eec27b0ab98f82cd558db6de69ad5f959312b4431ea63401b42300e8018e6775be");
    EXPECT_EQ(checked, Encoded());
    // The object keeps its parameters, but the next HMAC must not cover the previous one.
    EXPECT_EQ(checked, Encoded());
}

TEST_F(EncodeTest, WithoutKeysNothingPrivateIsSentInTheClear) {
    struct Row {
        uint32_t authCode, privCode;
        const char* password;
        size_t macLength, saltLength;
        std::string lines;
    };
    const std::string no = "Not support Authentication protocol:";
    const Row rows[] = {{kAuthNone, 3, "p", 0, 0, no + "0\n"},
                        {7, 3, "p", 0, 0, no + "7\nNot supported HashAlgorithm:5\n"},
                        {kAuthSha1, kPrivAes, nullptr, 12, 8, ""},
                        {kAuthSha1, kPrivAes, "", 12, 8, ""}};
    message_.SetFlags(true, true);
    sent_.flagsTlv = Tlv(0x04, {0x07});
    sent_.scopedTlv = Tlv(0x04, {});
    for (const Row& row : rows) {
        message_.SetAuth(row.authCode, row.password);
        message_.SetPrivacy(row.privCode, row.password);
        sent_.macTlv = Tlv(0x04, Bytes(row.macLength, 0));
        sent_.salt = Bytes(row.saltLength, 0);
        UnitLog log;
        EXPECT_EQ(sent_.Build(), Encoded());
        EXPECT_EQ("VxSNMPv3::Encode()\n" + row.lines, log.Text());
    }
}

TEST_F(EncodeTest, RefusesNamesAndOidsThatDoNotFit) {
    EXPECT_FALSE(message_.SetUser(std::string(128, 'u').c_str()));
    EXPECT_EQ(sent_.Build(), Encoded());
    EXPECT_TRUE(message_.SetOid(LongOid(124).c_str()));  // as many as a binding holds
    EXPECT_EQ(1, message_.Bindings().count);
    for (const size_t octets : {125, 300}) {
        EXPECT_FALSE(message_.SetOid(LongOid(octets).c_str()));
        EXPECT_EQ(0, message_.Bindings().count);
    }
    for (const char* text : {"", ".1", static_cast<const char*>(nullptr)}) {
        EXPECT_TRUE(message_.SetOid(text));
        EXPECT_EQ(0, message_.Bindings().bindings[0].nameLength);
    }
}

TEST(SecretTextTest, LeavesNothingOfItself) {
    alignas(SecretText) uint8_t block[sizeof(SecretText)];
    const auto* secret = new (block) SecretText{"authpass1"};  // short enough to be held in place
    secret->~SecretText();
    EXPECT_EQ(std::string::npos, std::string(block, std::end(block)).find("auth"));
}

const std::string kEntry = "VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n";
const std::string kMatch = "MATCH _authenticationParameters\n";
const std::string kNoMatch = "NOT MATCH _authenticationParameters\n";

// A request's object, its answer, and the keys of the device.
class DecodeTest : public testing::Test {
  protected:
    // flags are those of the request and of the answer.
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
    // Encrypts whole blocks of plain text, so that there is only the caller's padding.
    void EncryptDes(const Bytes& plain) {
        const ByteBuffer text = ToBuffer(plain);
        ByteBuffer cipher, salt;
        DesPrivacy().Encrypt(crypto_, {text, privKey_, 7, 70000}, cipher, salt);
        answer_.scopedTlv = Tlv(0x04, ToBytes(cipher));
        answer_.salt = ToBytes(salt);
    }
    // Zeroes the HMAC in the datagram.
    int32_t DecodeInPlace(Bytes& datagram) {
        return message_.Decode(datagram.data(), static_cast<int32_t>(datagram.size()));
    }
    int32_t Decode(const Bytes& datagram) {
        Bytes block = datagram;
        return DecodeInPlace(block);
    }
    int32_t Decode() { return Decode(answer_.Build()); }
    std::string FirstText() {
        std::string text;
        const VarBindList& list = message_.Bindings();
        if (list.count > 0) VarBindValueToText(list.bindings[0], text);
        return text;
    }
    // The answer with its HMAC, truncated to `size`.
    Bytes Signed(uint32_t code, size_t size) {
        answer_.macTlv = Tlv(0x04, Bytes(size, 0));
        const Bytes whole = answer_.Build();
        ByteBuffer mac;
        crypto_.Hmac(code, authKey_, whole.data(), static_cast<uint32_t>(whole.size()), mac);
        answer_.macTlv = Tlv(0x04, Prefix(ToBytes(mac), size));
        return answer_.Build();
    }

    PasswordKeys keys_;
    VxSNMPv3 message_{&keys_};
    V3Datagram answer_;
    CryptoSession crypto_;
    ByteBuffer authKey_;
    ByteBuffer privKey_;
};

// In answer to an engine discovery, and to an authPriv request.
TEST_F(DecodeTest, PlainReportSetsTheEngine) {
    answer_.msgMaxSize = 1500;
    const MessageRecord& record = message_.Record();
    message_.SetFlags(true, true);
    UnitLog log;
    EXPECT_EQ(static_cast<int32_t>(answer_.Build().size()), Decode());
    EXPECT_EQ(answer_.engineId, ToBytes(message_.EngineId()));
    EXPECT_EQ(7, message_.EngineBoots());
    EXPECT_EQ(70000, message_.EngineTime());
    EXPECT_EQ(1500u, message_.MsgMaxSize());
    for (const Bytes& flagsTlv : {Hex("04 01 00"), Hex("04 00"), Hex("02 01 00")}) {
        const bool isRead = flagsTlv == Hex("04 01 00");
        Ask(kAuthSha1, kPrivAes, 3);
        answer_.flagsTlv = flagsTlv;
        EXPECT_EQ(isRead, Decode() != 0);
        EXPECT_EQ(isRead ? "value" : "", FirstText());
        EXPECT_FALSE(record.authFlag || record.privFlag || record.reportableFlag);
    }
    EXPECT_EQ(kEntry + kEntry + kEntry + kEntry, log.Text());
}

// An answer of net-snmp 5.9.3.
TEST_F(DecodeTest, DecryptsARealAgentsAnswer) {
    answer_.engineId = Hex("80001f8880f9d87e2563c9056b00000000");
    Ask(kAuthSha256, kPrivAes, 3);
    UnitLog log;
    Decode(Hex(
        "30819b020103300f02020100020300ffe304010302010304463044041180001f8880f9d87e2563c9056b000000"
        "0002010102010504057332353661041848a5f573ba764ae7bbd1315213a422a62028360cdb38d9ac0408c67e86"
        "7803b298e8043dc6885b55841412b59899f1ac561d55f4fdd2bdf590a32b3f96cd4cb7b118dd81e8f8779f23dc"
        "374805f0861c42cceda72011b7bb14c2c26269fa931dcc"));
    EXPECT_EQ("lab-device", FirstText());
    EXPECT_TRUE(log.Has(kMatch));
}

TEST_F(DecodeTest, WrongHmacIsLoggedAndTheAnswerUsed) {
    const uint32_t macLengths[] = {12, 12, 16, 24, 32, 48};
    for (uint32_t code = kAuthMd5; code <= kAuthSha512; ++code) {
        Ask(code, kPrivNone, 1);
        Bytes datagram = Signed(code, macLengths[code - 1]);
        UnitLog log;
        Decode(datagram);
        EXPECT_EQ("value", FirstText());
        datagram.back() ^= 1;
        Decode(datagram);
        EXPECT_EQ("valud", FirstText());
        EXPECT_EQ(kEntry + kMatch + kEntry + kNoMatch, log.Text()) << code;
    }
    // One that is truncated to eleven bytes, and one without a key to check it, count as wrong.
    UnitLog log;
    Ask(kAuthMd5, kPrivNone, 1);
    EXPECT_GT(Decode(Signed(kAuthMd5, 11)), 0);
    message_.SetAuth(kAuthMd5, "");
    EXPECT_GT(Decode(), 0);
    EXPECT_EQ(kEntry + kNoMatch + kEntry + kNoMatch, log.Text());
}

TEST_F(DecodeTest, ZeroesOnlyTheHmacInTheReceivedBuffer) {
    const Bytes mac = Hex("a1a2a3a4a5a6a7a8a9aaabac");
    const Bytes rows[][2] = {
        {Hex("04 0c") + mac, Hex("04 0c") + Bytes(12, 0)},
        // The long form of a length shifts the zeros by a byte, but within the OCTET STRING.
        {Hex("04 81 0c") + mac, Hex("04 81") + Bytes(12, 0) + Hex("ac")}};
    for (const auto& row : rows) {
        answer_.macTlv = row[0];
        Bytes datagram = answer_.Build();
        EXPECT_GT(DecodeInPlace(datagram), 0);
        EXPECT_EQ(mac, ToBytes(message_.Record().usm.authParameters));
        answer_.macTlv = row[1];
        EXPECT_EQ(answer_.Build(), datagram);
    }
}

// PKCS#5 padding or garbage, after scoped PDUs of all eight lengths modulo the block size.
TEST_F(DecodeTest, IgnoresDesPaddingOfAnyStyle) {
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

TEST_F(DecodeTest, UndecryptableCipherTextIsNoAnswer) {
    Ask(kAuthMd5, kPrivDes, 2);
    EncryptDes(ScopedTextTlv("twelve bytes"));
    const Bytes cipher(answer_.scopedTlv.begin() + 2, answer_.scopedTlv.end());
    for (const size_t missing : {size_t{1}, size_t{8}, cipher.size()}) {
        Ask(kAuthMd5, kPrivDes, 2);
        answer_.scopedTlv = Tlv(0x04, Prefix(cipher, cipher.size() - missing));
        EXPECT_EQ(0, Decode()) << missing;
    }
    // Without a key, encrypted answers to a plain request cannot be read.
    Ask(kAuthNone, kPrivNone, 3);
    message_.SetFlags(false, false);
    answer_.scopedTlv = Tlv(0x04, cipher);
    EXPECT_EQ(0, Decode());
}

TEST_F(DecodeTest, OtherLayoutsAreNoAnswer) {
    std::vector<V3Datagram> others(5, answer_);
    others[0].securityModel = 2;
    others[1].flagsTlv = Tlv(0x02, {0x00});
    others[2].scopedTlv[0] = 0x31;
    others[3].scopedTlv = Tlv(0x04, answer_.scopedTlv);  // encrypted, but the flag is missing
    others[4].scopedTlv = ScopedTextTlv(std::string(127, 'v'));  // too long for a binding
    for (const V3Datagram& other : others) {
        EXPECT_EQ(0, Decode(other.Build())) << ToHex(other.Build());
    }
    const Bytes whole = answer_.Build();
    const size_t usmAt = 5 + 2 + whole[6];  // after version and header
    // Four tags, and sequences that are shorter or longer than their fields.
    const std::pair<size_t, int> changes[] = {
        {0, 1}, {5, 1}, {usmAt, 1}, {usmAt + 2, 1}, {6, -1}, {usmAt + 3, -1}, {usmAt + 3, 1}};
    for (const auto& [at, change] : changes) {
        Bytes changed = whole;
        changed[at] = static_cast<uint8_t>(changed[at] + change);
        EXPECT_EQ(0, Decode(changed)) << at << " " << change;
    }
    EXPECT_EQ(0, message_.Decode(nullptr, 0));
    EXPECT_EQ(0, message_.Decode(Bytes(whole).data(), -1));
}

// The bytes past each sequence would be valid as its next field.
TEST_F(DecodeTest, FieldsMayNotLeaveTheirSequence) {
    const Bytes front = IntegerTlv(256) + IntegerTlv(65507) + answer_.flagsTlv;
    // The security parameters are the security model's length: it ends in 00 00 00 01, and its
    // content is 3.
    const Bytes usm = Tlv(0x04, Hex("30 0c 04 00 02 00 02 00 04 00 04 00 04 00 00 00 00 01 03"));
    const Bytes model = {0x02, static_cast<uint8_t>(0x80 | (usm.size() - 1))};
    // An empty OCTET STRING, followed by a SEQUENCE that is both security parameters and scoped
    // PDU.
    const Bytes both = Hex("04 00 30 0e 04 00 04 00 a2 00 04 00 04 00 04 00 30 00");
    for (const Bytes& rest : {Tlv(0x30, front + model) + usm + answer_.scopedTlv,
                              Tlv(0x30, front + IntegerTlv(3)) + both}) {
        EXPECT_EQ(0, Decode(Tlv(0x30, IntegerTlv(3) + rest))) << ToHex(rest);
    }
}

// With an outer length that fits, so that the inner ones are checked.
TEST_F(DecodeTest, RefusesEveryPrefixAndKeepsFieldsReadUntilThen) {
    const Bytes content = answer_.Content();
    for (size_t size = 0; size < content.size(); ++size) {
        message_.SetOid(kSysName);
        EXPECT_EQ(0, Decode(Tlv(0x30, Prefix(content, size)))) << size;
        EXPECT_EQ(0, message_.Bindings().count);
    }
    EXPECT_EQ(answer_.engineId, ToBytes(message_.EngineId()));
}

TEST_F(DecodeTest, DiscoveryCutsADecodedUserNameAtItsZeroByte) {
    answer_.engineId.clear();
    const ByteBuffer& name = message_.Record().usm.userName;
    for (const auto& [sent, kept] : {std::pair(Bytes{'a', 'b', 0, 'c'}, TextBytes("ab")),
                                     std::pair(Bytes(200, 'n'), Bytes(127, 'n'))}) {
        answer_.user = sent;
        Decode();
        EXPECT_EQ(sent, ToBytes(name));
        message_.Encode();
        EXPECT_EQ(kept, ToBytes(name));
    }
}

// For DES with SHA-1 and with SHA-2, and when decoding, for AES with SHA-2; not for SHA-224.
TEST_F(DecodeTest, LogsOnlyThesePrivacyKeys) {
    const std::string sha1Des = "=====pkey for privacy password (SHA1) w/ DES===== \n";
    const std::string sha2Des = "=====akey for authentication password (SHA2)===== \n";
    const std::string sha2Aes =
        "=====In SHA2 for _userSecurityModel._authenticationSecret  AES=====\n";
    const std::string des[] = {"", "", sha1Des, "", sha2Des, sha2Des, sha2Des};
    const std::string aes[] = {"", "", "", "", sha2Aes, sha2Aes, sha2Aes};
    for (uint32_t auth = kAuthNone; auth <= kAuthSha512; ++auth) {
        for (uint32_t priv = kPrivDes; priv <= 3; ++priv) {
            Ask(auth, priv, 2);
            UnitLog log;
            message_.Encode();
            message_.Decode(nullptr, 0);
            const std::string both = priv == kPrivDes ? des[auth] : "";
            EXPECT_EQ(
                "VxSNMPv3::Encode()\n" + both + kEntry + (priv == kPrivAes ? aes[auth] : both),
                log.Text());
        }
    }
}

}  // namespace
}  // namespace vndiscover
