#include "snmp/snmp_message.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmp/pdu.h"

namespace vndiscover {
namespace {

const char kSysDescr[] = ".1.3.6.1.2.1.1.1.0";
const Bytes kSysDescrOid = Hex("2b 06 01 02 01 01 01 00");

VarBindRecord Binding(const char* oid, const ValueView& value) {
    OidValue name;
    ParseOidText(name, oid);
    VarBindRecord binding;
    EXPECT_EQ(0, MakeVarBind(name, value, binding));
    return binding;
}

Bytes BuildWith(std::vector<VarBindRecord> bindings, const char* community, uint8_t pduType,
                size_t room = kMaxMessageSize) {
    VarBindList list;
    SetVarBindList(bindings.data(), static_cast<int32_t>(bindings.size()), list);
    Bytes out(room);
    const int32_t length =
        BuildSnmpMessage(out.data(), out.size(), community, pduType, kRequestId, list);
    return Prefix(out, static_cast<size_t>(length));
}

TEST(BuildSnmpMessageTest, WritesEveryByteOfARequest) {
    UnitLog log;
    const Bytes get = BuildWith({Binding(kSysDescr, {kTagNull, 0, nullptr})}, "sesame", 0xA0);
    EXPECT_EQ(Hex("30 26 02 01 00 04 06 73 65 73 61 6d 65 a0 19 02 01 01 02 01 00 02 01 00"
                  "30 0e 30 0c 06 08 2b 06 01 02 01 01 01 00 05 00"),
              get);
    EXPECT_EQ(
        "SNMP_MSG = [30 26 02 01 00 04 06 73 65 73 61 6d 65 a0 19 02 01 01 02 01 00 02 01 00 "
        "30 0e 30 0c 06 08 2b 06 01 02 01 01 01 00 05 00 ]\n",
        log.Lines().back());
    const uint8_t seven[] = {7};
    EXPECT_EQ(Hex("30 21 02 01 00 04 00 a3 1a 02 01 01 02 01 00 02 01 00"
                  "30 0f 30 0d 06 08 2b 06 01 02 01 01 01 00 02 01 07"),
              BuildWith({Binding(kSysDescr, {kTagInteger, 1, seven})}, nullptr, 0xA3));
}

TEST(BuildSnmpMessageTest, RefusesWhatItCannotBuild) {
    const VarBindRecord binding = Binding(kSysDescr, {kTagNull, 0, nullptr});
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0x9F).size());
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0xA4).size());
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0xA5).size());
    EXPECT_EQ(40u, BuildWith({binding}, "sesame", 0xA1, 40).size());
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0xA1, 39).size());
    EXPECT_EQ(289u, BuildWith({binding}, std::string(255, 'c').c_str(), 0xA0).size());
    EXPECT_EQ(0u, BuildWith({binding}, std::string(256, 'c').c_str(), 0xA0).size());
    EXPECT_EQ(0, BuildSnmpMessage(nullptr, 99, "sesame", 0xA0, 1, VarBindList()));
}

TEST(BuildSnmpMessageTest, LengthsAreOneByteThatWraps) {
    const Bytes value(126, 'v');
    const VarBindRecord big = Binding(kSysDescr, {kTagOctetString, 126, value.data()});
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
    int32_t Parse(const Bytes& datagram) {
        InitResponseRecord(record_);
        ExactBlock block(datagram);
        return ParseSnmpResponse(record_, block.Data(), datagram.size(), "192.0.2.7");
    }
    ResponseRecord record_ = {};
};

TEST_F(ParseTest, FillsTheRecordFromAnAnswer) {
    EXPECT_EQ(1, Parse(Answer(TextBinding("Model 1"))));
    EXPECT_STREQ("192.0.2.7", record_.address);
    EXPECT_EQ(0x04, record_.valueTag);
    EXPECT_EQ(7, record_.valueLength);
    EXPECT_STREQ("Model 1", record_.ValueText());
    EXPECT_EQ(kSysDescrOid, Bytes(record_.name, record_.name + record_.nameLength));
}

TEST_F(ParseTest, OfSeveralBindingsTheLastStays) {
    EXPECT_EQ(2, Parse(Answer(TextBinding("a longer one") + TextBinding("b"))));
    EXPECT_STREQ("b", record_.ValueText());
    for (size_t i = 1; i < 256; ++i) EXPECT_EQ(0, record_.value[i]);
}

