// A host that loads the module, uses all of it and unloads it, again and again.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "exports/support/lab_test.h"
#include "hardening/quick_waits.h"
#include "helpers/v3_answer.h"
#include "support/win.h"

#include <psapi.h>

namespace vndiscover {
namespace {

constexpr int kWarmUps = 10;
constexpr wchar_t kJson[] = L"{\"GET\":{\".1.3.6.1.2.1.1.5.0\":\"\"}}";

// VNDISCOVER_SOAK_ROUNDS sets another count.
int Rounds() {
    const char* text = std::getenv("VNDISCOVER_SOAK_ROUNDS");
    return text ? std::atoi(text) : 200;
}

struct Usage {
    size_t handles;  // sockets are among them
    size_t sockets;
    DWORD gdiObjects;  // Wine gives 0 for these two
    DWORD userObjects;
    size_t heapBytes;  // in use, of all heaps
    size_t privateBytes;
    DWORD freeTlsIndex;  // the next one
};

// Counted one by one: not every system tells the number.
template <class IsOpen>
size_t CountHandles(IsOpen isOpen) {
    size_t count = 0;
    for (uintptr_t handle = 4; handle < 8192; handle += 4) count += isOpen(handle);
    return count;
}

bool IsHandle(uintptr_t handle) {
    DWORD flags;
    return GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0;
}

bool IsSocket(uintptr_t handle) {
    int type = 0;
    int size = sizeof type;
    return getsockopt(handle, SOL_SOCKET, SO_TYPE, reinterpret_cast<char*>(&type), &size) == 0;
}

size_t CountHeapBytes() {
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

Usage Now() {
    Usage usage = {};
    const HANDLE process = GetCurrentProcess();
    usage.handles = CountHandles(IsHandle);
    usage.sockets = CountHandles(IsSocket);
    usage.gdiObjects = GetGuiResources(process, GR_GDIOBJECTS);
    usage.userObjects = GetGuiResources(process, GR_USEROBJECTS);
    usage.heapBytes = CountHeapBytes();
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(process, &memory, sizeof memory);
    usage.privateBytes = memory.PagefileUsage;
    usage.freeTlsIndex = TlsAlloc();
    TlsFree(usage.freeTlsIndex);
    return usage;
}

// Every export once, over a device that answers all of it.
void UseEverything(const ResultWindow& window, int round) {
    const Module module;
    const QuickWaits waits(module, 8);
    const HWND host = window.Handle();
    const UINT message = window.kMessage;
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
    module.GetSnmpInformation("10.77.1.2", text, nullptr, nullptr);
    module.GetSnmpInformation("fe80::1:2", text, nullptr, nullptr);
    module.GetSnmpRequestRaw("10.77.1.2", kSysName, value, 256, &type, 0, 0, nullptr, nullptr);
    module.GetNextSnmpRequestRaw("10.77.1.2", kSysName, &record, 0, 0, nullptr, nullptr);
    module.SetSnmpRequestRaw("10.77.1.2", kSysName, value, 5, &type, 0, 0, nullptr, nullptr);
    // Hashing passwords takes most of the time, so only some rounds do it.
    const BYTE secure = round % 8 == 0;
    module.GetSnmpRequestV3("10.77.1.2", kSysName, text, 256, nullptr, 0, 0, L"user", secure,
                            L"authpass1", secure, L"privpass1",
                            round % 16 == 0 ? VN_AUTH_MD5 : VN_AUTH_SHA256, VN_PRIV_AES);
    module.GetNextSnmpRequestV3("10.77.1.2", kSysName, &record, 0, 0, L"user", 0, nullptr, 0,
                                nullptr, nullptr, nullptr);
    // Malformed: what is thrown and caught inside takes an index from the runtime.
    module.GetNextSnmpRequestV3("10.77.1.11", kSysName, &record, 0, 0, L"user", 0, nullptr, 0,
                                nullptr, nullptr, nullptr);
    module.VxPing("127.0.0.1", 200);
    module.IsIPv6Supported();
}

class Soak : public testing::Test {};

// Behind some rounds that fill the caches of the system. A leak of one object shows, and one of a
// few hundred bytes a round.
TEST_F(Soak, LeavesNothingBehind) {
    const Bytes report = [] {
        V3Datagram datagram;
        datagram.scopedTlv = ScopedPduTlv(0xA8, BindingTlv(SysNameOid(), Tlv(0x41, {5})));
        return datagram.Build();
    }();
    const Reply reply = [&](const Request& request) {
        if (request.port != 161) return std::vector<Answer>{{TextBytes("<ProbeMatches/>")}};
        if (request.local == "10.77.1.11") {
            return std::vector<Answer>{{Hex("30 05 02 01 03 30 84 ff ff ff ff")}};
        }
        const bool isV1 = request.data.size() > 4 && request.data[4] == 0;
        return std::vector<Answer>{{isV1 ? SnmpText("Model 1") : report}};
    };
    ResultWindow window;
    size_t results = 0;
    // The test itself holds nothing behind each of these.
    const auto run = [&](int rounds) {
        const Agents agents(reply);
        for (int i = 0; i < rounds; ++i) {
            UseEverything(window, i);
            results += window.results.size();
            std::vector<Result>().swap(window.results);
        }
    };
    run(kWarmUps);
    const int rounds = Rounds();
    const Usage before = Now();
    const int64_t started = NowMs();
    run(rounds / 2);
    const size_t handlesHalfway = Now().handles;
    run(rounds - rounds / 2);
    const Usage after = Now();
    std::printf(
        "%d rounds with %zu messages in %lld ms: handles %zu, %zu, %zu, sockets %zu to %zu, "
        "GDI %lu to %lu, USER %lu to %lu, heap bytes %zu to %zu, private bytes %zu to %zu\n",
        rounds, results, static_cast<long long>(NowMs() - started), before.handles, handlesHalfway,
        after.handles, before.sockets, after.sockets, before.gdiObjects, after.gdiObjects,
        before.userObjects, after.userObjects, before.heapBytes, after.heapBytes,
        before.privateBytes, after.privateBytes);
    // The system may open one of its own at any time; a leak grows in both halves.
    EXPECT_LE(after.handles, before.handles + 1);
    EXPECT_TRUE(handlesHalfway <= before.handles || after.handles <= handlesHalfway);
    EXPECT_EQ(before.sockets, after.sockets);
    EXPECT_EQ(before.gdiObjects, after.gdiObjects);
    EXPECT_EQ(before.userObjects, after.userObjects);
    EXPECT_EQ(before.freeTlsIndex, after.freeTlsIndex);
    // A sweep does not release the socket object of the one before, some bytes each.
    EXPECT_LE(after.heapBytes, before.heapBytes + static_cast<size_t>(rounds) * 4 * 32);
    EXPECT_LE(after.privateBytes, before.privateBytes + 2 * 1024 * 1024);
}

}  // namespace
}  // namespace vndiscover
