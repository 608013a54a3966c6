// SNMP datagrams as managers and agents send them, built from RFC 1157, RFC 3412 and RFC 3414
// without the code under test.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "helpers/bytes.h"

namespace vndiscover {

constexpr char kDefaultOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";
constexpr char kSysDescr[] = ".1.3.6.1.2.1.1.1.0";
constexpr char kSysName[] = ".1.3.6.1.2.1.1.5.0";
constexpr char kSysLocation[] = ".1.3.6.1.2.1.1.6.0";

// The content octets of an OBJECT IDENTIFIER.
inline Bytes OidContent(const std::string& dotted) {
    const auto base128 = [](uint32_t arc) {
        Bytes bytes = {static_cast<uint8_t>(arc & 0x7F)};
        while ((arc >>= 7) != 0) bytes = Bytes{static_cast<uint8_t>(arc | 0x80)} + bytes;
        return bytes;
    };
    std::istringstream text(dotted);
    std::vector<uint32_t> arcs;
    for (std::string piece; std::getline(text, piece, '.');) {
        if (!piece.empty()) arcs.push_back(static_cast<uint32_t>(std::stoul(piece)));
    }
    Bytes content = base128(arcs.at(0) * 40 + arcs.at(1));
    for (size_t i = 2; i < arcs.size(); ++i) content = content + base128(arcs[i]);
    return content;
}

inline Bytes IntegerTlv(uint32_t value) {
    Bytes content;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<uint8_t>(value >> shift);
        if (!content.empty() || byte != 0 || shift == 0) content.push_back(byte);
    }
    return Tlv(0x02, content[0] >= 0x80 ? Bytes{0} + content : content);
}

inline Bytes BindingTlv(const Bytes& oidContent, const Bytes& valueTlv) {
    return Tlv(0x30, Tlv(0x06, oidContent) + valueTlv);
}

// An SNMPv1 message with one variable.
struct SnmpMessage {
    std::string oid = kDefaultOid;
    uint8_t valueType = 5;
    Bytes value = {};
    uint8_t pduType = 0xA0;
    std::string community = "sesame";
    Bytes requestId = {1};
    uint8_t errorStatus = 0;
    // How a SEQUENCE or PDU of 128 bytes and more tells its length: 82 hi lo, as many agents do, or
    // in the shortest form, 81 nn, which the module's parser does not know.
    bool shortestLengths = false;
};
inline Bytes Encode(const SnmpMessage& message) {
    const auto constructed = [&](uint8_t tag, const Bytes& content) {
        const size_t size = content.size();
        if (message.shortestLengths || size < 0x80) return Tlv(tag, content);
        const Bytes header = {tag, 0x82, static_cast<uint8_t>(size >> 8),
                              static_cast<uint8_t>(size)};
        return header + content;
    };
    const Bytes variable =
        constructed(0x30, Tlv(6, OidContent(message.oid)) + Tlv(message.valueType, message.value));
    const Bytes pdu = Tlv(2, message.requestId) + Tlv(2, {message.errorStatus}) + Tlv(2, {0}) +
                      constructed(0x30, variable);
    return constructed(0x30, Tlv(2, {0}) + Tlv(4, TextBytes(message.community)) +
                                 constructed(message.pduType, pdu));
}

// A GetRequest as the module sends it.
inline Bytes SnmpGet(const std::string& oid, const std::string& community = "sesame") {
    return Encode({oid, 5, {}, 0xA0, community});
}
// A GetResponse.
inline Bytes SnmpAnswer(const std::string& oid, uint8_t type, const Bytes& value) {
    return Encode({oid, type, value, 0xA2});
}
inline Bytes SnmpText(const std::string& text, const std::string& oid = kDefaultOid) {
    return SnmpAnswer(oid, 4, TextBytes(text));
}

inline const Bytes& SysNameOid() {
    static const Bytes oid = OidContent(kSysName);
    return oid;
}

inline Bytes ScopedPduTlv(uint8_t pduTag, const Bytes& bindings,
                          const Bytes& contextEngineId = {}) {
    return Tlv(0x30, Tlv(0x04, contextEngineId) + Tlv(0x04, {}) +
                         Tlv(pduTag, IntegerTlv(257) + IntegerTlv(0) + IntegerTlv(0) +
                                         Tlv(0x30, bindings)));
}

