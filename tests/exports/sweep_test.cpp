// The requests of a sweep and their log lines; how it affects the next one, one that a host starts
// within it, and the process.
#include <fcntl.h>
#include <stdlib.h>

#include <sstream>
#include <thread>

#include "exports/support/v3_test.h"

namespace vndiscover {
namespace {

constexpr UINT kMessage = ResultWindow::kMessage;

class SweepRequest : public V3Test {
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
    // RFC 1157: version 0, "sesame", GetRequest with request-id 1, 1.3.6.1.4.1.5963.43.5.1.1.1.1,
    // NULL.
    ExpectAsked(
        Hex("30 2B 02 01 00 04 06 73 65 73 61 6D 65 A0 1E 02 01 01 02 01 00 02 01 00"
            "30 13 30 11 06 0D 2B 06 01 04 01 AE 4B 2B 05 01 01 01 01 05 00"));
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
    // JSON requests have 2,047 bytes at most. A truncated OID could name another variable.
    const auto padded = [](size_t size) { return L"{\"a\": 1}" + std::wstring(size - 8, L' '); };
    const auto naming = [](size_t size) {  // kSysName in this many characters
        return L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.5." + std::wstring(size - 17, L'0') + L"\"}";
    };
    for (const size_t size : {2048, 100000}) SweepFor(padded(size));
    for (const size_t size : {260, 1000}) {
        SweepFor(naming(size));
        SweepV3(window, naming(size).c_str());
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(Lines(2 + 2 + 1 + 2 + 2, "end"), window.Texts());
    SweepFor(padded(2047));
    SweepFor(naming(259));
    SweepV3(window, naming(259).c_str());
    EXPECT_THAT(Sent(), AllOf(SizeIs(6), Contains(SnmpGet(kSysName)).Times(2)));
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
            EXPECT_EQ(1000, ScriptedNetwork::Option(request.socket, option));
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

constexpr wchar_t kPath[] = L"devices.csv";
constexpr char kTwoDevices[] = "\"10.77.1.2\",\"A\"\r\n\"10.77.1.2\",\"B\"\r\n";

std::string TakeFile(const char* path) {
    const std::string content = ReadFile(path);
    std::remove(path);
    return content;
}

class SweepState : public V3Test {
  protected:
    SweepState() {
        Devices([](const Request& request) {
            if (request.net != "neta") return Answers();
            if (request.data == V3Discovery()) return Answers{{V3Report()}};
            if (request.data == V3Request(kDefaultOid)) return Answers{{V3Text("V3")}};
            return Answers{{SnmpText("A")}, {SnmpText("B")}};
        });
    }
    ResultWindow other;
};

TEST_F(SweepState, CallsWithinAMessageDoNotDisturbTheSweep) {
    window.onResult = [&](const Result& result) {
        char value[VN_INFORMATION_SIZE] = {};
        VnResponseRecord record = {};
        module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr);
        module.GetNextSnmpRequestRaw("10.77.1.2", kSysName, &record, 0, 0, nullptr, nullptr);
        EXPECT_EQ("AA", value + std::string(reinterpret_cast<char*>(record.value)));
        if (result.isEnd) return;
        module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, kPath, nullptr, nullptr);
        module.DiscoverSnmp(other.Handle(), other.kMessage, 0, 0, nullptr, nullptr);
        SweepV3(other);
    };
    Sweep(kPath);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
    EXPECT_EQ(kTwoDevices, TakeFile("devices.csv"));
    EXPECT_THAT(Requests(), SizeIs(2 + 3 * 2)) << "one of each adapter, and the directed ones";
    window.results.clear();
    SweepV3(window);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=V3"));
    EXPECT_THAT(other.results, IsEmpty());
}

TEST_F(SweepState, NextSweepMayStartWithinTheFinalMessage) {
    window.onResult = [&](const Result& result) {
        if (result.isEnd) module.DiscoverSnmp(other.Handle(), other.kMessage, 0, 0, "next", "");
    };
    Sweep(kPath);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
    EXPECT_EQ(window.Texts(), other.Texts());
    EXPECT_EQ(kTwoDevices, TakeFile("devices.csv")) << "of the first alone";
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) return;
        SilentDevices();
        module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, kPath, nullptr, nullptr);
    };
    Sweep(kPath);
    EXPECT_EQ("", TakeFile("devices.csv")) << "of the next one, which found nothing";
}

TEST_F(SweepState, NextSweepDoesNotInheritAnEndedThreadsFile) {
    std::thread([&] {
        ResultWindow own;
        own.onResult = [](const Result&) { ExitThread(0); };
        module.DiscoverDevices(own.Handle(), own.kMessage, 0, 0, kPath, nullptr, nullptr);
    }).join();
    Sweep();
    EXPECT_EQ("", TakeFile("devices.csv"));
}

