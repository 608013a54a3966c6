#include "snmp/snmp_message.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmp/ber_tags.h"

namespace vndiscover {
namespace {

const Bytes kSysDescrOid = Hex("2b 06 01 02 01 01 01 00");

VarBindRecord Binding(uint8_t tag, const Bytes& value) {
    OidValue name;
    ParseOidText(name, ".1.3.6.1.2.1.1.1.0");
    VarBindRecord binding;
    MakeVarBind(name, {tag, static_cast<int32_t>(value.size()), value.data()}, binding);
    return binding;
}

Bytes BuildWith(std::vector<VarBindRecord> bindings, const char* community, uint8_t pduType,
                size_t room = kMaxMessageSize) {
    VarBindList list;
    SetVarBindList(bindings.data(), static_cast<int32_t>(bindings.size()), list);
    Bytes out(room);
    const int32_t length = BuildSnmpMessage(out.data(), room, community, pduType, kRequestId, list);
    return Prefix(out, static_cast<size_t>(length));
}

TEST(BuildSnmpMessageTest, WritesEveryByteOfARequest) {
    UnitLog log;
    const std::string get =
        "30 26 02 01 00 04 06 73 65 73 61 6d 65 a0 19 02 01 01 02 01 00 02 01 00 "
        "30 0e 30 0c 06 08 2b 06 01 02 01 01 01 00 05 00 ";
    EXPECT_EQ(Hex(get), BuildWith({Binding(kTagNull, {})}, "sesame", 0xA0));
    EXPECT_EQ("SNMP_MSG = [" + get + "]\n", log.Lines().back());
    EXPECT_EQ(Hex("30 21 02 01 00 04 00 a3 1a 02 01 01 02 01 00 02 01 00"
                  "30 0f 30 0d 06 08 2b 06 01 02 01 01 01 00 02 01 07"),
              BuildWith({Binding(kTagInteger, {7})}, nullptr, 0xA3));
}

TEST(BuildSnmpMessageTest, RefusesWhatItCannotBuildAndLetsLengthsWrap) {
    const VarBindRecord binding = Binding(kTagNull, {});
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0x9F).size());
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0xA4).size());
    EXPECT_EQ(40u, BuildWith({binding}, "sesame", 0xA1, 40).size());
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0xA1, 39).size());
    EXPECT_EQ(289u, BuildWith({binding}, std::string(255, 'c').c_str(), 0xA0).size());
    EXPECT_EQ(0u, BuildWith({binding}, std::string(256, 'c').c_str(), 0xA0).size());
    EXPECT_EQ(0, BuildSnmpMessage(nullptr, 99, "sesame", 0xA0, 1, VarBindList()));
    const VarBindRecord big = Binding(kTagOctetString, Bytes(126, 'v'));
    const Bytes message = BuildWith({big, big}, "c", 0xA3);
    ASSERT_EQ(301u, message.size());
    EXPECT_EQ(299 & 0xFF, message[1]);
    EXPECT_EQ((280 + 11) & 0xFF, message[9]);
}

// An SNMPv1 answer as agents send it.
Bytes Answer(const Bytes& bindings, const Bytes& requestId = {1}, uint8_t pduTag = 0xA2) {
    return Tlv(0x30, Hex("02 01 00") + Tlv(0x04, TextBytes("sesame")) +
                         Tlv(pduTag, Tlv(0x02, requestId) + Hex("02 01 00 02 01 00") +
                                         Tlv(0x30, bindings)));
}

Bytes TextBinding(const std::string& text) {
    return Tlv(0x30, Tlv(0x06, kSysDescrOid) + Tlv(0x04, TextBytes(text)));
}

class ParseTest : public testing::Test {
  protected:
    int32_t Parse(const Bytes& datagram, const char* sender = "192.0.2.7") {
        ExactBlock block(datagram);
        return ParseSnmpResponse(record, block.Data(), datagram.size(), sender);
    }
    ResponseRecord record = {};
};

TEST_F(ParseTest, OfSeveralBindingsTheLastStays) {
    std::memset(record.name, 9, sizeof record.name);
    std::memset(record.value, 9, sizeof record.value);
    EXPECT_EQ(2, Parse(Answer(TextBinding("a longer one") + TextBinding("b"))));
    EXPECT_STREQ("192.0.2.7", record.address);
    EXPECT_EQ(0x04, record.valueTag);
    EXPECT_EQ(1, record.valueLength);
    EXPECT_EQ(Bytes{'b'} + Bytes(255, 0) + Bytes{9}, Bytes(record.value, record.value + 257));
    EXPECT_EQ(kSysDescrOid.size(), record.nameLength);
    EXPECT_EQ(kSysDescrOid + Bytes(120, 0), Bytes(record.name, record.name + kNameSize));
}

// Positions count from the datagram's start, the length from behind itself.
TEST_F(ParseTest, ReadsBindingsThatBeginBelowTheMessageLength) {
    const Bytes first = TextBinding("a"), second = TextBinding("b");
    Bytes answer = Answer(first + second);
    const size_t secondAt = answer.size() - second.size(), firstAt = secondAt - first.size();
    const std::pair<size_t, int32_t> rows[] = {
        {firstAt, 0}, {firstAt + 1, 1}, {secondAt, 1}, {secondAt + 1, 2}};
    for (const auto& [length, count] : rows) {
        answer[1] = static_cast<uint8_t>(length);
        EXPECT_EQ(count, Parse(answer)) << length;
    }
}

