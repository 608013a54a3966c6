// The structured PDU codec and the bindings it carries.
#include "snmp/pdu.h"

#include <gtest/gtest.h>

#include "helpers/bytes.h"
#include "snmp/asn_decode.h"

namespace vndiscover {
namespace {

const Bytes kOid = Hex("2b 06 01");

VarBindRecord Binding(uint8_t tag, const Bytes& value) {
    OidValue name;
    ParseOidText(name, "1.3.6.1");
    VarBindRecord binding;
    MakeVarBind(name, {tag, static_cast<int32_t>(value.size()), value.data()}, binding);
    return binding;
}

Bytes TextBinding(const Bytes& name, const Bytes& text) {
    return Tlv(0x30, Tlv(0x06, name) + Tlv(0x04, text));
}

Bytes PduTlv(const Bytes& bindings) {
    return Tlv(0xA2, Hex("02 02 01 01 02 01 02 02 01 01") + Tlv(0x30, bindings));
}

TEST(VarBind, HoldsNoMoreThanItsFields) {
    OidValue name;
    ParseOidText(name, "1.3.6.1");
    const Bytes content(127, 'v');
    VarBindRecord binding = {};
    for (const int32_t length : {-1, 127, INT32_MAX}) {
        EXPECT_EQ(-1, MakeVarBind(name, {kTagOctetString, length, content.data()}, binding));
    }
    name.length = 125;
    EXPECT_EQ(-1, MakeVarBind(name, {kTagNull, 0, nullptr}, binding));
    EXPECT_EQ(0, binding.seqTag) << "left alone";
}

TEST(VarBind, HeaderCopiesLeaveTheValueAlone) {
    VarBindRecord copy = {};
    CopyVarBindHeader(Binding(kTagOctetString, TextBytes("ab")), copy);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&copy);
    EXPECT_EQ(Hex("30 09 06 03 2b 06 01 00"), Bytes(bytes, bytes + 8));
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
    ByteBuffer out = ToBuffer({0x55});  // what was there stays
    EncodePdu(pdu, out);
    EXPECT_EQ(257, pdu.requestId);
    const Bytes list =
        Tlv(0x30, Tlv(0x06, kOid) + Hex("05 00")) + TextBinding(kOid, Bytes(126, 'v'));
    EXPECT_EQ(Bytes{0x55} + Tlv(0xA0, Hex("02 02 01 01 02 01 00 02 01 00") + Tlv(0x30, list)),
              ToBytes(out));
}

TEST(Pdu, DecodesEveryBindingInOrder) {
    const Bytes datagram = Bytes{0x55} +
                           PduTlv(TextBinding(kOid, TextBytes("one")) +
                                  Hex("30 06 05 01 09 02 01 02")) +  // the name is no OID
                           Bytes{0x66};
    PduRecord pdu;
    EXPECT_EQ(datagram.size() - 1, DecodePdu(pdu, ToBuffer(datagram), 1));
    EXPECT_EQ(0xA2, pdu.pduType);
    EXPECT_EQ(257, pdu.requestId);
    EXPECT_EQ(2, pdu.errorStatus);
    EXPECT_EQ(1, pdu.errorIndex);
    ASSERT_EQ(2, pdu.bindings.count);
    VarBindRecord expected = Binding(kTagOctetString, TextBytes("one"));
    EXPECT_EQ(0, std::memcmp(&expected, &pdu.bindings.bindings[0], sizeof expected));
    expected = {0x30, 6, 0, 0, {}, 0x02, 1, {2}};
    EXPECT_EQ(0, std::memcmp(&expected, &pdu.bindings.bindings[1], sizeof expected));
}

TEST(Pdu, RefusesABindingThatDoesNotFitAndEveryPrefix) {
    PduRecord pdu;
    const auto decode = [&](const Bytes& name, const Bytes& value) {
        DecodePdu(pdu, ToBuffer(PduTlv(TextBinding(name, value))), 0);
    };
    decode(Bytes(124, 1), Bytes(126, 'v'));
    EXPECT_EQ(1, pdu.bindings.count);
    EXPECT_THROW(decode(Bytes(125, 1), {}), AsnDecodeError);
    EXPECT_EQ(0, pdu.bindings.count);
    EXPECT_THROW(decode(kOid, Bytes(127, 'v')), AsnDecodeError);

    const Bytes whole = PduTlv(TextBinding(kOid, TextBytes("one")));
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_THROW(DecodePdu(pdu, ToBuffer(Prefix(whole, size)), 0), AsnDecodeError) << size;
    }
}

}  // namespace
}  // namespace vndiscover
