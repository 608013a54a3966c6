// The requests of a sweep, from where and in which order they are sent, and their log lines.
#include <sstream>

#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

constexpr UINT kMessage = ResultWindow::kMessage;

class SweepRequest : public NetworkTest {
  protected:
    // Checks that both adapters have sent this request without an answer, and clears the record.
    void ExpectAsked(const Bytes& expected) {
        EXPECT_EQ(std::vector<Bytes>(2, expected), Sent());
        EXPECT_THAT(window.Texts(), ElementsAre("end"));
        window.results.clear();
        SilentDevices();
    }
    void SweepByOid(const std::string& oid, const wchar_t* community = nullptr) {
        EXPECT_EQ(0, module.DiscoverDevicesByOID(window.Handle(), kMessage, 0, 0, Wide(oid).c_str(),
                                                 nullptr, community, L"private"));
    }
};

TEST_F(SweepRequest, LeavesEveryIPv4AddressOnceAndInOrder) {
    Sweep();
    EXPECT_THAT(Ways(), ElementsAre("neta: 10.77.1.1 > 255.255.255.255:161",
                                    "netb: 10.77.2.1 > 255.255.255.255:161"));
    ExpectLog(SweepLines(AnsweredLines({}), AnsweredLines({})));
    // RFC 1157: version 0, "sesame", GetRequest with request-id 1, 1.3.6.1.4.1.5963.43.5.1.1.1.1,
    // NULL.
    ExpectAsked(
        Hex("30 2B 02 01 00 04 06 73 65 73 61 6D 65 A0 1E 02 01 01 02 01 00 02 01 00"
            "30 13 30 11 06 0D 2B 06 01 04 01 AE 4B 2B 05 01 01 01 01 05 00"));
}

// The host itself, which is one of the all-nodes group, receives nothing.
TEST_F(SweepRequest, LeavesEveryIPv6AddressOnceAndInOrder) {
    Sweep(nullptr, 255);
    EXPECT_THAT(Ways(),
                ElementsAre("neta: fe80::1:1 > ff02::1:161", "netb: fe80::2:1 > ff02::1:161"));
    EXPECT_TRUE(log.Has("-------------- ...nCount [2]\n"));
    for (const std::string address : {"fe80::1:1", "fe80::2:1"}) {
        EXPECT_THAT(log.Text(),
                    HasSubstr(" pStringBuf [" + address + "]\n tszBindAddr [" + address +
                              "]\nIPADDRESS .... " + address + "HandleEvents start\n"));
    }
    ExpectAsked(SnmpGet(kDefaultOid));
}

TEST_F(SweepRequest, CarriesTheOidAndReadCommunityOrTheirDefaults) {
    const HWND w = window.Handle();
    module.DiscoverDevices(w, kMessage, 9, 0, L"", L"public", L"private");
    ExpectAsked(SnmpGet(kDefaultOid, "public"));
    module.DiscoverDevices(w, kMessage, 0, 0, nullptr, L"", L"private");
    ExpectAsked(SnmpGet(kDefaultOid));
    for (const char* community : {"narrow", (const char*)nullptr}) {
        EXPECT_EQ(0, module.DiscoverSnmp(w, kMessage, 0, 0, community, ""));
        ExpectAsked(SnmpGet(kDefaultOid, community ? community : "sesame"));
    }
    SweepByOid(kSysDescr, L"caf\u00e9");
    ExpectAsked(SnmpGet(kSysDescr, "caf\xe9"));
    SweepByOid("");
    ExpectAsked(SnmpGet(kDefaultOid));
    SweepByOid(".1");  // fewer than two arcs
    ExpectAsked(
        Hex("30 1E 02 01 00 04 06 73 65 73 61 6D 65 A0 11 02 01 01 02 01 00 02 01 00"
            "30 06 30 04 06 00 05 00"));
    SweepFor(L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.5.0\"}");
    ExpectAsked(SnmpGet(kSysName));
    for (const wchar_t* without : {(const wchar_t*)nullptr, L"{\"DiscoverOID\": 5}", L"{ no"}) {
        module.DiscoverDevicesByOIDjson(w, kMessage, 0, 0, without, nullptr, nullptr, nullptr);
        ExpectAsked(SnmpGet(kDefaultOid));
    }
}

