// What devices get and send over SNMPv3, and what the tests of its exports share.
#pragma once

#include <algorithm>

#include "exports/support/lab_test.h"
#include "helpers/v3_answer.h"

namespace vndiscover {

// The security arguments of the exports.
struct V3User {
    std::wstring name = L"user";
    BYTE useAuth = 0;
    BYTE usePriv = 0;
    const wchar_t* authProtocol = VN_AUTH_SHA1;
    const wchar_t* privProtocol = VN_PRIV_AES;
    const wchar_t* authPassword = L"authp\u00e4ss";
    const wchar_t* privPassword = L"privp\u00e4ss";

    // Calls an export with its last arguments.
    template <class Call>
    int32_t Ask(Call&& call) const {
        return call(name.c_str(), useAuth, authPassword, usePriv, privPassword, authProtocol,
                    privProtocol);
    }
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

inline V3Datagram WithoutEngine(V3Datagram datagram) {
    datagram.engineId = datagram.user = {};
    datagram.boots = datagram.time = 0;
    return datagram;
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
inline Bytes V3NamelessReport() { return WithoutEngine(V3ReportFields()).Build(); }

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
// Signed with a code that is wrong.
inline Bytes V3WronglySigned(const std::string& text) {
    V3Datagram answer = V3AnswerFields(Tlv(0x04, TextBytes(text)));
    answer.flagsTlv = Tlv(0x04, {0x01});
    answer.macTlv = Tlv(0x04, Bytes(12, 0xAA));
    return answer.Build();
}

// Whatever comes back is the answer; this is the text that it holds, and the type of its value.
struct V3AnswerCase : Row {
    Bytes datagram;
    std::string text;
    uint32_t type;  // 0: it holds no variable
};
inline std::vector<V3AnswerCase> V3AnswerCases() {
    const auto valued = [](const char* tlv) { return V3AnswerFields(Hex(tlv)).Build(); };
    V3Datagram otherModel = V3AnswerFields(Tlv(0x04, TextBytes("Model")));
    otherModel.securityModel = 1;
    return {{{"Text"}, V3Text("Model"), "Model", 4},
            {{"TextUpToItsZeroByte"}, V3Text(std::string("ab\0cd", 5)), "ab", 4},
            {{"LongestText"}, V3Text(std::string(126, 'x')), std::string(126, 'x'), 4},
            {{"TooLongText"}, V3Text(std::string(127, 'x')), "", 0},
            {{"EmptyText"}, V3Text(""), "", 4},
            {{"AnotherOid"}, V3Text("Model", ".1.3.6.1"), "Model", 4},
            {{"WrongAuthentication"}, V3WronglySigned("Model"), "Model", 4},
            {{"Integer"}, valued("02 04 7f ff ff ff"), "2147483647", 2},
            {{"NegativeInteger"}, valued("02 01 ff"), "-1", 2},
            {{"IntegerOfFiveBytes"}, valued("02 05 00 ff ff ff fe"), "-2", 2},
            {{"IntegerOfSixBytes"}, valued("02 06 00 00 00 00 00 01"), "", 2},
            {{"Null"}, valued("05 00"), "", 5},
            {{"Counter"}, valued("41 01 07"), "", 0x41},
            {{"NoSuchInstance"}, valued("81 00"), "", 0x81},
            {{"AnotherReport"}, V3Report(), "", 0x41},
            {{"AnotherSecurityModel"}, otherModel.Build(), "", 0},
            {{"NoBer"}, TextBytes("hello"), "", 0},
            {{"CommunityAnswer"}, SnmpText("Model"), "", 0}};
}

class V3Test : public LabTest {
  protected:
    // Devices of neta: they answer the probe with reports, and whatever else with answers.
    void DeviceWith(std::vector<Answer> reports, std::vector<Answer> answers) {
        Devices([=](const Request& request) {
            if (request.net != "neta") return std::vector<Answer>();
            return request.data == V3Probe() ? reports : answers;
        });
    }
    // Everything that was sent.
    std::vector<Bytes> Sent() {
        std::vector<Bytes> sent;
        for (const Request& request : agents->Requests()) sent.push_back(request.data);
        return sent;
    }
    // The requests to single devices.
    std::vector<Bytes> Asked() {
        std::vector<Bytes> asked = Sent();
        asked.erase(std::remove(asked.begin(), asked.end(), V3Probe()), asked.end());
        return asked;
    }
    // "sender > receiver:port" of everything that was sent.
    std::vector<std::string> Ways() {
        std::vector<std::string> ways;
        for (const Request& request : agents->Requests()) {
            ways.push_back(request.sender + " > " + request.local + ':' +
                           std::to_string(request.port));
        }
        return ways;
    }

    V3User user;
};

}  // namespace vndiscover
