// What VxSNMPv3 sends.
#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/snmp_datagrams.h"
#include "helpers/unit_log.h"
#include "snmpv3/vx_snmpv3.h"

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

// RFC 3412 6: every field empty, but for the defaults of msgID (256), msgMaxSize and request-id
// (257).
Bytes ProbeWithFlags(const std::string& flags) {
    return Hex(
        "30 3a 02 01 03"
        "30 0f 02 02 01 00 02 03 01 00 00 04 01" +
        flags +
        "02 01 03"
        "04 10 30 0e 04 00 02 01 00 02 01 00 04 00 04 00 04 00"
        "30 12 04 00 04 00 a0 0c 02 02 01 01 02 01 00 02 01 00 30 00");
}

class EncodeTest : public testing::Test {
  protected:
    EncodeTest() {
        message_.SetUser("user");
        message_.SetEngine(ToBuffer(sent_.engineId), 7, 70000);
        message_.SetOid(".1.3.6.1.2.1.1.5.0");
        sent_.msgMaxSize = 65536;
        sent_.flagsTlv = Tlv(0x04, {0x04});
        sent_.scopedTlv = ScopedPduTlv(0xA0, BindingTlv(SysNameOid(), {0x05, 0x00}));
    }
    Bytes Encoded() { return ToBytes(message_.Encode()); }

    VxSNMPv3 message_;
    V3Datagram sent_;  // what is expected
};

TEST(EncodeProbe, CarriesNoSecurityWhateverTheFlags) {
    VxSNMPv3 probe;
    UnitLog log;
    EXPECT_EQ(ProbeWithFlags("04"), ToBytes(probe.Encode()));
    EXPECT_EQ(Lines{"VxSNMPv3::Encode()\n"}, log.Lines());
    probe.SetUser("user");
    probe.SetAuth(kAuthSha1, "authpass1");
    probe.SetPrivacy(kPrivAes, "privpass1");
    probe.SetFlags(true, true);
    EXPECT_EQ(ProbeWithFlags("07"), ToBytes(probe.Encode()));
    EXPECT_EQ(TextBytes("user"), ToBytes(probe.Record().usm.userName));
    EXPECT_TRUE(probe.Record().authFlag && probe.Record().privFlag);
}

TEST_F(EncodeTest, WithoutSecurityTheRequestIsPlain) {
    EXPECT_EQ(sent_.Build(), Encoded());
    message_.SetPduType(kPduGetNextRequest);
    message_.SetMsgId(0x12345678);
    message_.SetOid(".1.3.6.1.2.1.1.5.0");
    sent_.msgId = 0x12345678;
    sent_.scopedTlv = ScopedPduTlv(0xA1, BindingTlv(SysNameOid(), {0x05, 0x00}));
    EXPECT_EQ(sent_.Build(), Encoded());
    message_.SetAuth(kAuthSha512, "authpass1");
    message_.SetPrivacy(kPrivDes, "privpass1");
    sent_.macTlv = Tlv(0x04, Bytes(48, 0));
    sent_.salt = Bytes(8, 0);
    EXPECT_EQ(sent_.Build(), Encoded()) << "parameters of protocols without their flags";
}

// tshark 4.0, given the passwords, found this correctly authenticated and decrypted it, and the
// agent net-snmp 5.9.3 answered.
TEST(EncodeSecured, IsWhatAnIndependentToolChecked) {
    VxSNMPv3 message;
    message.SetUser("sha1u");
    message.SetAuth(kAuthSha1, "authpass1");
    message.SetPrivacy(kPrivDes, "privpass1");
    message.SetFlags(true, true);
    message.SetEngine(ToBuffer(Hex("80001f8880f9d87e2563c9056b00000000")), 1, 4);
    message.SetOid(".1.3.6.1.2.1.1.5.0");
    const Bytes checked = Hex(
        "307a020103300f020201000203010000040107020103043a3038041180001f8880f9d87e2563c9056b000000"
        "0002010102010404057368613175040cf8fe75f0ed008d3aaa11b2b8040800000001002a4c1a04287ae6b9e2"
        "a3f3e5eec27b0ab98f82cd558db6de69ad5f959312b4431ea63401b42300e8018e6775be");
    EXPECT_EQ(checked, ToBytes(message.Encode()));
    // The object keeps its parameters; the next HMAC must not cover the last one.
    EXPECT_EQ(checked, ToBytes(message.Encode()));
}

TEST_F(EncodeTest, WithoutKeysNothingIsAuthenticatedAndNothingPrivateSentInTheClear) {
    struct Row {
        uint32_t authCode, privCode;
        const char* password;
        size_t macLength, saltLength;
        std::string lines;
    };
    const std::string no = "Not support Authentication protocol:";
    const Row rows[] = {{kAuthSha1, kPrivAes, "", 12, 8, no + "2\n" + no + "2\n"},
                        {kAuthSha1, kPrivAes, nullptr, 12, 8, no + "2\n" + no + "2\n"},
                        {kAuthNone, 3, "p", 0, 0, no + "0\n"},
                        {7, 3, "p", 0, 0, no + "7\nNot supported HashAlgorithm:5\n"}};
    for (const Row& row : rows) {
        VxSNMPv3 message;
        message.SetUser("user");
        message.SetEngine(ToBuffer(sent_.engineId), 7, 70000);
        message.SetAuth(row.authCode, row.password);
        message.SetPrivacy(row.privCode, row.password);
        message.SetFlags(true, true);
        sent_.flagsTlv = Tlv(0x04, {0x07});
        sent_.macTlv = Tlv(0x04, Bytes(row.macLength, 0));
        sent_.salt = Bytes(row.saltLength, 0);
        sent_.scopedTlv = Tlv(0x04, {});
        UnitLog log;
        EXPECT_EQ(sent_.Build(), ToBytes(message.Encode()));
        std::string lines;
        for (const std::string& line : log.Lines()) lines += line;
        EXPECT_EQ("VxSNMPv3::Encode()\n" + row.lines, lines);
    }
}

TEST_F(EncodeTest, WhatDoesNotFitIsRefused) {
    EXPECT_FALSE(message_.SetUser(std::string(128, 'u').c_str()));
    EXPECT_EQ(sent_.Build(), Encoded());
    std::string longest = "1.3";
    for (int i = 0; i < 123; ++i) longest += ".1";  // 124 content bytes, as many as a binding holds
    EXPECT_TRUE(message_.SetOid(longest.c_str()));
    EXPECT_EQ(1, message_.Bindings().count);
    const std::string tooLong = longest + ".1";
    const std::string longerThanALength = longest + longest.substr(1) + longest.substr(1);
    for (const std::string& text : {tooLong, longerThanALength}) {
        EXPECT_FALSE(message_.SetOid(text.c_str()));
        EXPECT_EQ(0, message_.Bindings().count);
    }
    for (const char* text : {"", ".1", static_cast<const char*>(nullptr)}) {
        EXPECT_TRUE(message_.SetOid(text));
        EXPECT_EQ(0, message_.Bindings().bindings[0].nameLength);
    }
}

}  // namespace
}  // namespace vndiscover