TEST_F(ParseTest, ReadsLongLengthsOnlyAsTwoBytesWithAHighZero) {
    const Bytes answer = Answer(TextBinding("value"));
    const Bytes content(answer.begin() + 2, answer.end());
    const auto size = static_cast<uint8_t>(content.size());
    EXPECT_EQ(1, Parse(Bytes{0x30, 0x82, 0x00, size} + content));
    EXPECT_EQ(0, Parse(Bytes{0x30, 0x81, size} + content));
    EXPECT_EQ(0, Parse(Bytes{0x30, 0x82, 0x01, size} + content));
    // The same inside: PDU, list and binding.
    const Bytes binding = TextBinding("value");
    const Bytes inner(binding.begin() + 2, binding.end());
    const Bytes list = Bytes{0x30, 0x82, 0, static_cast<uint8_t>(inner.size())} + inner;
    const Bytes pdu = Hex("02 01 01 02 01 00 02 01 00") +
                      Bytes{0x30, 0x82, 0, static_cast<uint8_t>(list.size())} + list;
    EXPECT_EQ(1, Parse(Tlv(0x30, Hex("02 01 00 04 01 63 a2 82 00") +
                                     Bytes{static_cast<uint8_t>(pdu.size())} + pdu)));
    EXPECT_STREQ("value", record_.ValueText());
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
    EXPECT_EQ(0, ParseSnmpResponse(record_, nullptr, 40, nullptr));
    EXPECT_STREQ("", record_.address);
}

TEST_F(ParseTest, DoesNotLookAtTheErrorStatus) {
    Bytes answer = Answer(Tlv(0x30, Tlv(0x06, kSysDescrOid) + Hex("05 00")));
    answer[20] = 2;  // noSuchName
    EXPECT_EQ(1, Parse(answer));
    EXPECT_EQ(0x05, record_.valueTag);
    EXPECT_EQ(0, record_.valueLength);
}

// 04 81 80: the 81 passes for the length, and what is copied starts a byte early.
TEST_F(ParseTest, MisreadsAValueWithALongLength) {
    EXPECT_EQ(1,
              Parse(Tlv(0x30, Hex("02 01 00 04 01 63 a2 7f 02 01 01 02 01 00 02 01 00 30 7f 30 7f"
                                  "06 01 2b 04 81") +
                                  Bytes{0x80} + Bytes(99, 'v'))));
    EXPECT_EQ(0x81, record_.valueLength);
    EXPECT_EQ(0x80, record_.value[0]);
    EXPECT_EQ('v', record_.value[1]);
}

TEST_F(ParseTest, LengthsBeyondTheDatagramReadAsZerosWithinTheFields) {
    const Bytes longName = Tlv(0x30, Hex("06 ff") + Bytes(20, 1));
    Parse(Answer(longName));
    EXPECT_LE(record_.nameLength, kNameSize);
    EXPECT_EQ(1, Parse(Answer(Tlv(0x30, Tlv(0x06, {1}) + Hex("04 ff 61")))));
    EXPECT_EQ(0xFF, record_.valueLength);
    EXPECT_STREQ("a", record_.ValueText());
    const std::string sender(100, '9');
    ExactBlock block(Answer(TextBinding("v")));
    ParseSnmpResponse(record_, block.Data(), static_cast<size_t>(block.Size()), sender.c_str());
    EXPECT_EQ(sender.substr(0, kAddressSize - 1), record_.address);
}

// Every prefix and every hostile byte of a good answer: nothing is read beyond the block.
TEST_F(ParseTest, SurvivesEveryPrefixAndEveryHostileByte) {
    const Bytes whole = Answer(TextBinding("Model 1") + TextBinding("Model 2"));
    for (size_t size = 0; size < whole.size(); ++size) EXPECT_LE(Parse(Prefix(whole, size)), 2);
    for (size_t at = 0; at < whole.size(); ++at) {
        for (uint8_t hostile : {0x00, 0x30, 0x7F, 0x80, 0x82, 0xFF}) {
            Bytes changed = whole;
            changed[at] = hostile;
            Parse(changed);
            EXPECT_LE(record_.nameLength, kNameSize);
            EXPECT_LE(record_.valueLength, 255);
        }
    }
}

}  // namespace
}  // namespace vndiscover
