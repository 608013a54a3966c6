// Faults on the host's side while the module works: of its window, disk, memory and sockets; files
// beside it that an installer in a download folder must not load; and what leaks when it loads,
// uses and unloads the module repeatedly.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <thread>

#include "exports/support/v3_test.h"
#include "support/win.h"

#include <psapi.h>

namespace vndiscover {
namespace {

constexpr char kDevice[] = "10.77.1.2";
constexpr char kMalformed[] = "10.77.1.11";  // answers with malformed messages

class Host : public NetworkTest {
  protected:
    Host() : NetworkTest(false) { DeviceIn("neta", {{SnmpText("A")}, {SnmpText("B")}}); }
};

TEST_F(Host, DestroyedWindowOnlyEndsTheMessages) {
    window.onResult = [&](const Result&) { DestroyWindow(window.Handle()); };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A"));
    ResultWindow other;
    module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, nullptr, nullptr, nullptr);
    EXPECT_THAT(other.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
}

TEST_F(Host, FullDiskLosesNoMessages) {
    std::ofstream full("Z:\\dev\\full");
    EXPECT_TRUE(full.is_open() && !(full << std::flush << 'x' << std::flush));
    const std::string text(120, 'x');
    DeviceIn("neta", Repeated(1000, {SnmpText(text)}));
    Sweep(L"Z:\\dev\\full");
    EXPECT_THAT(window.results, SizeIs(1001));
    EXPECT_EQ("10.77.1.2=" + text, window.Texts()[999]);
    window.results.clear();
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(L"devices.csv");
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n", ReadFile("devices.csv"));
}

TEST_F(Host, ExhaustedSocketsEndEveryCallAtOnce) {
    char value[260];
    uint32_t type = 0;
    {
        const ImportPatch patch(module.Handle(), "WSASocketA",
                                [](int, int, int, LPWSAPROTOCOL_INFOA, GROUP, DWORD) {
                                    WSASetLastError(WSAEMFILE);
                                    return INVALID_SOCKET;
                                });
        Sweep();
        module.DiscoverSoap(window.Handle(), window.kMessage, 5000, "x", 1);
        EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
        EXPECT_EQ(-1, module.GetSnmpRequestRaw(kDevice, kSysName, reinterpret_cast<uint8_t*>(value),
                                               256, &type, 0, 0, nullptr, nullptr));
        EXPECT_EQ(0, module.GetSnmpInformation(kDevice, value, nullptr, nullptr));
        EXPECT_EQ(0u, network.NowMs());
    }
    EXPECT_EQ(1, module.GetSnmpInformation(kDevice, value, nullptr, nullptr));
}

// Makes VirtualAlloc fail in the whole process while the object exists.
class NoPages {
  public:
    NoPages() {
        DWORD before;
        VirtualProtect(code_, sizeof before_, PAGE_EXECUTE_READWRITE, &before);
        std::memcpy(before_, code_, sizeof before_);
        std::memcpy(code_, "\x31\xC0\xC3", sizeof before_);  // xor eax,eax; ret
    }
    ~NoPages() { std::memcpy(code_, before_, sizeof before_); }

