// What can go wrong on the host's own side while the module works: its window, its disk, its
// adapters, its memory and sockets, and a network that floods it.
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "exports/support/lab_test.h"
#include "hardening/quick_waits.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

int64_t ProcessCpuMs() {
    FILETIME created, ended, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    const auto milliseconds = [](const FILETIME& time) {
        return ((static_cast<int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime) / 10000;
    };
    return milliseconds(kernel) + milliseconds(user);
}

// A path of the lab as a Windows program sees it.
std::string LabPath(const std::string& name) {
    const char* lab = std::getenv("VNDISCOVER_LAB");
    return std::string("Z:") + (lab ? lab : "") + "/" + name;
}

// Lets `ip` do something to the host's network and waits until it is done.
void Ip(const std::string& commands) {
    const std::string path = LabPath("ip-commands");
    std::ofstream(path + ".new") << commands << '\n';
    MoveFileA((path + ".new").c_str(), path.c_str());
    while (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) Sleep(10);
}

class HostTest : public LabTest {
  protected:
    void TwoDevicesIn(const std::string& net) { DeviceIn(net, {{SnmpText("A")}, {SnmpText("B")}}); }
    QuickWaits waits{module};
};

class Floods : public HostTest {};

TEST_F(Floods, FromManySendersFillTheTableAndEndTheSweep) {
    constexpr int kSenders = 3000;
    std::vector<Answer> answers;
    for (int i = 0; i < kSenders; ++i) {
        const std::string sender =
            "10.99." + std::to_string(1 + i / 250) + '.' + std::to_string(1 + i % 250);
        answers.push_back({SnmpText("Model " + std::to_string(i)), sender, 0, 3});
    }
    DeviceIn("neta", answers);
    Sweep();
    ASSERT_EQ(8192u + 1, window.results.size());
    for (int i = 0; i < 8192; i += 3) {  // each sender is told apart and keeps its value
        const std::string expected =
            answers[static_cast<size_t>(i / 3)].from + "=Model " + std::to_string(i / 3);
        ASSERT_EQ(expected, window.Texts()[static_cast<size_t>(i)]);
        if (i > 300) break;
    }
    EXPECT_TRUE(window.results.back().isEnd);
}

// The first datagram is the answer; what comes behind it, and at a closed socket, does no harm.
TEST_F(Floods, DoNotHoldUpADirectedRequest) {
    Devices([](const Request&) { return std::vector<Answer>{{SnmpText("A"), {}, 0, 500}}; });
    char value[260];
    int answered = 0;
    const int64_t started = NowMs();
    for (int i = 0; i < 20; ++i) {
        answered += module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr);
    }
    EXPECT_THAT(answered, AllOf(Ge(1), Le(20)));
    EXPECT_LE(NowMs() - started, 20 * 5 * 500);
}

class WindowProcedure : public HostTest {};

TEST_F(WindowProcedure, ThatBlocksLosesNoAnswer) {
    DeviceIn("neta", {{SnmpText("A")}, {SnmpText("B")}});
    window.onResult = [](const Result&) { Sleep(700); };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
}

TEST_F(WindowProcedure, ThatDestroysTheWindowEndsTheMessagesAndNothingElse) {
    TwoDevicesIn("neta");
    window.onResult = [&](const Result&) { DestroyWindow(window.Handle()); };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A"));
    ResultWindow other;
    module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, nullptr, nullptr, nullptr);
    EXPECT_THAT(other.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
}

TEST_F(WindowProcedure, MayAskDirectlyFromWithinAMessage) {
    TwoDevicesIn("neta");
    std::vector<std::string> values;
    window.onResult = [&](const Result& result) {
        char value[260] = {};
        VnResponseRecord record = {};
        module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr);
        module.GetNextSnmpRequestRaw("10.77.1.2", kSysName, &record, 0, 0, nullptr, nullptr);
        values.push_back((result.isEnd ? "end" : result.value) + ' ' + value +
                         reinterpret_cast<const char*>(record.value));
    };
    Sweep();
    EXPECT_THAT(values, ElementsAre("A AA", "B AA", "end AA"));
}

class FullDisk : public HostTest {};

TEST_F(FullDisk, CostsLinesOfTheFileButNoMessage) {
    std::vector<Answer> answers(1000, Answer{SnmpText(std::string(120, 'x'))});
    answers.push_back({SnmpText("last")});
    DeviceIn("neta", answers);
    const std::string path = LabPath("full/devices.csv");
    Sweep(std::wstring(path.begin(), path.end()).c_str());
    ASSERT_EQ(1002u, window.results.size());
    EXPECT_EQ("last", window.results[1000].value);
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    EXPECT_THAT(static_cast<int>(file.tellg()), Le(16 * 1024));
    EXPECT_NE(0, (file.close(), DeleteFileA(path.c_str()))) << "still open";
    DeviceIn("neta", {{SnmpText("A")}});
    window.results.clear();
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
}

// Each test leaves the adapters as it found them.
class VanishingAdapters : public HostTest {
  protected:
    ~VanishingAdapters() override {
        Ip("link set eth0 up\nlink set eth1 up\nroute replace default dev eth0");
    }
    void Answers() {
        Devices([](const Request& request) {
            return std::vector<Answer>{{SnmpText(request.net)}, {SnmpText(request.net)}};
        });
    }
};

