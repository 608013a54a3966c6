// Loading and unloading. DllMain runs under the loader lock, even after a sweep has used sockets.
#include "check/windows_headers.h"

#include <psapi.h>

#include <thread>

#include "check/rows.h"

namespace check {
namespace {

constexpr int kRounds = 2000;
constexpr DWORD kUnloadLimitMs = 20000;
constexpr uintptr_t kHandlesEnd = 0x10000;
constexpr int kHandlesOfItsOwn = 16;  // opened once and kept by the system
constexpr SIZE_T kMemoryOfItsOwn = 4u << 20;

// Asks for each: Wine's GetProcessHandleCount always says 0.
int Handles() {
    int count = 0;
    DWORD flags;
    for (uintptr_t handle = 4; handle < kHandlesEnd; handle += 4) {
        if (GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags)) ++count;
    }
    return count;
}

SIZE_T Memory() {
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

std::string SweepAndUnload(Module& module) {
    if (!module.HideAdapters()) return "its adapters cannot be hidden";
    ResultWindow window;
    module.DiscoverSoap(window.Handle(), ResultWindow::kMessage, 1000, "<Probe/>", 8);
    return module.Unload() ? "returns, the module is gone" : "returns, the module stays";
}

// On a separate thread, since it may never return.
std::string UnloadWithinLimit(Module& module) {
    struct Shared {
        std::string text;
        HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    };
    auto* shared = new Shared;  // not freed here: the thread uses it if it hangs
    std::thread([shared, &module] {
        shared->text = SweepAndUnload(module);
        SetEvent(shared->done);
    }).detach();
    if (WaitForSingleObject(shared->done, kUnloadLimitMs) != WAIT_OBJECT_0) return "hangs";
    std::string text = shared->text;
    CloseHandle(shared->done);
    delete shared;
    return text;
}

}  // namespace

void LoadingRows(Report& report, Module& used) {
    report.Section("Loading and unloading");
    const std::string unload = UnloadWithinLimit(used);
    report.Add("unloading after a sweep", "returns, the module is gone", unload);
    const std::string name = "loading and unloading 2,000 times";
    const std::string expected = "2000 times, no handles and no memory are left";
    if (unload == "hangs") {
        report.NotSeen(name, expected, "the module cannot be unloaded");
        return;
    }
    { Module first; }  // so that what the system keeps after a first load is not counted
    const int handles = Handles();
    const SIZE_T memory = Memory();
    int rounds = 0;
    while (rounds < kRounds) {
        Module module;
        if (!module.IsUsable() || !module.Unload()) break;
        ++rounds;
    }
    const bool leftHandles = Handles() > handles + kHandlesOfItsOwn;
    const bool leftMemory = Memory() > memory + kMemoryOfItsOwn;
    report.Add(name, expected,
               Number(rounds) + " times, " + (leftHandles ? "" : "no ") + "handles and " +
                   (leftMemory ? "" : "no ") + "memory are left");
}

}  // namespace check
