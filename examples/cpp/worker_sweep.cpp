// Sweeps on a worker thread while the window keeps painting. Esc, or closing the window, stops it.
//
//     worker_sweep [--community TEXT] [--stop-after MS] [--once]
//
// --once closes the window when the sweep has ended. Devices are shown in the window and printed.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <vndiscover.h>

namespace {

constexpr UINT kDevice = WM_APP + 1;  // from the module; the worker waits until it is handled
constexpr UINT kEnded = WM_APP + 2;   // from the worker, as its last action
constexpr UINT_PTR kFrameTimer = 1;
constexpr UINT_PTR kStopTimer = 2;
constexpr UINT kFrameMs = 40;

struct Options {
    std::string community = VN_DEFAULT_COMMUNITY;
    UINT stopAfterMs = 0;  // 0: never
    bool once = false;
};

// Used only by the window's thread.
struct Host {
    Options options;
    std::thread worker;
    std::vector<std::string> lines;
    int frames = 0;
    bool sweeping = false;
    bool stopping = false;
    bool closing = false;
};
Host host;

void StartSweep(HWND window) {
    host.sweeping = true;
    // The worker gets a copy of the community and shares nothing with the window's thread.
    host.worker = std::thread([window, community = host.options.community] {
        DiscoverSnmp(window, kDevice, 0, 0, community.c_str(), nullptr);
        PostMessageA(window, kEnded, 0, 0);
    });
}

// Does not wait for the worker: the window's thread could then not handle the message that the
// worker is sending, and both would wait for ever. kEnded comes when the sweep is over.
void StopSweep() {
    if (!host.sweeping) return;
    host.stopping = true;
    StopDiscoverSnmp();
}

void OnFrame(HWND window) {
    // The sweep clears a request that comes before it begins, so repeat it.
    if (host.stopping) StopDiscoverSnmp();
    InvalidateRect(window, nullptr, TRUE);
}

void OnPaint(HWND window) {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    ++host.frames;
    std::string state = host.stopping ? "Stopping" : "Looking for devices";
    if (!host.sweeping) state = "Done";
    if (host.sweeping) state.append(static_cast<size_t>(host.frames / 8 % 4), '.');
    TextOutA(dc, 10, 10, state.c_str(), static_cast<int>(state.size()));
    int y = 34;
    for (const std::string& line : host.lines) {
        TextOutA(dc, 10, y, line.c_str(), static_cast<int>(line.size()));
        y += 20;
    }
    EndPaint(window, &paint);
}

// Copies both texts, since the module reuses them after this returns.
void OnDevice(const char* address, const char* value) {
    if (!address) return;  // the final message; kEnded follows, even after an SNMPv3 sweep
    host.lines.push_back(std::string(address) + "  " + value);
    std::printf("%s\n", host.lines.back().c_str());
}

void OnEnded(HWND window) {
    host.worker.join();  // it has nothing left to send, so this does not deadlock
    host.sweeping = false;
    KillTimer(window, kFrameTimer);
    InvalidateRect(window, nullptr, TRUE);
    std::printf("%u devices, %d frames, %s\n", static_cast<unsigned>(host.lines.size()),
                host.frames, host.stopping ? "stopped" : "complete");
    if (host.closing || host.options.once) DestroyWindow(window);
}

void OnClose(HWND window) {
    if (!host.sweeping) {
        DestroyWindow(window);
        return;
    }
    host.closing = true;  // the window must outlive the sweep, which sends to it
    StopSweep();
}

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kDevice:
            OnDevice(reinterpret_cast<const char*>(wParam), reinterpret_cast<const char*>(lParam));
            return 0;
        case kEnded:
            OnEnded(window);
            return 0;
        case WM_TIMER:
            if (wParam == kFrameTimer) OnFrame(window);
            if (wParam == kStopTimer) StopSweep();
            return 0;
        case WM_KEYDOWN:
            if (wParam == VK_ESCAPE) StopSweep();
            return 0;
        case WM_PAINT:
            OnPaint(window);
            return 0;
        case WM_CLOSE:
            OnClose(window);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

HWND MakeWindow() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = OnMessage;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszClassName = "VnDiscoverWorkerSweep";
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, windowClass.lpszClassName, "Devices",
                           WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT, 500, 400,
                           nullptr, nullptr, windowClass.hInstance, nullptr);
}

Options ReadOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "--once") == 0) options.once = true;
        if (std::strcmp(argv[i], "--community") == 0 && hasValue) options.community = argv[++i];
        if (std::strcmp(argv[i], "--stop-after") == 0 && hasValue) {
            options.stopAfterMs = static_cast<UINT>(std::strtoul(argv[++i], nullptr, 10));
        }
    }
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    host.options = ReadOptions(argc, argv);
    const HWND window = MakeWindow();
    if (!window) {
        std::fprintf(stderr, "no window: error %lu\n", GetLastError());
        return 2;
    }
    SetTimer(window, kFrameTimer, kFrameMs, nullptr);
    if (host.options.stopAfterMs != 0) {
        SetTimer(window, kStopTimer, host.options.stopAfterMs, nullptr);
    }
    StartSweep(window);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return host.lines.empty() ? 1 : 0;
}