TEST_F(VanishingAdapters, BeforeTheirPhaseAreLeftOut) {
    Answers();
    window.onResult = [&](const Result& result) {
        if (window.results.size() == 1 && !result.isEnd) Ip("link set eth1 down");
    };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=neta", "10.77.1.2=neta", "end"));
}

TEST_F(VanishingAdapters, WhileTheyAreListenedToCostNothingElse) {
    Answers();
    const Receives receives(module, nullptr, [](int datagrams) {
        if (datagrams == 1) Ip("link set eth0 down");
    });
    Sweep();
    ASSERT_FALSE(window.results.empty());
    EXPECT_EQ("10.77.1.2=neta", window.Texts()[0]);
    EXPECT_TRUE(window.results.back().isEnd);
    char value[260];
    EXPECT_LE(module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr), 0);
}

class Exhausted : public HostTest {};

SOCKET WSAAPI NoSocket(int, int, int, LPWSAPROTOCOL_INFOA, GROUP, DWORD) {
    WSASetLastError(WSAEMFILE);
    return INVALID_SOCKET;
}

TEST_F(Exhausted, SocketsEndEveryCallAtOnce) {
    TwoDevicesIn("neta");
    char value[260];
    uint32_t type = 0;
    {
        const ImportPatch patch(module.Handle(), "WSASocketA", NoSocket);
        const int64_t started = NowMs();
        Sweep();
        module.DiscoverSoap(window.Handle(), window.kMessage, 5000, "x", 1);
        EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
        EXPECT_EQ(-1,
                  module.GetSnmpRequestRaw("10.77.1.2", kSysName, reinterpret_cast<uint8_t*>(value),
                                           256, &type, 0, 0, nullptr, nullptr));
        EXPECT_EQ(0, module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr));
        EXPECT_LE(NowMs() - started, 5000);
    }
    EXPECT_EQ(1, module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr));
}

// Lets VirtualAlloc of the whole process fail while the object lives: its code becomes `xor
// eax,eax; ret`.
class NoPages {
  public:
    NoPages() : code_(Address()) {
        std::memcpy(before_, code_, sizeof before_);
        const uint8_t fail[] = {0x31, 0xC0, 0xC3};
        Write(fail);
    }
    ~NoPages() { Write(before_); }

  private:
    static uint8_t* Address() {
        void* found = reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleA("kernelbase.dll"), "VirtualAlloc"));
        return static_cast<uint8_t*>(found);
    }
    void Write(const uint8_t (&bytes)[3]) {
        DWORD protection;
        VirtualProtect(code_, sizeof bytes, PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(code_, bytes, sizeof bytes);
        VirtualProtect(code_, sizeof bytes, protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), code_, sizeof bytes);
    }
    uint8_t* code_;
    uint8_t before_[3];
};

TEST(ExhaustedAtLoad, MemoryLeavesAModuleThatDoesNothing) {
    std::optional<NoPages> noPages(std::in_place);
    ASSERT_EQ(nullptr, VirtualAlloc(nullptr, 4096, MEM_COMMIT, PAGE_READWRITE));
    Module module;
    noPages.reset();
    ResultWindow window;
    EXPECT_EQ(0, module.DiscoverDevices(window.Handle(), window.kMessage, 0, 0, nullptr, nullptr,
                                        nullptr));
    EXPECT_EQ(0, module.DiscoverDevicesByOIDjson(window.Handle(), window.kMessage, 0, 0, L"{}",
                                                 nullptr, nullptr, nullptr));
    EXPECT_EQ(0, module.DiscoverSnmpV3(window.Handle(), window.kMessage, 0, 0, L"user", 0, nullptr,
                                       0, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, module.DiscoverSoap(window.Handle(), window.kMessage, 0, "x", 1));
    EXPECT_EQ(0, module.StopDiscoverSnmp());
    EXPECT_EQ(0, module.StopDiscoverSoap());
    EXPECT_TRUE(window.results.empty());
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 1000)) << "what needs no manager works";
}

class ReceiveErrors : public HostTest {};

// For 3 s of a sweep each: what Windows reports after an ICMP "port unreachable", and some of its
// kin.
TEST_F(ReceiveErrors, ThatRecurNeitherEndNorSpinASweep) {
    SilentDevices();
    for (const int error : {WSAECONNRESET, WSAENETRESET, WSAENETDOWN}) {
        const Receives receives(module, [error](int) { return error; });
        std::thread stopping([&] {
            Sleep(3000);
            module.StopDiscoverSnmp();
        });
        const int64_t started = NowMs();
        const int64_t cpu = ProcessCpuMs();
        Sweep();
        const int64_t used = ProcessCpuMs() - cpu;
        stopping.join();
        EXPECT_THAT(NowMs() - started, Ge(2900)) << "error " << error << " has ended it";
        EXPECT_LE(used, 600) << "error " << error << " keeps a core busy";
        std::printf("error %d for 3 s: %d receives, %lld ms of CPU time\n", error, receives.Calls(),
                    static_cast<long long>(used));
    }
}

TEST_F(ReceiveErrors, OfADirectedRequestAreBounded) {
    DeviceIn("neta", {{SnmpText("A")}});
    const Receives receives(module, [](int) { return WSAECONNRESET; });
    char value[260];
    EXPECT_EQ(0, module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr));
    EXPECT_LE(receives.Calls(), 5);
}

}  // namespace
}  // namespace vndiscover