TEST_F(ParseTest, WhatAPrefixLacksReadsAsZeros) {
    const std::string value = "value";
    const Bytes whole = Answer(TextBinding(value));
    const size_t nameAt = whole.size() - TextBinding(value).size() + 2;
    const size_t valueAt = whole.size() - value.size();
    for (size_t size = 0; size <= whole.size(); ++size) {
        ASSERT_EQ(size > nameAt ? 1 : 0, Parse(Prefix(whole, size))) << size;
        EXPECT_EQ(value.substr(0, size > valueAt ? size - valueAt : 0), record.ValueText());
    }
}

TEST_F(ParseTest, ReadsLongLengthsOnlyAsTwoBytesWithAHighZero) {
    const auto inLongForm = [](uint8_t tag, const Bytes& content) {
        return Bytes{tag, 0x82, 0, static_cast<uint8_t>(content.size())} + content;
    };
    const Bytes answer = Answer(TextBinding("value"));
    const Bytes content(answer.begin() + 2, answer.end());
    EXPECT_EQ(1, Parse(inLongForm(0x30, content)));
    EXPECT_EQ(0, Parse(Bytes{0x30, 0x81, answer[1]} + content));
    EXPECT_EQ(0, Parse(Bytes{0x30, 0x82, 0x01, answer[1]} + content));
    const Bytes binding = inLongForm(0x30, Tlv(0x06, kSysDescrOid) + Tlv(0x04, {'v'}));
    const Bytes pdu = Hex("02 01 01 02 01 00 02 01 00") + inLongForm(0x30, binding);
    EXPECT_EQ(1, Parse(Tlv(0x30, Hex("02 01 00 04 01 63") + inLongForm(0xA2, pdu))));
    EXPECT_STREQ("v", record.ValueText());
    // 04 81 80: the 81 passes for the length, and what is copied starts a byte early.
    EXPECT_EQ(1, Parse(Tlv(0x30, Hex("02 01 00 04 01 63 a2 7f 02 01 01 02 01 00 02 01 00 30 7f"
                                     "30 7f 06 01 2b 04 81 80") +
                                     Bytes(99, 'v'))));
    EXPECT_EQ(0x81, record.valueLength);
    EXPECT_EQ(Hex("80 76"), Bytes(record.value, record.value + 2));
}

TEST_F(ParseTest, RejectsAnotherStructure) {
    const Bytes binding = TextBinding("value");
    EXPECT_EQ(0, Parse(Answer(binding, {0x01, 0x01})));  // a request-id of two bytes
    EXPECT_EQ(0, Parse(Answer(binding, {1}, 0x9F)));
    EXPECT_EQ(0, Parse(Answer(binding, {1}, 0xA8)));
    EXPECT_EQ(1, Parse(Answer(binding, {1}, 0xA7)));
    EXPECT_EQ(0, Parse(Answer({})));
    EXPECT_EQ(1, Parse(Answer(binding + Hex("31 00"))));  // the loop stops, the first counts
    EXPECT_EQ(0, Parse(Answer(Tlv(0x30, Hex("05 00 05 00")))));
    Bytes other = Answer(binding);
    other[0] = 0x31;
    EXPECT_EQ(0, Parse(other));
    EXPECT_EQ(0, ParseSnmpResponse(record, nullptr, 40, nullptr));
    EXPECT_STREQ("", record.address);
}

TEST_F(ParseTest, LengthsBeyondTheDatagramReadAsZerosWithinTheFields) {
    EXPECT_EQ(1, Parse(Answer(Tlv(0x30, Hex("06 ff") + Bytes(20, 1)))));
    EXPECT_EQ(kNameSize, record.nameLength);
    EXPECT_EQ(1, Parse(Answer(Tlv(0x30, Tlv(0x06, {1}) + Hex("04 ff 61")))));
    EXPECT_EQ(0xFF, record.valueLength);
    EXPECT_STREQ("a", record.ValueText());
    const std::string sender(100, '9');
    Parse({}, sender.c_str());
    EXPECT_EQ(sender.substr(0, kAddressSize - 1), record.address);
}

TEST_F(ParseTest, ANameThatIsTooLongIsCutAndStaysWithinItsField) {
    EXPECT_EQ(1, Parse(Hex("30 7f 02 01 00 04 01 63 a2 7f 02 01 01 02 01 00 02 01 00 30 7f 30 7f"
                           "06 c8") +
                       Bytes(200, 0x55) + Hex("04 01 61")));
    EXPECT_EQ(Bytes(kNameSize, 0x55), Bytes(record.name, record.name + record.nameLength));
    EXPECT_TRUE(record.engineId.Empty() && !record.engineId.data) << "what follows the field";
    EXPECT_STREQ("a", record.ValueText());
}

}  // namespace
}  // namespace vndiscover