  private:
    void* const code_ =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernelbase.dll"), "VirtualAlloc"));
    uint8_t before_[3];
};

// Throwing at it uses a thread-local storage index and memory of the runtime.
const Answers kMalformedAnswer = {{Hex("30 05 02 01 03 30 84 ff ff ff ff")}};

// Calls every export once, with a device that answers all of them.
void UseEverything(const Module& module, HWND host, UINT message, int round) {
    ScriptedNetwork network(module);
    network.Devices([](const Request& request) {
        if (request.port != 161) return Answers{{TextBytes("<ProbeMatches/>")}};
        if (request.local == kMalformed) return kMalformedAnswer;
        const bool isV1 = request.data[4] == 0;
        return Answers{{isV1 ? SnmpText("Model 1") : V3Report()}};
    });
    module.DiscoverDevices(host, message, 0, 0, L"devices.csv", nullptr, nullptr);
    module.DiscoverDevicesByOID(host, message, 0, 1, L".1.3.6.1.2.1.1.5.0", nullptr, nullptr,
                                nullptr);
    module.DiscoverDevicesByOIDjson(host, message, 0, 0, L"{\"GET\":{\".1.3.6.1.2.1.1.5.0\":\"\"}}",
                                    nullptr, nullptr, nullptr);
    V3User user;
    user.Ask(
        [&](auto... security) { return module.DiscoverSnmpV3(host, message, 0, 0, security...); });
    module.DiscoverSoap(host, message, 0, "probe", 5);
    module.StopDiscoverSnmp();
    module.StopDiscoverSoap();
    char text[260];
    uint8_t value[256] = {};
    uint32_t type = VN_TYPE_OCTET_STRING;
    VnResponseRecord record = {};
    module.GetSnmpInformation(kDevice, text, nullptr, nullptr);
    module.GetSnmpInformation("fe80::1:2", text, nullptr, nullptr);
    module.GetSnmpRequestRaw(kDevice, kSysName, value, 256, &type, 0, 0, nullptr, nullptr);
    module.GetNextSnmpRequestRaw(kDevice, kSysName, &record, 0, 0, nullptr, nullptr);
    module.SetSnmpRequestRaw(kDevice, kSysName, value, 5, &type, 0, 0, nullptr, nullptr);
    // Hashing passwords takes most of the time, so only some rounds do it. Round 8 uses bcrypt.dll,
    // round 16 rsaenh.dll.
    user.useAuth = user.usePriv = round % 8 == 0;
    user.authProtocol = round % 16 == 0 ? VN_AUTH_MD5 : VN_AUTH_SHA256;
    user.Ask([&](auto... security) {
        module.GetSnmpRequestV3(kDevice, kSysName, text, 256, nullptr, 0, 0, security...);
        module.GetNextSnmpRequestV3(kDevice, kSysName, &record, 0, 0, security...);
        return module.GetNextSnmpRequestV3(kMalformed, kSysName, &record, 0, 0, security...);
    });
    module.VxPing("127.0.0.1", 200);
    module.IsIPv6Supported();
}

TEST(Load, ModuleLoadedWithoutMemoryDoesNothing) {
    std::optional<NoPages> noPages(std::in_place);
    ASSERT_EQ(nullptr, VirtualAlloc(nullptr, 4096, MEM_COMMIT, PAGE_READWRITE));
    const Module module;
    noPages.reset();
    ResultWindow window;
    UseEverything(module, window.Handle(), window.kMessage, 1);
    EXPECT_TRUE(window.results.empty());
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 1000)) << "what needs no manager works";
}

// Files with the names of system libraries, in the program's folder and in the current one.
TEST(Load, DecoysAreNotLoaded) {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    const std::string folder(program, std::string(program).rfind('\\') + 1);
    Lines files;
    for (const char* name :
         {"ICMP.DLL", "IPHLPAPI.DLL", "Ws2_32.dll", "bcrypt.dll", "rsaenh.dll"}) {
        for (const std::string& path : {folder + name, std::string(".\\") + name}) {
            EXPECT_NE(0, CopyFileA((folder + "decoy.dll").c_str(), path.c_str(), FALSE)) << path;
            files.push_back(path);
        }
        const bool isSearched = GetModuleHandleA(name) == nullptr;
        EXPECT_EQ(std::string("Ws2_32.dll") != name, isSearched) << "what is loaded is not";
    }
    const auto loaded = [&] {
        return std::count_if(files.begin(), files.end(), [](const std::string& file) {
            return DeleteFileA((file + ".loaded").c_str()) != 0;
        });
    };
    for (const int round : {8, 16}) UseEverything(Module(), nullptr, 0, round);
    EXPECT_EQ(0, loaded());
    // The search order that the module avoids does find them.
    const HMODULE found = LoadLibraryA("ICMP.DLL");
    EXPECT_EQ(1, loaded());
    FreeLibrary(found);
    for (const std::string& file : files) DeleteFileA(file.c_str());
}

struct Usage {
    size_t handles = 0, heapBytes = 0, privateBytes;
    DWORD freeTlsIndex = TlsAlloc();  // the next one

