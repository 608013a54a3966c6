#include "exports/support/snmp_datagrams.h"

#include <sstream>

namespace vndiscover {
namespace {

Bytes Base128(uint32_t arc) {
    Bytes bytes = {static_cast<uint8_t>(arc & 0x7F)};
    while ((arc >>= 7) != 0) {
        bytes.insert(bytes.begin(), static_cast<uint8_t>((arc & 0x7F) | 0x80));
    }
    return bytes;
}

Bytes Constructed(uint8_t tag, const Bytes& content, bool shortest) {
    if (shortest || content.size() < 0x80) return Tlv(tag, content);
    return Bytes{tag, 0x82, static_cast<uint8_t>(content.size() >> 8),
                 static_cast<uint8_t>(content.size())} +
           content;
}

}  // namespace

Bytes OidContent(const std::string& dotted) {
    std::istringstream text(dotted);
    std::vector<uint32_t> arcs;
    for (std::string piece; std::getline(text, piece, '.');) {
        if (!piece.empty()) arcs.push_back(static_cast<uint32_t>(std::stoul(piece)));
    }
    Bytes content = Base128(arcs.at(0) * 40 + arcs.at(1));
    for (size_t i = 2; i < arcs.size(); ++i) content = content + Base128(arcs[i]);
    return content;
}

Bytes Encode(const SnmpMessage& message) {
    const bool shortest = message.shortestLengths;
    const Bytes binding = Constructed(
        0x30, Tlv(6, OidContent(message.oid)) + Tlv(message.valueType, message.value), shortest);
    const Bytes pdu = Tlv(2, message.requestId) + Tlv(2, {message.errorStatus}) + Tlv(2, {0}) +
                      Constructed(0x30, binding, shortest);
    return Constructed(0x30,
                       Tlv(2, {0}) + Tlv(4, TextBytes(message.community)) +
                           Constructed(message.pduType, pdu, shortest),
                       shortest);
}

Bytes SnmpGet(const std::string& oid, const std::string& community) {
    SnmpMessage message;
    message.oid = oid;
    message.community = community;
    return Encode(message);
}

Bytes SnmpAnswer(const std::string& oid, uint8_t type, const Bytes& value) {
    SnmpMessage message;
    message.oid = oid;
    message.valueType = type;
    message.value = value;
    message.pduType = 0xA2;
    return Encode(message);
}

}  // namespace vndiscover
