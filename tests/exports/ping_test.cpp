// Reachability: real echoes of the test network, and scripted ones where the system has none.
#include "exports/support/logged_test.h"

#include "support/win.h"

#include <iphlpapi.h>

#include <icmpapi.h>

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;

class PingTest : public testing::Test {
  protected:
    Module module;
};

TEST_F(PingTest, AnswersForAHostThatIsThere) {
    EXPECT_EQ(1, module.VxPing("10.77.1.2", 2000));
    EXPECT_EQ(1, module.VxPing("10.77.2.2", 2000)) << "on the other adapter";
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 2000));
}

TEST_F(PingTest, WaitsAsLongAsTheHostAskedFor) {
    const int64_t started = NowMs();
    EXPECT_EQ(0, module.VxPing("10.77.1.99", 1000));
    EXPECT_THAT(NowMs() - started, AllOf(Ge(900), Le(2500)));
}

TEST_F(PingTest, RefusesWhatNamesNoHost) {
    for (const char* address : {"", " ", "no such host", "10.77.1.2.3.4", "fe80::", "::zz"}) {
        EXPECT_EQ(0, module.VxPing(address, 300)) << address;
    }
    EXPECT_EQ(0, module.VxPing(nullptr, 300));
}

TEST_F(PingTest, TellsThatThereIsAnIPv6Stack) {
    EXPECT_EQ(1, module.IsIPv6Supported());
    EXPECT_EQ(1, module.IsIPv6Supported());
}

// Stands in front of the functions that the module looks up in the two libraries.
struct EchoCall {
    std::string function;
    std::string target;
    bool sourceIsUnspecified;  // an all-zero IPv6 address
    Bytes request;
    int timeToLive;  // -1: no options
    int optionBytes;
    DWORD replyBytes;
    DWORD timeout;
};

struct Script {
    std::string missing;  // a function that the system lacks
    HANDLE handle = reinterpret_cast<HANDLE>(0x1234);
    DWORD replies = 1;
    ULONG status = IP_SUCCESS;
    std::vector<EchoCall> calls;
    std::vector<HANDLE> closed;
    std::string libraryOfV6;
};
Script* g_script;

std::string LibraryName(HMODULE library) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(library, path, MAX_PATH);
    std::string name = path;
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return name;
}

HANDLE WINAPI ScriptedCreate() { return g_script->handle; }

BOOL WINAPI ScriptedClose(HANDLE handle) {
    g_script->closed.push_back(handle);
    return TRUE;
}

DWORD WINAPI ScriptedEchoV4(HANDLE, IPAddr target, void* request, WORD size,
                            IP_OPTION_INFORMATION* options, void* reply, DWORD replySize,
                            DWORD timeout) {
    const auto* data = static_cast<const uint8_t*>(request);
    in_addr address;
    address.s_addr = target;
    g_script->calls.push_back({"IcmpSendEcho", inet_ntoa(address), false, Bytes(data, data + size),
                               options ? options->Ttl : -1, 0, replySize, timeout});
    static_cast<ICMP_ECHO_REPLY*>(reply)->Status = g_script->status;
    return g_script->replies;
}

DWORD WINAPI ScriptedEchoV6(HANDLE, HANDLE event, FARPROC callback, void* context,
                            sockaddr_in6* source, sockaddr_in6* target, void* request, WORD size,
                            IP_OPTION_INFORMATION* options, void* reply, DWORD replySize,
                            DWORD timeout) {
    EXPECT_EQ(nullptr, event);
    EXPECT_EQ(nullptr, callback);
    EXPECT_EQ(nullptr, context);
    EXPECT_EQ(AF_INET6, target->sin6_family);
    char text[64] = {};
    inet_ntop(AF_INET6, &target->sin6_addr, text, sizeof text);
    sockaddr_in6 unspecified = {};
    unspecified.sin6_family = AF_INET6;
    const auto* data = static_cast<const uint8_t*>(request);
    g_script->calls.push_back(
        {"Icmp6SendEcho2", text, std::memcmp(source, &unspecified, sizeof unspecified) == 0,
         Bytes(data, data + size), options->Ttl, options->OptionsSize, replySize, timeout});
    std::memset(reply, 0xFF, replySize);  // a status that is no success
    return g_script->replies;
}

FARPROC WINAPI ScriptedLookup(HMODULE library, const char* name) {
    const std::string function = name;
    if (function == g_script->missing) return nullptr;
    const auto as = [](auto scripted) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(scripted));
    };
    if (function == "IcmpCreateFile") return as(ScriptedCreate);
    if (function == "IcmpCloseHandle") return as(ScriptedClose);
    if (function == "IcmpSendEcho") return as(ScriptedEchoV4);
    if (function == "Icmp6CreateFile") return as(ScriptedCreate);
    if (function == "Icmp6SendEcho2") {
        g_script->libraryOfV6 = LibraryName(library);
        return as(ScriptedEchoV6);
    }
    return GetProcAddress(library, name);
}

// "printer6" and "printer4" resolve to an address of their kind; the rest as ever.
int WSAAPI ResolvedByTest(const char* host, const char* service, const addrinfo* hints,
                          addrinfo** list) {
    const std::string name = host ? host : "";
    if (name == "printer6") host = "fe80::1:2";
    if (name == "printer4") host = "10.77.1.2";
    return getaddrinfo(host, service, hints, list);
}

