// vndiscover_one_sweep.exe DEVICES KEYS: measures one sweep of DEVICES devices in its own process,
// as in a host. KEYS is the number of OIDs under "GET" of a JSON request, or "-" for a sweep
// without one. Prints a line of JSON: times in microseconds, memory in bytes.
// vndiscover_one_sweep.exe DEVICES KEYS AUTH PRIV: the same over SNMPv3 with these protocols, for
// which KEYS has no effect, or over SNMPv1 if AUTH is "-"; native/v3_devices.c simulates the
// devices.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "cpu_clock.h"
#include "lab.h"
#include "samples.h"
#include "vndiscover.h"

namespace vndiscover {
namespace {

constexpr UINT kMessage = WM_APP + 161;
constexpr int kAnswersPerSecond = 10000;
constexpr int kLoads = 21;

int g_delivered = 0;

int NumberOf(const char* text) { return static_cast<int>(std::strtol(text, nullptr, 10)); }

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM address, LPARAM value) {
    if (message != kMessage) return DefWindowProcA(window, message, address, value);
    if (address) ++g_delivered;
    return 0;
}

HWND MakeWindow() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = OnMessage;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "VnDiscoverOneSweep";
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, windowClass.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                           windowClass.hInstance, nullptr);
}

std::wstring JsonRequest(int keys) {
    std::wstring members;
    for (int i = 1; i <= keys; ++i) {
        members += (i > 1 ? L", \".1.3.6.1.2.1.43." : L"\".1.3.6.1.2.1.43.") + std::to_wstring(i) +
                   L".0\": \"\"";
    }
    return L"{\"DiscoverOID\": \"" VN_DEFAULT_DISCOVERY_OID "\", \"GET\": {" + members + L"}}";
}

struct Loading {
    double firstUs;
    double loadUs;
    double unloadUs;
    uint64_t residentBytes;  // more than before the module was loaded
};

// Leaves the module loaded.
HMODULE MeasureLoading(Loading& loading) {
    const uint64_t before = ResidentBytes();
    HMODULE module = nullptr;
    const auto load = [&] { module = LoadLibraryA("VnDiscover.dll"); };
    loading.firstUs = MicrosecondsOf(load);
    loading.residentBytes = ResidentBytes() - before;
    std::vector<double> loads, unloads;
    for (int i = 0; i < kLoads; ++i) {
        unloads.push_back(MicrosecondsOf([&] { FreeLibrary(module); }));
        loads.push_back(MicrosecondsOf(load));
    }
    loading.loadUs = Median(loads);
    loading.unloadUs = Median(unloads);
    return module;
}

template <class Function>
Function Find(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The user of v3_devices.c.
std::function<void()> SweepV3(HMODULE module, HWND window, const std::wstring& auth,
                              const std::wstring& priv) {
    const auto discover = Find<decltype(&DiscoverSnmpV3)>(module, "DiscoverSnmpV3");
    return [=] {
        discover(window, kMessage, 0, 0, L"bench", 1, L"authpass1", 1, L"privpass1", auth.c_str(),
                 priv.c_str());
    };
}

std::function<void()> SweepV1(HMODULE module, HWND window, const char* keys) {
    const auto discover = Find<decltype(&DiscoverDevices)>(module, "DiscoverDevices");
    const auto discoverJson =
        Find<decltype(&DiscoverDevicesByOIDjson)>(module, "DiscoverDevicesByOIDjson");
    const bool isJson = std::strcmp(keys, "-") != 0;
    return [=, request = JsonRequest(NumberOf(keys))] {
        if (isJson) {
            discoverJson(window, kMessage, 0, 0, request.c_str(), nullptr, nullptr, nullptr);
        } else {
            discover(window, kMessage, 0, 0, nullptr, nullptr, nullptr);
        }
    };
}

std::wstring Wide(const char* ascii) { return {ascii, ascii + std::strlen(ascii)}; }

// If auth is null, the answerer answers as planned.
int Run(int devices, const char* keys, const char* auth, const char* priv) {
    const HWND window = MakeWindow();
    const uint64_t bareBytes = ResidentBytes();
    Loading loading = {};
    const HMODULE module = MeasureLoading(loading);
    if (!module) return 1;
    const bool isV3 = auth && std::strcmp(auth, "-") != 0;
    const auto sweep =
        isV3 ? SweepV3(module, window, Wide(auth), Wide(priv)) : SweepV1(module, window, keys);
    if (!auth) PlanAnswers({devices, kAnswersPerSecond, kPlainAnswer});

    const CpuClock clock;
    const uint64_t beforeSweep = ResidentBytes();
    const CpuTimes began = clock.Now();
    const double elapsed = MicrosecondsOf(sweep);
    const CpuTimes spent = clock.Now() - began;
    const uint64_t afterSweep = ResidentBytes();
    std::printf(
        "{\"auth\": \"%s\", \"priv\": \"%s\", \"devices\": %d, \"keys\": %d, \"delivered\": %d, "
        "\"elapsed_us\": %.0f, \"cpu_us\": "
        "%.0f, "
        "\"server_cpu_us\": %.0f, \"answering_us\": %lld, \"bare_bytes\": %llu, "
        "\"loaded_bytes\": %llu, \"swept_bytes\": %lld, \"first_load_us\": %.1f, \"load_us\": "
        "%.1f, "
        "\"unload_us\": %.1f}\n",
        auth ? auth : "", auth ? priv : "", devices,
        std::strcmp(keys, "-") != 0 ? NumberOf(keys) : -1, g_delivered, elapsed, spent.program,
        spent.server, static_cast<long long>(auth ? 0 : AnsweringTimeUs()),
        static_cast<unsigned long long>(bareBytes),
        static_cast<unsigned long long>(loading.residentBytes),
        static_cast<long long>(afterSweep - beforeSweep), loading.firstUs, loading.loadUs,
        loading.unloadUs);
    return 0;
}

}  // namespace
}  // namespace vndiscover

int main(int argc, char** argv) {
    if (argc != 3 && argc != 5) return 2;
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return 1;
    const int status =
        vndiscover::Run(vndiscover::NumberOf(argv[1]), argv[2], argc == 5 ? argv[3] : nullptr,
                        argc == 5 ? argv[4] : nullptr);
    WSACleanup();
    return status;
}
