// What a sweep asks, from where and in which order, and what it tells the log about that.
#include <sstream>

#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr UINT kMessage = ResultWindow::kMessage;

std::wstring Repeated(std::wstring text, const wchar_t* piece, int count) {
    while (count-- > 0) text += piece;
    return text;
}

// IPv6 sweeps tell the log of each address.
Lines OpenedLines(const std::string& address) {
    return {" pStringBuf [" + address + "]\n", " tszBindAddr [" + address + "]\n",
            "IPADDRESS .... " + address};
}

class SweepRequest : public LoggedTest {
  protected:
    SweepRequest() { SilentDevices(); }

    // Both adapters have sent that, nobody has answered. Forgets it.
    void ExpectAsked(const Bytes& expected) {
        Lines asked;
        for (const Request& request : agents->Requests()) asked.push_back(ToHex(request.data));
        EXPECT_THAT(asked, ElementsAre(ToHex(expected), ToHex(expected)));
        EXPECT_THAT(window.Texts(), ElementsAre("end"));
        window.results.clear();
        SilentDevices();
    }
    void SweepByOid(const wchar_t* oid, const wchar_t* community = nullptr) {
        EXPECT_EQ(0, module.DiscoverDevicesByOID(window.Handle(), kMessage, 0, 0, oid, nullptr,
                                                 community, L"private"));
    }
};

TEST_F(SweepRequest, LeavesEveryAddressOnceAndInOrder) {
    Sweep();
    Sweep(nullptr, 255);
    // The host itself, which is one of all nodes, hears nothing.
    EXPECT_THAT(
        Ways(),
        ElementsAre("10.77.1.1 > 255.255.255.255 161 neta", "10.77.2.1 > 255.255.255.255 161 netb",
                    "fe80::1:1 > ff02::1 161 neta", "fe80::2:1 > ff02::1 161 netb"));
    // RFC 1157: version 0, "sesame", GetRequest with request-id 1, 1.3.6.1.4.1.5963.43.5.1.1.1.1,
    // NULL.
    const Bytes expected =
        Hex("30 2B 02 01 00 04 06 73 65 73 61 6D 65 A0 1E 02 01 01 02 01 00 02 01 00"
            "30 13 30 11 06 0D 2B 06 01 04 01 AE 4B 2B 05 01 01 01 01 05 00");
    for (const Request& request : agents->Requests()) EXPECT_EQ(expected, request.data);
    EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
    ExpectLog(SweepLines(AnsweredLines({}), AnsweredLines({})) +
              Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} + DefaultRequestLines() +
              IPv6ListingLines() + Lines{"-------------- ...nCount [2]\n"} +
              OpenedLines("fe80::1:1") + AnsweredLines({}) + OpenedLines("fe80::2:1") +
              AnsweredLines({}) + Lines{"SNMP::Discover - ended\n"});
}

TEST_F(SweepRequest, HoldsTheOidAndTheReadCommunityOrTheirDefaults) {
    const HWND w = window.Handle();
    module.DiscoverDevices(w, kMessage, 9, 0, L"", L"public", L"private");
    ExpectAsked(SnmpGet(kDefaultOid, "public"));
    module.DiscoverDevices(w, kMessage, 0, 0, nullptr, L"", L"private");
    ExpectAsked(SnmpGet(kDefaultOid));
    EXPECT_EQ(0, module.DiscoverSnmp(w, kMessage, 0, 0, "narrow", ""));
    ExpectAsked(SnmpGet(kDefaultOid, "narrow"));
    module.DiscoverSnmp(w, kMessage, 0, 0, nullptr, nullptr);
    ExpectAsked(SnmpGet(kDefaultOid));
    SweepByOid(L".1.3.6.1.2.1.1.1.0", L"caf\u00e9");
    ExpectAsked(SnmpGet(kSysDescr, "caf\xe9"));
    SweepByOid(nullptr);
    ExpectAsked(SnmpGet(kDefaultOid));
    SweepByOid(L".1");  // a text that holds no OID
    ExpectAsked(
        Hex("30 1E 02 01 00 04 06 73 65 73 61 6D 65 A0 11 02 01 01 02 01 00 02 01 00"
            "30 06 30 04 06 00 05 00"));
    SweepFor(L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.5.0\"}");
    ExpectAsked(SnmpGet(kSysName));
    module.DiscoverDevicesByOIDjson(w, kMessage, 0, 0, nullptr, nullptr, nullptr, nullptr);
    ExpectAsked(SnmpGet(kDefaultOid));
    for (const wchar_t* without : {L"{\"DiscoverOID\": 5}", L"{ no JSON"}) {
        log.Clear();
        SweepFor(without);
        ExpectAsked(SnmpGet(kDefaultOid));
        ExpectLog(SweepLines(
            AnsweredLines({}), AnsweredLines({}),
            {"wszDisOID []\n", "szDisOid []\n",
             "Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n"}));
    }
    // Every length is one byte, so that of a message of 294 bytes wraps.
    const std::string longest(255, 'c');
    module.DiscoverSnmp(w, kMessage, 0, 0, longest.c_str(), nullptr);
    ExpectAsked(Hex("30 24 02 01 00 04 FF") + TextBytes(longest) +
                Hex("A0 1E 02 01 01 02 01 00 02 01 00"
                    "30 13 30 11 06 0D 2B 06 01 04 01 AE 4B 2B 05 01 01 01 01 05 00"));
    SweepByOid(Repeated(L"1.3", L".1", 123).c_str());
    ExpectAsked(Hex("30 9A 02 01 00 04 06 73 65 73 61 6D 65 A0 8D 02 01 01 02 01 00 02 01 00"
                    "30 82 30 80 06 7C 2B") +
                Bytes(123, 1) + Hex("05 00"));
}

