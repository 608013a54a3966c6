// What devices get and send over SNMPv3, and the user that tests ask as.
#pragma once

#include <string>

#include "exports/support/snmp_datagrams.h"
#include "helpers/v3_answer.h"
#include "vndiscover.h"

namespace vndiscover {

// The security arguments of the exports.
struct V3User {
    std::wstring name = L"user";
    BYTE useAuth = 0;
    BYTE usePriv = 0;
    const wchar_t* authProtocol = VN_AUTH_SHA1;
    const wchar_t* privProtocol = VN_PRIV_AES;
    const wchar_t* authPassword = L"authpass1";
    const wchar_t* privPassword = L"privpass1";
};

// The engine discovery, RFC 3412 6 and RFC 3414 4: all fields empty or 0, but for msgID 256,
// msgMaxSize 65536, the reportable flag and request-id 257.
inline Bytes V3Probe() {
    return Hex(
        "30 3a 02 01 03"
        "30 0f 02 02 01 00 02 03 01 00 00 04 01 04 02 01 03"
        "04 10 30 0e 04 00 02 01 00 02 01 00 04 00 04 00 04 00"
        "30 12 04 00 04 00 a0 0c 02 02 01 01 02 01 00 02 01 00 30 00");
}

// The answer to it: usmStatsUnknownEngineIDs.
inline V3Datagram V3ReportFields() {
    V3Datagram report;
    report.user = {};
    report.scopedTlv = ScopedPduTlv(
        0xA8, BindingTlv(OidContent(".1.3.6.1.6.3.15.1.1.4.0"), Tlv(0x41, {1})), report.engineId);
    return report;
}
// One that names no engine, so that nothing is known of the device.
inline Bytes V3NamelessReport() {
    V3Datagram report = V3ReportFields();
    report.engineId = {};
    report.boots = report.time = 0;
    return report.Build();
}
inline Bytes V3Report() { return V3ReportFields().Build(); }

// A request without authentication and privacy to a device whose engine is that of V3Report().
inline Bytes V3Request(const std::string& oid, uint8_t pduType = 0xA0) {
    V3Datagram request;
    request.msgMaxSize = 65536;
    request.flagsTlv = Tlv(0x04, {0x04});
    request.scopedTlv = ScopedPduTlv(pduType, BindingTlv(OidContent(oid), {0x05, 0x00}));
    return request.Build();
}

// What goes out instead while the device's engine is not known: a probe that names the OID.
inline Bytes V3ProbeFor(const std::string& oid) {
    V3Datagram request;
    request.msgMaxSize = 65536;
    request.flagsTlv = Tlv(0x04, {0x04});
    request.engineId = request.user = {};
    request.boots = request.time = 0;
    request.scopedTlv = ScopedPduTlv(0xA0, BindingTlv(OidContent(oid), {0x05, 0x00}));
    return request.Build();
}

inline V3Datagram V3AnswerFields(const Bytes& valueTlv, const std::string& oid = kDefaultOid) {
    V3Datagram answer;
    answer.scopedTlv = ScopedPduTlv(0xA2, BindingTlv(OidContent(oid), valueTlv));
    return answer;
}
inline Bytes V3Text(const std::string& text, const std::string& oid = kDefaultOid) {
    return V3AnswerFields(Tlv(0x04, TextBytes(text)), oid).Build();
}

// An answer whose authentication code is wrong.
inline Bytes V3WronglySigned(const std::string& text) {
    V3Datagram answer = V3AnswerFields(Tlv(0x04, TextBytes(text)));
    answer.flagsTlv = Tlv(0x04, {0x01});
    answer.macTlv = Tlv(0x04, Bytes(12, 0xAA));
    return answer.Build();
}

}  // namespace vndiscover
