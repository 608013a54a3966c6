// A host that loads the module, uses all of it and unloads it: again and again, and with files
// beside it that no installer from a download folder may load.
#include <cstdio>
#include <cstdlib>

#include "exports/support/network_test.h"
#include "support/win.h"

#include <psapi.h>

namespace vndiscover {
namespace {

constexpr int kWarmUps = 5;  // they fill the caches of the system
constexpr wchar_t kJson[] = L"{\"GET\":{\".1.3.6.1.2.1.1.5.0\":\"\"}}";

// Counted one by one: not every system tells the number. Sockets are among them.
size_t CountHandles() {
    size_t count = 0;
    DWORD flags;
    for (uintptr_t handle = 4; handle < 8192; handle += 4) {
        count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0;
    }
    return count;
}

// In use, of all heaps.
size_t HeapBytes() {
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
    size_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
        }
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

size_t PrivateBytes() {
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return memory.PagefileUsage;
}

// Every export once, over a device that answers all of it.
void UseEverything(HWND host, UINT message, int round) {
    const Module module;
    ScriptedNetwork network(module);
    network.Devices([](const Request& request) {
        if (request.port != 161) return Answers{{TextBytes("<ProbeMatches/>")}};
        const bool isV1 = request.data[4] == 0;
        return Answers{{isV1 ? SnmpText("Model 1") : V3Report()}};
    });
    module.DiscoverDevices(host, message, 0, 0, L"devices.csv", nullptr, nullptr);
    module.DiscoverDevicesByOID(host, message, 0, 1, L".1.3.6.1.2.1.1.5.0", nullptr, nullptr,
                                nullptr);
    module.DiscoverDevicesByOIDjson(host, message, 0, 0, kJson, nullptr, nullptr, nullptr);
    module.DiscoverSnmpV3(host, message, 0, 0, L"user", 0, nullptr, 0, nullptr, nullptr, nullptr);
    module.DiscoverSoap(host, message, 0, "probe", 5);
    char text[260];
    uint8_t value[256] = {};
    uint32_t type = VN_TYPE_OCTET_STRING;
    VnResponseRecord record = {};
    const char* const device = "10.77.1.2";
    module.GetSnmpInformation(device, text, nullptr, nullptr);
    module.GetSnmpInformation("fe80::1:2", text, nullptr, nullptr);
    module.GetSnmpRequestRaw(device, kSysName, value, 256, &type, 0, 0, nullptr, nullptr);
    module.GetNextSnmpRequestRaw(device, kSysName, &record, 0, 0, nullptr, nullptr);
    module.SetSnmpRequestRaw(device, kSysName, value, 5, &type, 0, 0, nullptr, nullptr);
    // Hashing passwords takes most of the time, so only some rounds do it. 8 is with bcrypt.dll.
    const BYTE secure = round % 8 == 0;
    const wchar_t* const protocol = round % 16 == 0 ? VN_AUTH_MD5 : VN_AUTH_SHA256;
    module.GetSnmpRequestV3(device, kSysName, text, 256, nullptr, 0, 0, L"user", secure,
                            L"authpass1", secure, L"privpass1", protocol, VN_PRIV_AES);
    module.GetNextSnmpRequestV3(device, kSysName, &record, 0, 0, L"user", 0, nullptr, 0, nullptr,
                                nullptr, nullptr);
    module.VxPing("127.0.0.1", 200);
    module.IsIPv6Supported();
}

// Files under the names of system libraries, in the folder of the program and in the current one.
class Decoys : public testing::Test {
  protected:
    Decoys() {
        char program[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        const std::string folder(program, std::string(program).rfind('\\') + 1);
        for (const char* name : {"ICMP.DLL", "IPHLPAPI.DLL", "Ws2_32.dll", "bcrypt.dll"}) {
            for (const std::string& path : {folder + name, std::string(".\\") + name}) {
                CopyFileA((folder + "decoy.dll").c_str(), path.c_str(), FALSE);
                files_.push_back(path);
            }
        }
    }
    ~Decoys() override {
        for (const std::string& file : files_) DeleteFileA(file.c_str());
    }
    Lines Loaded() const {
        Lines loaded;
        for (const std::string& file : files_) {
            if (DeleteFileA((file + ".loaded").c_str())) loaded.push_back(file);
        }
        return loaded;
    }

  private:
    Lines files_;
};

TEST_F(Decoys, AreNeverLoaded) {
    for (const char* name : {"ICMP.DLL", "IPHLPAPI.DLL", "bcrypt.dll"}) {
        EXPECT_EQ(nullptr, GetModuleHandleA(name)) << "what is loaded is not searched for";
    }
    UseEverything(nullptr, 0, 8);
    EXPECT_THAT(Loaded(), IsEmpty());
    // That they would have been: the search order that the module avoids does find them.
    const HMODULE found = LoadLibraryA("ICMP.DLL");
    EXPECT_THAT(Loaded(), SizeIs(1));
    FreeLibrary(found);
}

// VNDISCOVER_SOAK_ROUNDS sets another count.
TEST(Soak, LeavesNothingBehind) {
    const char* const setting = std::getenv("VNDISCOVER_SOAK_ROUNDS");
    const int rounds = setting ? std::atoi(setting) : 40;
    ResultWindow window;
    size_t results = 0;
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            UseEverything(window.Handle(), window.kMessage, i);
            results += window.results.size();
            std::vector<Result>().swap(window.results);
        }
    };
    run(kWarmUps);
    const size_t handles = CountHandles(), heapBytes = HeapBytes(), privateBytes = PrivateBytes();
    run(rounds / 2);
    const size_t halfway = CountHandles();
    run(rounds - rounds / 2);
    std::printf(
        "%d rounds with %zu messages: handles %zu, %zu, %zu, heap bytes %zu to %zu, "
        "private bytes %zu to %zu\n",
        rounds, results, handles, halfway, CountHandles(), heapBytes, HeapBytes(), privateBytes,
        PrivateBytes());
    // The system may open one of its own at any time; a leak grows in both halves.
    EXPECT_LE(CountHandles(), handles + 1);
    EXPECT_TRUE(halfway <= handles || CountHandles() <= halfway);
    // A sweep does not release the socket object of the one before, some bytes each.
    EXPECT_LE(HeapBytes(), heapBytes + static_cast<size_t>(rounds) * 48);
    EXPECT_LE(PrivateBytes(), privateBytes + 1024 * 1024);
}

}  // namespace
}  // namespace vndiscover