TEST_F(SweepRequest, ThatFitsNoDatagramIsNotSentAndTheSweepStillEnds) {
    for (const size_t size : {256, 259, 300, 5000}) {
        SweepByOid(L".1.3.6.1", std::wstring(size, L'c').c_str());
    }
    for (const std::wstring& oid :
         {Repeated(L"1.3", L".1", 124), L".1.3." + std::wstring(254, L'0') + L"6",
          Repeated(L".1.3", L".1", 2498)}) {
        SweepByOid(oid.c_str());
    }
    // Questions take 2,047 bytes at most.
    for (const size_t size : {2048, 100000}) {
        SweepFor(L"{\"a\": 1}" + std::wstring(size - 8, L' '));
    }
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_EQ(Lines(4 + 3 + 2, "end"), window.Texts());
    SweepFor(L"{\"a\": 1}" + std::wstring(2047 - 8, L' '));
    EXPECT_EQ(2u, agents->Requests().size());
}

TEST_F(SweepRequest, IsMadeByNoExportThatDoesNothing) {
    EXPECT_EQ(0, module.DiscoverHttp());
    EXPECT_EQ(0, module.DiscoverBonjour());
    EXPECT_EQ(0, module.GetBonjourInformation());
    EXPECT_EQ(0, module.StopDiscoverSnmp());
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre("VxSnmpMgr::StopDiscover\n"));
}

// The sockets of sweeps whose phases end at once.
class SweepSockets : public LoggedTest {
  protected:
    SweepSockets() { SilentDevices(); }

    // "level/option=value size" each; the one that starts with `failing` does not succeed.
    static int WSAAPI SetOption(SOCKET handle, int level, int option, const char* value, int size) {
        int number = 0;
        std::memcpy(&number, value, static_cast<size_t>(size));
        if (option == SO_RCVBUF) return setsockopt(handle, level, option, value, size);
        options.push_back(std::to_string(level) + '/' + std::to_string(option) + '=' +
                          std::to_string(number) + ' ' + std::to_string(size));
        if (options.back() == failing) return SOCKET_ERROR;
        return setsockopt(handle, level, option, value, size);
    }
    static int WSAAPI Bind(SOCKET, const sockaddr*, int) {
        WSASetLastError(bindError);
        return SOCKET_ERROR;
    }

    static hostent* WSAAPI Resolve(const char* name) {
        resolved.push_back(name);
        return gethostbyname(name);
    }

    static inline Lines resolved;
    static inline Lines options;
    static inline std::string failing;
    static inline int bindError;
    const Receives receives{module, [](int) { return WSANOTINITIALISED; }};
    const Lines ended = PhaseLines(
        {"Receive Data failed - 10093\n", "tszRecvAddr = WSAStartup failed\n"}, 0, {}, 0);
};

TEST_F(SweepSockets, GetTheirOptionsUntilOneFails) {
    const ImportPatch patch(module.Handle(), "setsockopt", SetOption);
    const std::vector<std::pair<std::string, std::string>> families[] = {
        {{"65535/4102=1000 4", "Failed to set Socket receive timeout\n"},
         {"65535/4101=1000 4", "Failed to set Socket send timeout\n"},
         {"65535/32=1 4", "Failed to set SO_BROADCAST\n"},
         {"none", "HandleEvents start\n"}},
        {{"65535/4102=1000 4", "Failed to set Socket receive timeout\n"},
         {"65535/4101=1000 4", "Failed to set Socket send timeout\n"},
         {"41/11=0 1", "Failed to set IPV6_MULTICAST_LOOP\n"},
         {"41/10=8 1", "Failed to set IPV6_MULTICAST_LOOP\n"},
         {"none", " tszBindAddr [fe80::2:1]\n"}}};
    for (BYTE useIPv6 = 0; useIPv6 < 2; ++useIPv6) {
        Lines expected;
        for (const auto& [option, line] : families[useIPv6]) {
            failing = option;
            options.clear();
            log.Clear();
            Sweep(nullptr, useIPv6);
            EXPECT_TRUE(log.Has(line)) << line;
            if (option != "none") expected.push_back(option);
            EXPECT_EQ(Times(2, expected), options);
        }
    }
}

// Also those that are numbers.
TEST_F(SweepSockets, GiveTheirAddressesToTheResolver) {
    const ImportPatch patch(module.Handle(), "gethostbyname", Resolve);
    resolved.clear();
    Sweep();
    EXPECT_THAT(resolved, ElementsAre("10.77.1.1", "10.77.2.1"));
}

TEST_F(SweepSockets, StayUsableWhereTheirAddressCannotBeBound) {
    const ImportPatch patch(module.Handle(), "bind", Bind);
    std::istringstream errors(
        "10013 WSAEACCES 10014 WSAEFAULT 10022 WSAEINVAL 10036 WSAEINPROGRESS 10038 WSAENOTSOCK "
        "10048 WSAEADDRINUSE 10049 WSAEADDRNOTAVAIL 10050 WSAENETDOWN 10055 WSAENOBUFS "
        "10093 WSANOTINITIALISED 10040 -");  // the last has no line of its own
    for (std::string name; errors >> bindError >> name;) {
        SilentDevices();
        log.Clear();
        Sweep();
        char line[32];
        std::snprintf(line, sizeof line, "BIND error %x\n", bindError);
        const Lines unbound = name == "-" ? Lines{line} : Lines{line, "   " + name + '\n'};
        ExpectLog(SweepLines(unbound + ended, unbound + ended));
        EXPECT_EQ(2u, agents->Requests().size());
    }
}

}  // namespace
}  // namespace vndiscover