int g_allocationsLeft;

TEST_F(SweepState, NextSweepMayStartWhicheverAllocationFails) {
    for (const bool isV1 : {true, false}) {
        const auto sweep = [&] {
            isV1 ? SweepFor(L"{\"1.3.6.1.2.1.1.6.0\":\"\"}", L"too long to be kept in place")
                 : static_cast<void>(SweepV3(window));
        };
        sweep();
        const Lines whole = window.Texts();
        int failed = 0;
        for (g_allocationsLeft = -1; g_allocationsLeft < 0; ++failed) {
            window.results.clear();
            g_allocationsLeft = failed;
            const ImportPatch patch(module.Handle(), "malloc", [](size_t size) {
                return g_allocationsLeft-- == 0 ? nullptr : std::malloc(size);
            });
            sweep();
            if (isV1) {
                ASSERT_THAT(window.Texts(), Contains("end")) << "allocation " << failed;
            }
        }
        EXPECT_GT(failed, 10);
        EXPECT_EQ(whole, window.Texts()) << "in the end none has failed";
        window.results.clear();
    }
}

// Even if the host has made binary its runtime's default.
TEST_F(SweepState, FilesAreWrittenInTextMode) {
    const int before = _fmode;
    _fmode = _O_BINARY;
    switches.SetOn("Dbg2Log");
    Reload();
    Sweep(kPath);
    _fmode = before;
    switches.Remove("Dbg2Log");
    Reload();
    EXPECT_EQ(kTwoDevices, TakeFile("devices.csv"));
    const std::string written = TakeFile("VxAdmSvc.log");
    EXPECT_THAT(written, HasSubstr("SNMP::Discover\r\n"));
    EXPECT_THAT(written, HasSubstr("SNMP::Discover - ended\r\n"));
}

TEST(ProcessEnd, LeavesAManagerAloneWhoseSweepWasKilled) {
    const RegistrySwitches switches("Debug");
    const Module module;
    ScriptedNetwork network(module);
    network.Devices([](const Request&) { return Answers{{SnmpText("A")}}; });
    const auto notify = reinterpret_cast<BOOL(WINAPI*)(HINSTANCE, DWORD, const void*)>(
        reinterpret_cast<void*>(GetProcAddress(module.Handle(), "DllMain")));
    const auto notified = [&](DWORD reason, const void* reserved) {
        LogCapture log;
        notify(module.Handle(), reason, reserved);
        return log.Text();
    };
    const auto killedIn = [&](auto sweep) {
        std::thread([&] {
            ResultWindow window;
            window.onResult = [](const Result&) { ExitThread(0); };
            sweep(window.Handle());
        }).join();
        const std::string atEnd = notified(DLL_PROCESS_DETACH, "not null");
        notified(DLL_PROCESS_ATTACH, nullptr);  // for the next one, and for unloading
        return atEnd;
    };
    EXPECT_EQ("VxSoapMgr::~VxSoapMgr()\n", killedIn([&](HWND window) {
                  module.DiscoverSnmp(window, kMessage, 0, 0, nullptr, nullptr);
              }));
    EXPECT_EQ("VxSnmpMgr::~VxSnmpMgr()\n",
              killedIn([&](HWND window) { module.DiscoverSoap(window, kMessage, 0, "probe", 5); }));
}

int g_references;

// The module is unloaded under the loader lock, where the last clean-up could wait for ever.
TEST(WinSockReferences, OneRemainsWhenTheModuleIsUnloadedAfterASweep) {
    for (int sweep = 0; sweep < 3; ++sweep) {
        g_references = 0;
        {
            const Module module;
            // Not released: the test is what unloading does.
            new ImportPatch(module.Handle(), "WSAStartup", [](WORD version, WSADATA* data) {
                ++g_references;
                return WSAStartup(version, data);
            });
            new ImportPatch(module.Handle(), "WSACleanup", [] {
                --g_references;
                return WSACleanup();
            });
            const ScriptedNetwork network(module);
            if (sweep == 0) module.DiscoverSnmp(nullptr, 0, 0, 0, nullptr, nullptr);
            if (sweep == 1)
                V3User().Ask([&](auto... security) {
                    return module.DiscoverSnmpV3(nullptr, 0, 0, 0, security...);
                });
            if (sweep == 2) module.DiscoverSoap(nullptr, 0, 0, "probe", 5);
        }
        EXPECT_EQ(1, g_references) << sweep;
    }
}

}  // namespace
}  // namespace vndiscover