class ScriptedPing : public PingTest {
  protected:
    ScriptedPing() { g_script = &script; }
    std::vector<std::string> Asked() const {
        std::vector<std::string> asked;
        for (const EchoCall& call : script.calls)
            asked.push_back(call.function + ' ' + call.target);
        return asked;
    }

    Script script;
    ImportPatch lookup{module.Handle(), "GetProcAddress", ScriptedLookup};
    ImportPatch resolver{module.Handle(), "getaddrinfo", ResolvedByTest};
};

TEST_F(ScriptedPing, AsksAnIPv6HostWithWhatTheSystemWouldChoose) {
    EXPECT_EQ(1, module.VxPing("fe80::1:2", 1234));
    ASSERT_THAT(Asked(), ElementsAre("Icmp6SendEcho2 fe80::1:2"));
    const EchoCall& call = script.calls[0];
    EXPECT_TRUE(call.sourceIsUnspecified);
    EXPECT_THAT(call.request, IsEmpty());
    EXPECT_EQ(255, call.timeToLive);
    EXPECT_EQ(0, call.optionBytes);
    EXPECT_EQ(1072u, call.replyBytes);
    EXPECT_EQ(1234u, call.timeout);
    EXPECT_THAT(script.closed, ElementsAre(script.handle));
    EXPECT_EQ("c:\\windows\\system32\\iphlpapi.dll", script.libraryOfV6)
        << "from the system's folder, not from one beside the host";
}

TEST_F(ScriptedPing, CountsTheRepliesOfAnIPv6HostAndReadsNone) {
    EXPECT_EQ(1, module.VxPing("fe80::1:2", 300)) << "the reply's status is an error";
    script.replies = 0;
    EXPECT_EQ(0, module.VxPing("fe80::1:2", 300));
    EXPECT_THAT(script.closed, ElementsAre(script.handle, script.handle));
}

TEST_F(ScriptedPing, TakesTheIPv6WayForNamesAndTheBroadcastAddress) {
    EXPECT_EQ(1, module.VxPing("printer6", 300));
    EXPECT_THAT(Asked(), ElementsAre("Icmp6SendEcho2 fe80::1:2"));
    script.calls.clear();
    EXPECT_EQ(0, module.VxPing("printer4", 300)) << "it has no IPv6 address";
    EXPECT_EQ(0, module.VxPing("255.255.255.255", 300));
    EXPECT_EQ(0, module.VxPing("no such host", 300));
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(ScriptedPing, NeedsEveryFunctionAndAHandle) {
    for (const char* function : {"IcmpCreateFile", "IcmpCloseHandle", "IcmpSendEcho",
                                 "Icmp6CreateFile", "Icmp6SendEcho2"}) {
        script.missing = function;
        EXPECT_EQ(0, module.VxPing("fe80::1:2", 300)) << function;
    }
    script.missing = "";
    script.handle = INVALID_HANDLE_VALUE;
    EXPECT_EQ(0, module.VxPing("fe80::1:2", 300));
    EXPECT_EQ(0, module.VxPing("10.77.1.2", 300));
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(script.closed, IsEmpty());
}

TEST_F(ScriptedPing, AsksAnIPv4HostWithEightBytesAndReadsTheStatus) {
    EXPECT_EQ(1, module.VxPing("10.77.1.2", 1234));
    ASSERT_THAT(Asked(), ElementsAre("IcmpSendEcho 10.77.1.2"));
    EXPECT_EQ(TextBytes("Data Buf"), script.calls[0].request);
    EXPECT_EQ(-1, script.calls[0].timeToLive) << "no options";
    EXPECT_EQ(48u, script.calls[0].replyBytes);
    EXPECT_EQ(1234u, script.calls[0].timeout);
    script.status = IP_DEST_HOST_UNREACHABLE;
    EXPECT_EQ(0, module.VxPing("10.77.1.2", 300)) << "a router's answer";
    script.status = IP_SUCCESS;
    script.replies = 0;
    EXPECT_EQ(0, module.VxPing("10.77.1.2", 300));
    EXPECT_THAT(script.closed, ElementsAre(script.handle, script.handle, script.handle));
}

// The one line of a ping goes to the wide log.
class PingLog : public DebugSwitchOn, public PingTest {
  protected:
    LogCapture log;
};

TEST_F(PingLog, IsOneLineForIPv4) {
    module.VxPing("10.77.1.2", 2000);
    EXPECT_THAT(log.Lines(), ElementsAre("IcmpSendEcho dwRetVal = 1\n"));
    module.VxPing("fe80::1:2", 300);
    EXPECT_THAT(log.Lines(), testing::SizeIs(1));
}

TEST_F(PingLog, OfTheStackIsTheSocketsOwn) {
    module.IsIPv6Supported();
    EXPECT_THAT(log.Lines(), ElementsAre("SCKRAW::SCKRAW()\n", "SCKRAW::~SCKRAW() [-1]\n"));
}

}  // namespace
}  // namespace vndiscover