TEST_F(SweepRequest, IsNotSentIfTooLongButTheSweepEnds) {
    for (const size_t size : {256, 5000}) SweepByOid(kSysName, std::wstring(size, L'c').c_str());
    for (const size_t octets : {125, 2500}) SweepByOid(LongOid(octets));
    SweepByOid(".1.3." + std::string(254, '0') + "6");
    // JSON requests have 2,047 bytes at most.
    const auto question = [](size_t size) { return L"{\"a\": 1}" + std::wstring(size - 8, L' '); };
    for (const size_t size : {2048, 100000}) SweepFor(question(size));
    EXPECT_THAT(Requests(), IsEmpty());
    EXPECT_EQ(Lines(2 + 2 + 1 + 2, "end"), window.Texts());
    SweepFor(question(2047));
    EXPECT_THAT(Requests(), SizeIs(2));
}

TEST_F(SweepRequest, ExportsWithoutFunctionSendNothing) {
    EXPECT_EQ(0, module.DiscoverHttp());
    EXPECT_EQ(0, module.DiscoverBonjour());
    EXPECT_EQ(0, module.GetBonjourInformation());
    EXPECT_EQ(0, module.StopDiscoverSnmp());
    EXPECT_THAT(Requests(), IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre("VxSnmpMgr::StopDiscover\n"));
}

TEST_F(SweepRequest, SocketsHaveTimeOutsOfASecond) {
    Devices([](const Request& request) {
        for (const int option : {SO_SNDTIMEO, SO_RCVTIMEO}) {
            int milliseconds = 0, size = sizeof milliseconds;
            getsockopt(request.socket, SOL_SOCKET, option, reinterpret_cast<char*>(&milliseconds),
                       &size);
            EXPECT_EQ(1000, milliseconds);
        }
        return Answers();
    });
    Sweep();
    Sweep(nullptr, 1);
    EXPECT_THAT(Requests(), SizeIs(4));
}

TEST_F(SweepRequest, IsSentEvenIfBindFails) {
    static int error;
    const ImportPatch patch(module.Handle(), "bind", [](SOCKET, const sockaddr*, int) {
        WSASetLastError(error);
        return SOCKET_ERROR;
    });
    // The error of a socket that was neither bound nor used to send.
    network.receiveError = [](int) { return WSAEINVAL; };
    std::istringstream errors(
        "10013 WSAEACCES 10014 WSAEFAULT 10022 WSAEINVAL 10036 WSAEINPROGRESS 10038 WSAENOTSOCK "
        "10048 WSAEADDRINUSE 10049 WSAEADDRNOTAVAIL 10050 WSAENETDOWN 10055 WSAENOBUFS "
        "10093 WSANOTINITIALISED 10040 -");  // there is no line for the last
    for (std::string name; errors >> error >> name;) {
        Sweep();
        char line[32];
        std::snprintf(line, sizeof line, "BIND error %x\n", error);
        const std::string unbound = line + (name == "-" ? "" : "   " + name + '\n');
        ExpectLog(SweepLines(unbound + AnsweredLines({}), unbound + AnsweredLines({})));
        ExpectAsked(SnmpGet(kDefaultOid));
    }
}

TEST_F(SweepRequest, FailedSendSkipsItsAdapter) {
    network.sendError = [](int call) { return call == 1 ? WSAENETUNREACH : 0; };
    DeviceIn("netb", {{SnmpText("B")}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.2.2=B", "end"));
    ExpectLog(SweepLines("sendto() failed - 10051\nsendto() failed, err: 10051\n",
                         AnsweredLines({"10.77.2.2"})));
}

}  // namespace
}  // namespace vndiscover
