// The structured PDU codec and the bindings it carries.
#include "snmp/pdu.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "snmp/asn_decode.h"

namespace vndiscover {
namespace {

const Bytes kOid = Hex("2b 06 01");

OidValue Name(const Bytes& content) {
    OidValue name = {};
    name.tag = kTagObjectIdentifier;
    name.length = static_cast<uint8_t>(content.size());
    std::copy(content.begin(), content.end(), name.content);
    return name;
}

VarBindRecord Binding(uint8_t tag, const Bytes& value) {
    VarBindRecord binding;
    EXPECT_EQ(0, MakeVarBind(Name(kOid), {tag, static_cast<int32_t>(value.size()), value.data()},
                             binding));
    return binding;
}

Bytes PduTlv(const Bytes& bindings) {
    return Tlv(0xA2, Hex("02 02 01 01 02 01 02 02 01 01") + Tlv(0x30, bindings));
}

TEST(VarBind, IsTheBytesThatAreSent) {
    const VarBindRecord binding = Binding(kTagOctetString, TextBytes("ab"));
    const auto* bytes = reinterpret_cast<const uint8_t*>(&binding);
    EXPECT_EQ(Hex("30 09 06 03 2b 06 01"), Bytes(bytes, bytes + 7));
    EXPECT_EQ(Hex("04 02 61 62"), Bytes(&binding.valueTag, &binding.valueTag + 4));
}

TEST(VarBind, RefusesWhatTheRecordHasNoRoomFor) {
    VarBindRecord binding = Binding(kTagNull, {});
    const VarBindRecord before = binding;
    const Bytes value(127, 'v');
    EXPECT_EQ(0, MakeVarBind(Name(Bytes(124, 1)), {kTagOctetString, 126, value.data()}, binding));
    binding = before;
    EXPECT_EQ(-1, MakeVarBind(Name(kOid), {kTagOctetString, 127, value.data()}, binding));
    EXPECT_EQ(-1, MakeVarBind(Name(kOid), {kTagOctetString, -1, value.data()}, binding));
    EXPECT_EQ(-1, MakeVarBind(Name(Bytes(125, 1)), {kTagNull, 0, nullptr}, binding));
    EXPECT_EQ(0, std::memcmp(&before, &binding, sizeof binding));
}

TEST(VarBind, HeaderCopiesLeaveTheValueAlone) {
    VarBindRecord copy = {};
    CopyVarBindHeader(Binding(kTagOctetString, TextBytes("ab")), copy);
    EXPECT_EQ(0, std::memcmp(copy.name, kOid.data(), 3));
    EXPECT_EQ(kTagOctetString, copy.valueTag);
    EXPECT_EQ(2, copy.valueLength);
    EXPECT_EQ(0, copy.value[0]);
}

TEST(VarBind, ValuesBecomeText) {
    const auto textOf = [](uint8_t tag, const Bytes& value) {
        std::string text = "before";
        VarBindValueToText(Binding(tag, value), text);
        return text;
    };
    EXPECT_EQ("Model 1", textOf(kTagOctetString, TextBytes("Model 1")));
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
    ByteBuffer out = ToBuffer({0x55});  // what was there stays
    EncodePdu(pdu, out);
    EXPECT_EQ(257, pdu.requestId);
    const Bytes list = Tlv(0x30, Tlv(0x06, kOid) + Hex("05 00")) +
                       Tlv(0x30, Tlv(0x06, kOid) + Tlv(0x04, Bytes(126, 'v')));
    EXPECT_EQ(Bytes{0x55} + Tlv(0xA0, Hex("02 02 01 01 02 01 00 02 01 00") + Tlv(0x30, list)),
              ToBytes(out));
}

TEST(Pdu, DecodesEveryBindingInOrder) {
    const Bytes datagram =
        Bytes{0x55} +
        PduTlv(Tlv(0x30, Tlv(0x06, kOid) + Tlv(0x04, TextBytes("one"))) +
               Tlv(0x30, Hex("05 01 09") + Tlv(0x02, {2}))) +  // the name is no OID
        Bytes{0x66};
    PduRecord pdu;
    EXPECT_EQ(datagram.size() - 1, DecodePdu(pdu, ToBuffer(datagram), 1));
    EXPECT_EQ(0xA2, pdu.pduType);
    EXPECT_EQ(257, pdu.requestId);
    EXPECT_EQ(2, pdu.errorStatus);
    EXPECT_EQ(1, pdu.errorIndex);
    ASSERT_EQ(2, pdu.bindings.count);
    const VarBindRecord& first = pdu.bindings.bindings[0];
    EXPECT_EQ(kOid, Bytes(first.name, first.name + first.nameLength));
    EXPECT_EQ(0x30, first.seqTag);
    EXPECT_EQ(10, first.seqLength);
    const VarBindRecord& second = pdu.bindings.bindings[1];
    EXPECT_EQ(0, second.nameTag);
    EXPECT_EQ(0, second.nameLength);
    EXPECT_EQ(2, second.value[0]);
}

TEST(Pdu, RefusesABindingThatDoesNotFit) {
    PduRecord pdu;
    const auto decode = [&](const Bytes& name, const Bytes& value) {
        DecodePdu(pdu, ToBuffer(PduTlv(Tlv(0x30, Tlv(0x06, name) + Tlv(0x04, value)))), 0);
    };
    decode(Bytes(124, 1), Bytes(126, 'v'));
    EXPECT_EQ(1, pdu.bindings.count);
    EXPECT_THROW(decode(Bytes(125, 1), {}), AsnDecodeError);
    EXPECT_EQ(0, pdu.bindings.count);
    EXPECT_THROW(decode(kOid, Bytes(127, 'v')), AsnDecodeError);
}

TEST(Pdu, EveryPrefixIsAnError) {
    const Bytes whole = PduTlv(Tlv(0x30, Tlv(0x06, kOid) + Tlv(0x04, TextBytes("one"))));
    for (size_t size = 0; size < whole.size(); ++size) {
        PduRecord pdu;
        EXPECT_THROW(DecodePdu(pdu, ToBuffer(Prefix(whole, size)), 0), AsnDecodeError) << size;
    }
}

}  // namespace
}  // namespace vndiscover
