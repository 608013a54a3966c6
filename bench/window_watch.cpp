// vndiscover_window_watch.exe DEVICES [OPTION...]: starts the VnBrowser.exe beside it with a sweep,
// or with these options, and asks its window every 50 ms for an answer, until nothing is sent any
// more. Prints a line of JSON: the devices in
// the list, how often the window was asked, how often before it showed the first device, and its
// longest time to answer, in milliseconds; and, on failure, the window's status on the error
// output. Exit codes: 0 DEVICES devices are shown, 1 fewer or more, or the window did not answer.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "window/resource.h"

namespace {

constexpr DWORD kPauseMs = 50;
constexpr UINT kSilentMs = 30000;  // after that, the window is taken to hang
constexpr ULONGLONG kStartMs = 60000, kSweepMs = 180000;

double NowMs() {
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

class Watch {
  public:
    explicit Watch(HWND window) : window_(window), list_(GetDlgItem(window, IDC_DEVICES)) {}

    // False: no answer.
    bool Ask(HWND window, UINT message, DWORD_PTR& result, WPARAM size = 0, LPARAM text = 0) {
        const double began = NowMs();
        const bool isAnswered =
            SendMessageTimeoutW(window, message, size, text, SMTO_NORMAL, kSilentMs, &result) != 0;
        worstMs_ = std::max(worstMs_, NowMs() - began);
        ++asked_;
        return isAnswered;
    }

    // Until the sweep is over. False: it did not end, or the window did not answer.
    bool UntilOver(int& devices) {
        const ULONGLONG end = GetTickCount64() + kSweepMs;
        bool isOver = false;
        while (!isOver && GetTickCount64() < end) {
            Sleep(kPauseMs);
            DWORD_PTR result = 0;
            if (!Ask(window_, WM_NULL, result) || !Ask(list_, LVM_GETITEMCOUNT, result))
                return false;
            devices = static_cast<int>(result);
            if (devices == 0) askedWhenEmpty_ = asked_;
            isOver = devices != 0 && CanFind();
            // The last devices may have come in between.
            if (isOver && Ask(list_, LVM_GETITEMCOUNT, result)) devices = static_cast<int>(result);
        }
        return isOver;
    }

    void Print(int devices) const {
        std::printf(
            "{\"devices\": %d, \"asked\": %d, \"asked_when_empty\": %d, \"worst_ms\": %.1f}\n",
            devices, asked_, askedWhenEmpty_, worstMs_);
    }

    std::wstring TextOf(int control) {
        wchar_t text[128] = L"";
        DWORD_PTR length = 0;
        Ask(GetDlgItem(window_, control), WM_GETTEXT, length, 128, reinterpret_cast<LPARAM>(text));
        return text;
    }

  private:
    bool CanFind() { return TextOf(IDC_FIND) == L"Fi&nd"; }

    HWND window_, list_;
    int asked_ = 0, askedWhenEmpty_ = 0;
    double worstMs_ = 0;
};

HWND WaitForWindow() {
    const ULONGLONG end = GetTickCount64() + kStartMs;
    HWND window = nullptr;
    while (GetTickCount64() < end) {
        window = FindWindowW(L"VnBrowser", nullptr);
        if (window && GetDlgItem(window, IDC_STATUS)) break;  // its last control
        Sleep(5);
    }
    return window;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    std::wstring line = L"VnBrowser.exe";
    if (argc == 2) line += L" --look-for module --community sesame --sweep";
    for (int index = 2; index < argc; ++index)
        line += L" " + std::wstring(argv[index], argv[index] + std::strlen(argv[index]));
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process))
        return 2;
    const HWND window = WaitForWindow();
    int devices = 0;
    Watch watch(window);
    const bool isOver = window && watch.UntilOver(devices);
    watch.Print(devices);
    if (!isOver)
        std::fprintf(stderr, "%ls\n", window ? watch.TextOf(IDC_STATUS).c_str() : L"no window");
    if (window) PostMessageW(window, WM_CLOSE, 0, 0);
    const ULONGLONG end = GetTickCount64() + kSilentMs;
    while (WaitForSingleObject(process.hProcess, kPauseMs) != WAIT_OBJECT_0 &&
           GetTickCount64() < end) {
        // The scan is not to be saved.
        if (const HWND question = window ? GetLastActivePopup(window) : nullptr)
            PostMessageW(question, WM_COMMAND, IDNO, 0);
    }
    if (WaitForSingleObject(process.hProcess, 0) != WAIT_OBJECT_0)
        TerminateProcess(process.hProcess, 1);
    return isOver && devices == std::strtol(argv[1], nullptr, 10) ? 0 : 1;
}