// A response with sysName as OCTET STRING.
inline Bytes ScopedTextTlv(const std::string& text) {
    return ScopedPduTlv(0xA2, BindingTlv(SysNameOid(), Tlv(0x04, TextBytes(text))));
}

struct V3Datagram {
    uint32_t msgId = 256;
    uint32_t msgMaxSize = 65507;
    Bytes flagsTlv = Tlv(0x04, {0x00});
    uint32_t securityModel = 3;
    Bytes engineId = Hex("80 00 17 4b 05 01 02 03 04");
    uint32_t boots = 7;
    uint32_t time = 70000;
    Bytes user = TextBytes("user");
    Bytes macTlv = Tlv(0x04, {});  // the authentication parameters
    Bytes salt;
    Bytes scopedTlv = ScopedTextTlv("value");  // or the OCTET STRING of it encrypted

    Bytes Content() const {
        const Bytes header = Tlv(0x30, IntegerTlv(msgId) + IntegerTlv(msgMaxSize) + flagsTlv +
                                           IntegerTlv(securityModel));
        const Bytes usm = Tlv(0x30, Tlv(0x04, engineId) + IntegerTlv(boots) + IntegerTlv(time) +
                                        Tlv(0x04, user) + macTlv + Tlv(0x04, salt));
        return IntegerTlv(3) + header + Tlv(0x04, usm) + scopedTlv;
    }
    Bytes Build() const { return Tlv(0x30, Content()); }

    // With the code in place that sign(the datagram with zeros there) gives, cut to size.
    template <class Sign>
    Bytes BuildSigned(size_t size, const Sign& sign) {
        macTlv = Tlv(0x04, Bytes(size, 0));
        macTlv = Tlv(0x04, Prefix(sign(Build()), size));
        return Build();
    }
};

inline V3Datagram WithoutEngine(V3Datagram datagram) {
    datagram.engineId = datagram.user = {};
    datagram.boots = datagram.time = 0;
    return datagram;
}

// The engine discovery, RFC 3412 6 and RFC 3414 4: all fields empty or 0, but for msgID 256,
// msgMaxSize 65536, the reportable flag and request-id 257.
inline const Bytes& V3Probe() {
    static const Bytes probe =
        Hex("30 3a 02 01 03"
            "30 0f 02 02 01 00 02 03 01 00 00 04 01 04 02 01 03"
            "04 10 30 0e 04 00 02 01 00 02 01 00 04 00 04 00 04 00"
            "30 12 04 00 04 00 a0 0c 02 02 01 01 02 01 00 02 01 00 30 00");
    return probe;
}

// The answer to the probe: usmStatsUnknownEngineIDs.
inline V3Datagram V3ReportFields() {
    V3Datagram report;
    report.user = {};
    report.scopedTlv = ScopedPduTlv(
        0xA8, BindingTlv(OidContent(".1.3.6.1.6.3.15.1.1.4.0"), Tlv(0x41, {1})), report.engineId);
    return report;
}
inline Bytes V3Report() { return V3ReportFields().Build(); }

// A request without authentication and privacy to a device whose engine is that of V3Report().
inline V3Datagram V3RequestFields(const std::string& oid, uint8_t pduType = 0xA0) {
    V3Datagram request;
    request.msgMaxSize = 65536;
    request.flagsTlv = Tlv(0x04, {0x04});
    request.scopedTlv = ScopedPduTlv(pduType, BindingTlv(OidContent(oid), {0x05, 0x00}));
    return request;
}
inline Bytes V3Request(const std::string& oid, uint8_t pduType = 0xA0) {
    return V3RequestFields(oid, pduType).Build();
}
// What goes out instead while the device's engine is not known: a probe that names the OID.
inline Bytes V3ProbeFor(const std::string& oid) {
    return WithoutEngine(V3RequestFields(oid)).Build();
}

inline V3Datagram V3AnswerFields(const Bytes& valueTlv, const std::string& oid = kDefaultOid) {
    V3Datagram answer;
    answer.scopedTlv = ScopedPduTlv(0xA2, BindingTlv(OidContent(oid), valueTlv));
    return answer;
}
inline Bytes V3Text(const std::string& text, const std::string& oid = kDefaultOid) {
    return V3AnswerFields(Tlv(0x04, TextBytes(text)), oid).Build();
}

}  // namespace vndiscover
