// Bytes for tests, and SNMP datagrams of managers and agents, built from RFC 1157, RFC 3412 and
// RFC 3414 without the code under test.
#pragma once

#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

// A copy has a heap block of exactly its size, so that the sanitizer finds reads past the end.
using Bytes = std::vector<uint8_t>;

// "30 0a", with blanks anywhere except within a byte.
inline Bytes Hex(const std::string& text) {
    Bytes bytes;
    unsigned byte = 0;
    int read = 0;
    for (const char* at = text.c_str(); std::sscanf(at, "%2x%n", &byte, &read) == 1; at += read) {
        bytes.push_back(static_cast<uint8_t>(byte));
    }
    return bytes;
}

// "300a", with `after` following each byte.
inline std::string ToHex(const Bytes& bytes, const char* after = "") {
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (const int byte : bytes) text << std::setw(2) << byte << after;
    return text.str();
}

inline Bytes TextBytes(const std::string& text) { return Bytes(text.begin(), text.end()); }

inline Bytes ToBytes(const ByteBuffer& buffer) {
    return Bytes(buffer.data, buffer.data + buffer.length);
}

inline ByteBuffer ToBuffer(const Bytes& bytes) {
    ByteBuffer buffer;
    buffer.Assign(bytes.data(), static_cast<int32_t>(bytes.size()));
    return buffer;
}

