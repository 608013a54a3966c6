// Shared by the tests of the SNMPv3 exports.
#pragma once

#include <algorithm>

#include "exports/support/network_test.h"

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

inline Bytes V3NamelessReport() { return WithoutEngine(V3ReportFields()).Build(); }

// With a wrong HMAC.
inline Bytes V3WronglySigned(const std::string& text) {
    V3Datagram answer = V3AnswerFields(Tlv(0x04, TextBytes(text)));
    answer.flagsTlv = Tlv(0x04, {0x01});
    answer.macTlv = Tlv(0x04, Bytes(12, 0xAA));
    return answer.Build();
}

// Every datagram counts as an answer; this is its text, and the type of its value.
struct V3AnswerCase {
    const char* name;
    Bytes datagram;
    std::string text;
    uint32_t type;  // 0: there is no variable
};
inline std::vector<V3AnswerCase> V3AnswerCases() {
    const auto valued = [](const char* tlv) { return V3AnswerFields(Hex(tlv)).Build(); };
    const Bytes whole = V3Text("Model");
    return {{"TextUpToItsZeroByte", V3Text(std::string("ab\0cd", 5)), "ab", 4},
            {"LongestText", V3Text(std::string(126, 'x')), std::string(126, 'x'), 4},
            {"EmptyText", V3Text(""), "", 4},
            {"AnotherOid", V3Text("Model", ".1.3.6.1"), "Model", 4},
            {"WrongAuthentication", V3WronglySigned("Model"), "Model", 4},
            {"Integer", valued("02 01 ff"), "-1", 2},
            {"IntegerOfSixBytes", valued("02 06 00 00 00 00 00 01"), "", 2},
            {"AnotherReport", V3Report(), "", 0x41},
            {"Cut", Prefix(whole, whole.size() - 1), "", 0}};
}

class V3Test : public NetworkTest {
  protected:
    using NetworkTest::NetworkTest;

    // Devices of neta, which answer engine discoveries with reports, and other requests with
    // answers.
    void DeviceWith(Answers reports, Answers answers) {
        Devices([=](const Request& request) {
            if (request.net != "neta") return Answers();
            return request.data == V3Discovery() ? reports : answers;
        });
    }
    // DiscoverV3DevicesByOIDjson if there is a request.
    int32_t SweepV3(ResultWindow& to, const wchar_t* question = nullptr, BYTE useIPv6 = 0) {
        return user.Ask([&](auto... security) {
            return question
                       ? module.DiscoverV3DevicesByOIDjson(to.Handle(), to.kMessage, 1, useIPv6,
                                                           question, security...)
                       : module.DiscoverSnmpV3(to.Handle(), to.kMessage, 1, useIPv6, security...);
        });
    }
    // Directed requests.
    std::vector<Bytes> Asked() const {
        std::vector<Bytes> asked = Sent();
        asked.erase(std::remove(asked.begin(), asked.end(), V3Discovery()), asked.end());
        return asked;
    }

    V3User user;
    const std::string encode = "VxSNMPv3::Encode()\n";
    const std::string decode = "VxSNMPv3::Decode(LPBYTE berBuffer, int length)\n";
};

}  // namespace vndiscover
