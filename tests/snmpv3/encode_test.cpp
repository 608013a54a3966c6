// What VxSNMPv3 sends.
#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "helpers/v3_answer.h"
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

TEST(EncodeProbe, AFreshObjectIsAProbe) {
    VxSNMPv3 probe;
    UnitLog log;
    EXPECT_EQ(ProbeWithFlags("04"), ToBytes(probe.Encode()));
    EXPECT_EQ(Lines{"VxSNMPv3::Encode()\n"}, log.Lines());
}

TEST(EncodeProbe, CarriesNoSecurityWhateverTheFlags) {
    VxSNMPv3 probe;
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
}

TEST_F(EncodeTest, ParametersOfAProtocolAreZeroWithoutItsFlag) {
    const uint32_t macLengths[] = {12, 12, 16, 24, 32, 48};
    for (uint32_t code = kAuthMd5; code <= kAuthSha512; ++code) {
        VxSNMPv3 message;
        message.SetUser("user");
        message.SetEngine(ToBuffer(sent_.engineId), 7, 70000);
        message.SetOid(".1.3.6.1.2.1.1.5.0");
        message.SetAuth(code, "authpass1");
        message.SetPrivacy(kPrivDes, "privpass1");
        sent_.macTlv = Tlv(0x04, Bytes(macLengths[code - 1], 0));
        sent_.salt = Bytes(8, 0);
        EXPECT_EQ(sent_.Build(), ToBytes(message.Encode())) << code;
    }
}

// Requests that tshark 4.0, given the passwords, found correctly authenticated and decrypted, and
// the agent net-snmp 5.9.3 answered.
struct CheckedRequest {
    const char* name;
    const char* user;
    uint32_t authCode;
    uint32_t privCode;
    int32_t engineTime;
    const char* datagram;
};

class EncodeSecured : public testing::TestWithParam<CheckedRequest> {};

TEST_P(EncodeSecured, IsWhatAnIndependentToolChecked) {
    VxSNMPv3 message;
    message.SetUser(GetParam().user);
    message.SetAuth(GetParam().authCode, "authpass1");
    message.SetPrivacy(GetParam().privCode, "privpass1");
    message.SetFlags(true, true);
    message.SetEngine(ToBuffer(Hex("80001f8880f9d87e2563c9056b00000000")), 1,
                      GetParam().engineTime);
    message.SetOid(".1.3.6.1.2.1.1.5.0");
    EXPECT_EQ(Hex(GetParam().datagram), ToBytes(message.Encode()));
    // The object keeps its parameters; the next HMAC must not cover the last one.
    EXPECT_EQ(Hex(GetParam().datagram), ToBytes(message.Encode()));
}

INSTANTIATE_TEST_SUITE_P(
    Tshark, EncodeSecured,
    testing::Values(
        CheckedRequest{"Sha1Des", "sha1u", kAuthSha1, kPrivDes, 4,
                       "307a020103300f020201000203010000040107020103043a3038041180001f8880f9d87e"
                       "2563c9056b0000000002010102010404057368613175040cf8fe75f0ed008d3aaa11b2b8"
                       "040800000001002a4c1a04287ae6b9e2a3f3e5eec27b0ab98f82cd558db6de69ad5f9593"
                       "12b4431ea63401b42300e8018e6775be"},
        CheckedRequest{"Sha256Aes", "s256a", kAuthSha256, kPrivAes, 5,
                       "30818e020103300f02020100020301000004010702010304463044041180001f8880f9d8"
                       "7e2563c9056b000000000201010201050405733235366104180d957bd9f7fc343285907c"
                       "be16f4ec339917fcb632e82fe604083c5a96e1d27b04f9043026f4190d6ae89a3530aa6a"
                       "f33c8eb09943261e551a35dbadc5aca01ef3d672bd79378e3ad41b23f63ddfff2459795b"
                       "09"}),
    [](const auto& row) { return row.param.name; });

TEST_F(EncodeTest, AnEmptyPasswordNeitherAuthenticatesNorSendsInTheClear) {
    message_.SetAuth(kAuthSha1, "");
    message_.SetPrivacy(kPrivAes, nullptr);
    message_.SetFlags(true, true);
    sent_.flagsTlv = Tlv(0x04, {0x07});
    sent_.macTlv = Tlv(0x04, Bytes(12, 0));
    sent_.salt = Bytes(8, 0);
    sent_.scopedTlv = Tlv(0x04, {});
    UnitLog log;
    EXPECT_EQ(sent_.Build(), Encoded());
    EXPECT_EQ((Lines{"VxSNMPv3::Encode()\n", "Not support Authentication protocol:2\n",
                     "Not support Authentication protocol:2\n"}),
              log.Lines());
}

TEST_F(EncodeTest, UnknownProtocolsMakeNoKeys) {
    message_.SetAuth(7, "authpass1");
    message_.SetPrivacy(3, "privpass1");
    message_.SetFlags(true, true);
    sent_.flagsTlv = Tlv(0x04, {0x07});
    sent_.scopedTlv = Tlv(0x04, {});
    UnitLog log;
    EXPECT_EQ(sent_.Build(), Encoded());
    EXPECT_EQ((Lines{"VxSNMPv3::Encode()\n", "Not support Authentication protocol:7\n",
                     "Not supported HashAlgorithm:5\n"}),
              log.Lines());
}

TEST_F(EncodeTest, UserNamesFitTheSaveAreaOfAProbe) {
    const std::string longest(127, 'u');
    EXPECT_TRUE(message_.SetUser(longest.c_str()));
    EXPECT_FALSE(message_.SetUser((longest + "u").c_str()));
    sent_.user = TextBytes(longest);
    EXPECT_EQ(sent_.Build(), Encoded());
    message_.SetEngine({}, 0, 0);
    EXPECT_EQ(ProbeWithFlags("04").size() + 14, Encoded().size());  // the binding and no name
    EXPECT_EQ(TextBytes(longest), ToBytes(message_.Record().usm.userName));
}

TEST_F(EncodeTest, AnOidThatFitsNoBindingAsksForNothing) {
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
