// SNMPv1 messages, built from their definition (RFC 1157 section 4) and not with the module's
// codec.
#pragma once

#include <cstdint>
#include <string>

#include "helpers/bytes.h"

namespace vndiscover {

constexpr char kDefaultOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";
constexpr char kSysDescr[] = ".1.3.6.1.2.1.1.1.0";
constexpr char kSysName[] = ".1.3.6.1.2.1.1.5.0";

// The content octets of an OBJECT IDENTIFIER.
Bytes OidContent(const std::string& dotted);

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
Bytes Encode(const SnmpMessage& message);

// A GetRequest as the module sends it.
Bytes SnmpGet(const std::string& oid, const std::string& community = "sesame");
// A GetResponse with one variable.
Bytes SnmpAnswer(const std::string& oid, uint8_t type, const Bytes& value);
inline Bytes SnmpText(const std::string& text, const std::string& oid = kDefaultOid) {
    return SnmpAnswer(oid, 4, TextBytes(text));
}

}  // namespace vndiscover