inline Bytes operator+(Bytes front, const Bytes& back) {
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

inline Bytes Prefix(const Bytes& bytes, size_t count) {
    return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
}

// A BER value in the shortest length form, written without the encoder under test.
inline Bytes Tlv(uint8_t tag, const Bytes& content) {
    const size_t size = content.size();
    const auto low = static_cast<uint8_t>(size), high = static_cast<uint8_t>(size >> 8);
    return (size < 0x80    ? Bytes{tag, low}
            : size < 0x100 ? Bytes{tag, 0x81, low}
                           : Bytes{tag, 0x82, high, low}) +
           content;
}

constexpr char kDefaultOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";
constexpr char kSysDescr[] = ".1.3.6.1.2.1.1.1.0";
constexpr char kSysName[] = ".1.3.6.1.2.1.1.5.0";
constexpr char kSysLocation[] = ".1.3.6.1.2.1.1.6.0";

// The content octets of an OBJECT IDENTIFIER, written ".1.3.6".
inline Bytes OidContent(const std::string& dotted) {
    std::istringstream text(dotted);
    char dot = 0;
    uint32_t first = 0, arc = 0;
    text >> dot >> first >> dot >> arc;
    arc += 40 * first;
    Bytes content;
    do {
        Bytes base128 = {static_cast<uint8_t>(arc & 0x7F)};
        while ((arc >>= 7) != 0) base128 = Bytes{static_cast<uint8_t>(arc | 0x80)} + base128;
        content = content + base128;
    } while (text >> dot >> arc);
    return content;
}

// "1.3.1.1...", one with so many content octets.
inline std::string LongOid(size_t octets) {
    std::string oid = "1.3";
    for (size_t i = 1; i < octets; ++i) oid += ".1";
    return oid;
}

// The shortest form of two's complement.
inline Bytes IntegerTlv(int64_t value) {
    Bytes content = {static_cast<uint8_t>(value)};
    for (int64_t rest = value >> 7; rest != 0 && rest != -1; rest >>= 8) {
        content = Bytes{static_cast<uint8_t>(rest >> 1)} + content;
    }
    return Tlv(0x02, content);
}

inline Bytes BindingTlv(const std::string& oid, const Bytes& valueTlv) {
    return Tlv(0x30, Tlv(0x06, OidContent(oid)) + valueTlv);
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
};
// A SEQUENCE or PDU of 128 bytes or more has its length as 82 hi lo, as many agents send it; the
// module's parser does not read 81 nn.
inline Bytes Encode(const SnmpMessage& message) {
    const auto constructed = [](uint8_t tag, const Bytes& content) {
        const size_t size = content.size();
        if (size < 0x80) return Tlv(tag, content);
        return Bytes{tag, 0x82, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)} +
               content;
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

inline Bytes ScopedPduTlv(uint8_t pduTag, const Bytes& bindings,
                          const Bytes& contextEngineId = {}) {
    return Tlv(0x30, Tlv(0x04, contextEngineId) + Tlv(0x04, {}) +
                         Tlv(pduTag, IntegerTlv(257) + IntegerTlv(0) + IntegerTlv(0) +
                                         Tlv(0x30, bindings)));
}

// A response with sysName as OCTET STRING.
inline Bytes ScopedTextTlv(const std::string& text) {
    return ScopedPduTlv(0xA2, BindingTlv(kSysName, Tlv(0x04, TextBytes(text))));
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
    Bytes scopedTlv = ScopedTextTlv("value");  // or an OCTET STRING with its cipher text

    Bytes Content() const {
        const Bytes header = Tlv(0x30, IntegerTlv(msgId) + IntegerTlv(msgMaxSize) + flagsTlv +
                                           IntegerTlv(securityModel));
        const Bytes usm = Tlv(0x30, Tlv(0x04, engineId) + IntegerTlv(boots) + IntegerTlv(time) +
                                        Tlv(0x04, user) + macTlv + Tlv(0x04, salt));
        return IntegerTlv(3) + header + Tlv(0x04, usm) + scopedTlv;
    }
    Bytes Build() const { return Tlv(0x30, Content()); }
};

inline V3Datagram WithoutEngine(V3Datagram datagram) {
    datagram.engineId = datagram.user = {};
    datagram.boots = datagram.time = 0;
    return datagram;
}

// The engine discovery of RFC 3412 6 and RFC 3414 4: all fields are empty or 0 except msgID 256,
// msgMaxSize 65536, the reportable flag and request-id 257.
inline Bytes V3Discovery(const char* flags = "04") {
    return Hex("30 3a 02 01 03  30 0f 02 02 01 00 02 03 01 00 00 04 01") + Hex(flags) +
           Hex("02 01 03  04 10 30 0e 04 00 02 01 00 02 01 00 04 00 04 00 04 00"
               "30 12 04 00 04 00 a0 0c 02 02 01 01 02 01 00 02 01 00 30 00");
}

// The answer to an engine discovery: usmStatsUnknownEngineIDs.
inline V3Datagram V3ReportFields() {
    V3Datagram report;
    report.user = {};
    report.scopedTlv =
        ScopedPduTlv(0xA8, BindingTlv(".1.3.6.1.6.3.15.1.1.4.0", Tlv(0x41, {1})), report.engineId);
    return report;
}
inline Bytes V3Report() { return V3ReportFields().Build(); }

// A request without authentication and privacy to a device whose engine is that of V3Report().
inline V3Datagram V3RequestFields(const std::string& oid, uint8_t pduType = 0xA0) {
    V3Datagram request;
    request.msgMaxSize = 65536;
    request.flagsTlv = Tlv(0x04, {0x04});
    request.scopedTlv = ScopedPduTlv(pduType, BindingTlv(oid, {0x05, 0x00}));
    return request;
}
inline Bytes V3Request(const std::string& oid, uint8_t pduType = 0xA0) {
    return V3RequestFields(oid, pduType).Build();
}
// Sent instead while the device's engine is unknown: an engine discovery with the OID.
inline Bytes V3DiscoveryFor(const std::string& oid) {
    return WithoutEngine(V3RequestFields(oid)).Build();
}

inline V3Datagram V3AnswerFields(const Bytes& valueTlv, const std::string& oid = kDefaultOid) {
    V3Datagram answer;
    answer.scopedTlv = ScopedPduTlv(0xA2, BindingTlv(oid, valueTlv));
    return answer;
}
inline Bytes V3Text(const std::string& text, const std::string& oid = kDefaultOid) {
    return V3AnswerFields(Tlv(0x04, TextBytes(text)), oid).Build();
}

}  // namespace vndiscover
