// What VxSNMPv3 sends.
#include <gtest/gtest.h>

#include "helpers/log_capture.h"
#include "helpers/snmp_datagrams.h"
#include "snmpv3/vx_snmpv3.h"

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

    VxSNMPv3 message_;
    V3Datagram sent_ = V3RequestFields(kSysName);  // what is expected
};

TEST(EncodeProbe, CarriesNoSecurityWhateverTheFlags) {
    VxSNMPv3 probe;
    EXPECT_EQ(V3Probe(), ToBytes(probe.Encode()));
    probe.SetUser("user");
    probe.SetAuth(kAuthSha1, "authpass1");
    probe.SetPrivacy(kPrivAes, "privpass1");
    probe.SetFlags(true, true);
    EXPECT_EQ(V3Probe("07"), ToBytes(probe.Encode()));
    EXPECT_EQ(TextBytes("user"), ToBytes(probe.Record().usm.userName));
    EXPECT_TRUE(probe.Record().authFlag && probe.Record().privFlag);
}

TEST_F(EncodeTest, WithoutSecurityTheRequestIsPlain) {
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

// tshark 4.0, given the passwords, found this correctly authenticated and decrypted it, and the
// agent net-snmp 5.9.3 answered.
TEST(EncodeSecured, IsWhatAnIndependentToolChecked) {
    VxSNMPv3 message;
    message.SetUser("sha1u");
    message.SetAuth(kAuthSha1, "authpass1");
    message.SetPrivacy(kPrivDes, "privpass1");
    message.SetFlags(true, true);
    message.SetEngine(ToBuffer(Hex("80001f8880f9d87e2563c9056b00000000")), 1, 4);
    message.SetOid(kSysName);
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
    const Row rows[] = {{kAuthNone, 3, "p", 0, 0, no + "0\n"},
                        {7, 3, "p", 0, 0, no + "7\nNot supported HashAlgorithm:5\n"},
                        {kAuthSha1, kPrivAes, nullptr, 12, 8, no + "2\n" + no + "2\n"},
                        {kAuthSha1, kPrivAes, "", 12, 8, no + "2\n" + no + "2\n"}};
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

TEST_F(EncodeTest, WhatDoesNotFitIsRefused) {
    EXPECT_FALSE(message_.SetUser(std::string(128, 'u').c_str()));
    EXPECT_EQ(sent_.Build(), Encoded());
    std::string longest = "1.3";
    for (int i = 0; i < 123; ++i) longest += ".1";  // 124 content bytes, as many as a binding holds
    EXPECT_TRUE(message_.SetOid(longest.c_str()));
    EXPECT_EQ(1, message_.Bindings().count);
    for (const std::string& text : {longest + ".1", longest + '.' + longest + '.' + longest}) {
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