    Usage() {
        TlsFree(freeTlsIndex);
        // Counted one by one, since not every system gives the number. Includes sockets.
        DWORD flags;
        for (uintptr_t handle = 4; handle < 8192; handle += 4) {
            handles += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0;
        }
        HANDLE heaps[64];
        const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
        for (DWORD i = 0; i < count; ++i) {
            PROCESS_HEAP_ENTRY entry = {};
            while (HeapWalk(heaps[i], &entry)) {
                if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) heapBytes += entry.cbData;
            }
        }
        PROCESS_MEMORY_COUNTERS memory = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        privateBytes = memory.PagefileUsage;
    }
};

// Built once and run under both, the same programs leave nothing under Wine 8.
bool HeapGrowsByItself() {
    const auto version = reinterpret_cast<const char* (*)()>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll"), "wine_get_version")));
    return version && std::atoi(version()) >= 10;
}
constexpr char kHeapGrows[] = "the heap of Wine 10 grows by itself";

// A thread's exception state is kept until the thread ends.
TEST(Load, EndedThreadsLeakNothing) {
    const Module module;
    ScriptedNetwork network(module);
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            network.Devices([](const Request&) { return kMalformedAnswer; });
            std::thread([&] {
                VnResponseRecord record = {};
                V3User().Ask([&](auto... security) {
                    return module.GetNextSnmpRequestV3(kMalformed, kSysName, &record, 0, 0,
                                                       security...);
                });
            }).join();
        }
        return Usage().heapBytes;
    };
    const size_t before = run(5), after = run(200);
    if (HeapGrowsByItself()) GTEST_SKIP() << kHeapGrows;
    EXPECT_LT(after, before + 200 * 8) << "16 bytes for each are kept";
}

// As for a thread-local storage index of 64 or more, when memory is exhausted.
TEST(Load, ExceptionsLeakNothingIfTheirStateCannotBeKept) {
    const Module module;
    ScriptedNetwork network(module);
    const ImportPatch patch(module.Handle(), "TlsSetValue", [](DWORD, void*) { return FALSE; });
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            network.Devices([](const Request&) { return kMalformedAnswer; });
            VnResponseRecord record = {};
            V3User().Ask([&](auto... security) {
                return module.GetNextSnmpRequestV3(kMalformed, kSysName, &record, 0, 0,
                                                   security...);
            });
        }
        return Usage().heapBytes;
    };
    const size_t before = run(5), after = run(200);
    if (HeapGrowsByItself()) GTEST_SKIP() << kHeapGrows;
    EXPECT_LT(after, before + 200 * 8) << "16 bytes for each exception are kept";
}

// VNDISCOVER_SOAK_ROUNDS sets another number of rounds.
TEST(Load, RepeatedLoadingAndUnloadingLeaksNothing) {
    const char* const setting = std::getenv("VNDISCOVER_SOAK_ROUNDS");
    const int rounds = setting ? std::atoi(setting) : 40;
    const RegistrySwitches key;  // to be opened, with every switch off
    ResultWindow window;
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            UseEverything(Module(), window.Handle(), window.kMessage, i);
            std::vector<Result>().swap(window.results);
        }
        return Usage();
    };
    run(5);  // fills the system's caches
    const Usage before;
    const Usage halfway = run(rounds / 2), after = run(rounds - rounds / 2);
    std::printf("%d rounds: handles %zu, %zu, %zu, heap bytes %zu to %zu, private %zu to %zu\n",
                rounds, before.handles, halfway.handles, after.handles, before.heapBytes,
                after.heapBytes, before.privateBytes, after.privateBytes);
    // The system may open one at any time, but a leak grows in both halves.
    EXPECT_LE(after.handles, before.handles + 1);
    EXPECT_TRUE(halfway.handles <= before.handles || after.handles <= halfway.handles);
    EXPECT_EQ(before.freeTlsIndex, after.freeTlsIndex);
    EXPECT_LE(after.privateBytes, before.privateBytes + 1024 * 1024);
    if (HeapGrowsByItself()) GTEST_SKIP() << kHeapGrows;
    // Each sweep leaks the previous one's socket object, a few bytes.
    EXPECT_LE(after.heapBytes, before.heapBytes + static_cast<size_t>(rounds) * 48);
}

}  // namespace
}  // namespace vndiscover
