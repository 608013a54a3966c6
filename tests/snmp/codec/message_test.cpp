// The PDU codec and its bindings; building and parsing of SNMPv1 messages.
#include "snmp/codec/snmp_message.h"

#include <gtest/gtest.h>

#include <cstring>

#include "helpers/snmp_datagrams.h"
#include "snmp/codec/asn.h"
#include "snmp/codec/pdu.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#define VNDISCOVER_COUNTS_ALLOCATIONS
#endif
#endif

namespace vndiscover {
namespace {

const Bytes kOid = OidContent(kSysDescr);

OidValue Name() {
    OidValue name;
    ParseOidText(name, kSysDescr);
    return name;
}

VarBindRecord Binding(uint8_t tag, const Bytes& value) {
    VarBindRecord binding;
    MakeVarBind(Name(), {tag, static_cast<int32_t>(value.size()), value.data()}, binding);
    return binding;
}

Bytes TextBinding(const std::string& text, const Bytes& name = kOid) {
    return Tlv(0x30, Tlv(0x06, name) + Tlv(0x04, TextBytes(text)));
}

Bytes PduTlv(const Bytes& bindings, uint8_t tag = 0xA2, const Bytes& requestId = {1, 1}) {
    return Tlv(tag, Tlv(0x02, requestId) + Hex("02 01 02 02 01 01") + Tlv(0x30, bindings));
}

// An SNMPv1 answer.
Bytes Answer(const Bytes& bindings, const Bytes& requestId = {1}, uint8_t pduTag = 0xA2) {
    return Tlv(0x30, Hex("02 01 00") + Tlv(0x04, TextBytes("sesame")) +
                         PduTlv(bindings, pduTag, requestId));
}

Bytes BuildWith(std::vector<VarBindRecord> bindings, const char* community, uint8_t pduType,
                size_t room = kMaxMessageSize) {
    VarBindList list;
    SetVarBindList(bindings.data(), static_cast<int32_t>(bindings.size()), list);
    Bytes out(room);
    const int32_t length = BuildSnmpMessage(out.data(), room, community, pduType, kRequestId, list);
    return Prefix(out, static_cast<size_t>(length));
}

TEST(VarBind, RefusesWhatExceedsItsFields) {
    OidValue name = Name();
    const Bytes content(127, 'v');
    VarBindRecord binding = {};
    for (const int32_t length : {-1, 127, INT32_MAX}) {
        EXPECT_EQ(-1, MakeVarBind(name, {kTagOctetString, length, content.data()}, binding));
    }
    name.length = 125;
    EXPECT_EQ(-1, MakeVarBind(name, {kTagNull, 0, nullptr}, binding));
    EXPECT_EQ(0, binding.seqTag) << "left alone";
}

TEST(VarBind, CopiedHeaderLeavesTheValueAlone) {
    VarBindRecord copy = {};
    CopyVarBindHeader(Binding(kTagOctetString, TextBytes("ab")), copy);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&copy);
    EXPECT_EQ(Hex("30 0e 06 08 2b 06 01 02"), Bytes(bytes, bytes + 8));
    EXPECT_EQ(Hex("04 02 00 00"), Bytes(bytes + 128, bytes + 132));
}

TEST(VarBind, ValuesBecomeText) {
    const auto textOf = [](uint8_t tag, const Bytes& value) {
        std::string text = "before";
        VarBindValueToText(Binding(tag, value), text);
        return text;
    };
    EXPECT_EQ("a", textOf(kTagOctetString, {'a', 0, 'b'}));
    EXPECT_EQ(std::string(126, 'v'), textOf(kTagOctetString, Bytes(126, 'v')));
    EXPECT_EQ("", textOf(kTagOctetString, {}));
    EXPECT_EQ("-2", textOf(kTagInteger, {0xFE}));
    EXPECT_EQ("-1", textOf(kTagInteger, {0x00, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ("before", textOf(kTagNull, {}));
    EXPECT_EQ("before", textOf(0x41, {5}));
    EXPECT_THROW(textOf(kTagInteger, Bytes(6, 1)), AsnDecodeError);
}

TEST(Pdu, EncodesWithFullLengthsAndItsOwnRequestId) {
    PduRecord pdu;
    VarBindRecord bindings[] = {Binding(kTagNull, {}), Binding(kTagOctetString, Bytes(126, 'v'))};
    SetVarBindList(bindings, 2, pdu.bindings);
    ByteBuffer out = ToBuffer({0x55});  // remains
    EXPECT_TRUE(EncodePdu(pdu, out));
    const Bytes list =
        Tlv(0x30, Tlv(0x06, kOid) + Hex("05 00")) + TextBinding(std::string(126, 'v'));
    EXPECT_EQ(Bytes{0x55} + Tlv(0xA0, Hex("02 02 01 01 02 01 00 02 01 00") + Tlv(0x30, list)),
              ToBytes(out));
}

TEST(VarBind, ListsBeyondTheirFieldsAreNotEncoded) {
    for (const auto& [length, tooLong] : {std::pair(&VarBindRecord::nameLength, uint8_t{125}),
                                          std::pair(&VarBindRecord::valueLength, uint8_t{127})}) {
        std::vector<VarBindRecord> bindings(2, Binding(kTagNull, {}));
        bindings[1].*length = tooLong;
        PduRecord pdu;
        SetVarBindList(bindings.data(), 2, pdu.bindings);
        ByteBuffer out;
        EXPECT_FALSE(EncodePdu(pdu, out));
        EXPECT_TRUE(out.Empty());
        EXPECT_EQ(Bytes(), BuildWith(bindings, "sesame", 0xA0));
        pdu.bindings.count = -1;
        EXPECT_TRUE(FitTheirRecords(pdu.bindings));
    }
}

TEST(Pdu, DecodesEveryBindingInOrder) {
    const Bytes datagram =
        Bytes{0x55} +
        PduTlv(TextBinding("one") + Hex("30 06 05 01 09 02 01 02")) +  // the name is not an OID
        Bytes{0x66};
    PduRecord pdu;
    EXPECT_EQ(datagram.size() - 1, DecodePdu(pdu, ToBuffer(datagram), 1));
    EXPECT_EQ(0xA2, pdu.pduType);
    EXPECT_EQ(257, pdu.requestId);
    EXPECT_EQ(2, pdu.errorStatus);
    EXPECT_EQ(1, pdu.errorIndex);
    ASSERT_EQ(2, pdu.bindings.count);
    const VarBindRecord expected[] = {Binding(kTagOctetString, TextBytes("one")),
                                      {0x30, 6, 0, 0, {}, 0x02, 1, {2}}};
    EXPECT_EQ(0, std::memcmp(expected, pdu.bindings.bindings, sizeof expected));
}

TEST(Pdu, RefusesBindingsThatDoNotFitAndEveryPrefix) {
    PduRecord pdu;
    const auto decode = [&](const Bytes& name, const std::string& value) {
        DecodePdu(pdu, ToBuffer(PduTlv(TextBinding("one") + TextBinding(value, name))), 0);
    };
    decode(Bytes(124, 1), std::string(126, 'v'));
    EXPECT_EQ(2, pdu.bindings.count);
    EXPECT_THROW(decode(Bytes(125, 1), ""), AsnDecodeError);
    EXPECT_EQ(0, pdu.bindings.count);
    EXPECT_THROW(decode(kOid, std::string(127, 'v')), AsnDecodeError);

    const Bytes whole = PduTlv(TextBinding("one"));
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_THROW(DecodePdu(pdu, ToBuffer(Prefix(whole, size)), 0), AsnDecodeError) << size;
    }
}

TEST(BuildSnmpMessageTest, RefusesBadInputAndLetsLengthsWrap) {
    const VarBindRecord binding = Binding(kTagNull, {});
    for (const uint8_t type : Bytes{0x9F, 0xA4})
        EXPECT_EQ(Bytes(), BuildWith({binding}, "c", type));
    EXPECT_EQ(40u, BuildWith({binding}, "sesame", 0xA1, 40).size());
    EXPECT_EQ(0u, BuildWith({binding}, "sesame", 0xA1, 39).size());
    const Bytes longest(255, 'c');
    const std::string community(longest.begin(), longest.end());
    // Every length is one byte, so that of a message of 289 bytes wraps.
    EXPECT_EQ(Hex("30 1f 02 01 00 04 ff") + longest +
                  Hex("a0 19 02 01 01 02 01 00 02 01 00 30 0e 30 0c 06 08") + kOid + Hex("05 00"),
              BuildWith({binding}, community.c_str(), 0xA0));
    EXPECT_EQ(0u, BuildWith({binding}, (community + 'c').c_str(), 0xA0).size());
    EXPECT_EQ(0, BuildSnmpMessage(nullptr, 99, "sesame", 0xA0, 1, VarBindList()));
    const VarBindRecord big = Binding(kTagOctetString, Bytes(126, 'v'));
    EXPECT_EQ(Hex("30 2b 02 01 00 04 01 63 a3 23"), Prefix(BuildWith({big, big}, "c", 0xA3), 10));
    EXPECT_EQ(Hex("30 9f 02 01 00 04 01 63 a3 97 02 01 01 02 01 00 02 01 00 30 8c 30 8a"),
              Prefix(BuildWith({big}, "c", 0xA3), 23));
}

#ifdef VNDISCOVER_COUNTS_ALLOCATIONS
int g_allocations = 0;

TEST(BuildSnmpMessageTest, AllocatesNothing) {
    const auto count = [](const volatile void*, size_t) { ++g_allocations; };
    ASSERT_NE(0, __sanitizer_install_malloc_and_free_hooks(count, [](const volatile void*) {}));
    VarBindRecord binding = Binding(kTagNull, {});
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    uint8_t out[kMaxMessageSize];
    const int before = g_allocations;
    const int32_t length = BuildSnmpMessage(out, sizeof out, "sesame", 0xA0, kRequestId, list);
    const int after = g_allocations;
    EXPECT_EQ(40, length);
    EXPECT_EQ(before, after);
}

TEST(ByteBufferTest, IsWipedBeforeItsBlockIsGivenBack) {
    static ByteBuffer secret = ToBuffer({0x5A});
    static int left = -1;
    __sanitizer_install_malloc_and_free_hooks([](const volatile void*, size_t) {},
                                              [](const volatile void* block) {
                                                  if (block == secret.data) left = *secret.data;
                                              });
    secret.Clear();
    EXPECT_EQ(0, left);
}
#endif

class ParseTest : public testing::Test {
  protected:
    int32_t Parse(const Bytes& datagram, const char* sender = "192.0.2.7") {
        const Bytes block = datagram;
        return ParseSnmpResponse(record, block.data(), block.size(), sender);
    }
    ResponseRecord record = {};
};

TEST_F(ParseTest, LastOfSeveralBindingsRemains) {
    std::memset(record.name, 9, sizeof record.name);
    std::memset(record.value, 9, sizeof record.value);
    EXPECT_EQ(2, Parse(Answer(TextBinding("a longer one") + TextBinding("b"))));
    EXPECT_STREQ("192.0.2.7", record.address);
    EXPECT_EQ(0x04, record.valueTag);
    EXPECT_EQ(1, record.valueLength);
    EXPECT_EQ(Bytes{'b'} + Bytes(255, 0) + Bytes{9}, Bytes(record.value, record.value + 257));
    EXPECT_EQ(kOid.size(), record.nameLength);
    EXPECT_EQ(kOid + Bytes(120, 0), Bytes(record.name, record.name + kNameSize));
}

// Positions count from the start of the datagram, the length from after itself.
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

TEST_F(ParseTest, MissingBytesOfAPrefixReadAsZeros) {
    const std::string value = "value";
    const Bytes whole = Answer(TextBinding(value));
    const size_t nameAt = whole.size() - TextBinding(value).size() + 2;
    const size_t valueAt = whole.size() - value.size();
    for (size_t size = 0; size <= whole.size(); ++size) {
        ASSERT_EQ(size > nameAt ? 1 : 0, Parse(Prefix(whole, size))) << size;
        EXPECT_EQ(value.substr(0, size > valueAt ? size - valueAt : 0), record.ValueText());
    }
}

TEST_F(ParseTest, ReadsNoLongLengthsExcept8200nn) {
    const auto inLongForm = [](uint8_t tag, const Bytes& content) {
        return Bytes{tag, 0x82, 0, static_cast<uint8_t>(content.size())} + content;
    };
    const Bytes answer = Answer(TextBinding("value"));
    const Bytes content(answer.begin() + 2, answer.end());
    EXPECT_EQ(1, Parse(inLongForm(0x30, content)));
    EXPECT_EQ(0, Parse(Bytes{0x30, 0x81, answer[1]} + content));
    EXPECT_EQ(0, Parse(Bytes{0x30, 0x82, 0x01, answer[1]} + content));
    const Bytes binding = inLongForm(0x30, Tlv(0x06, kOid) + Tlv(0x04, {'v'}));
    const Bytes pdu = Hex("02 01 01 02 01 00 02 01 00") + inLongForm(0x30, binding);
    EXPECT_EQ(1, Parse(Tlv(0x30, Hex("02 01 00 04 01 63") + inLongForm(0xA2, pdu))));
    EXPECT_STREQ("v", record.ValueText());
    // 04 81 80: the 81 is read as the length, and the copy starts a byte early.
    EXPECT_EQ(1, Parse(Tlv(0x30, Hex("02 01 00 04 01 63 a2 7f 02 01 01 02 01 00 02 01 00 30 7f"
                                     "30 7f 06 01 2b 04 81 80") +
                                     Bytes(99, 'v'))));
    EXPECT_EQ(0x81, record.valueLength);
    EXPECT_EQ(Hex("80 76"), Bytes(record.value, record.value + 2));
}

TEST_F(ParseTest, RejectsOtherStructures) {
    const Bytes binding = TextBinding("value");
    EXPECT_EQ(0, Parse(Answer(binding, {0x01, 0x01})));  // a request-id of two bytes
    for (const uint8_t tag : Bytes{0x9F, 0xA8}) EXPECT_EQ(0, Parse(Answer(binding, {1}, tag)));
    EXPECT_EQ(1, Parse(Answer(binding, {1}, 0xA7)));
    EXPECT_EQ(0, Parse(Answer({})));
    EXPECT_EQ(1, Parse(Answer(binding + Hex("31 00"))));  // the loop stops, but the first counts
    EXPECT_EQ(0, Parse(Answer(Tlv(0x30, Hex("05 00 05 00")))));
    Bytes other = Answer(binding);
    other[0] = 0x31;
    EXPECT_EQ(0, Parse(other));
    EXPECT_EQ(0, ParseSnmpResponse(record, nullptr, 40, nullptr));
    EXPECT_STREQ("", record.address);
}

TEST_F(ParseTest, LengthsBeyondTheDatagramOrAFieldAreCut) {
    EXPECT_EQ(1, Parse(Answer(Tlv(0x30, Tlv(0x06, {1}) + Hex("04 ff 61")))));
    EXPECT_EQ(0xFF, record.valueLength);
    EXPECT_STREQ("a", record.ValueText());
    EXPECT_EQ(1, Parse(Hex("30 7f 02 01 00 04 01 63 a2 7f 02 01 01 02 01 00 02 01 00 30 7f 30 7f"
                           "06 c8") +
                       Bytes(200, 0x55) + Hex("04 01 61")));
    EXPECT_EQ(Bytes(kNameSize, 0x55), Bytes(record.name, record.name + record.nameLength));
    EXPECT_TRUE(record.engineId.Empty() && !record.engineId.data) << "what follows the field";
    const std::string sender(100, '9');
    Parse({}, sender.c_str());
    EXPECT_EQ(sender.substr(0, kAddressSize - 1), record.address);
}

}  // namespace
}  // namespace vndiscover
