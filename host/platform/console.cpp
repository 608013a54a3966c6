#include "platform/console.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>

#include "platform/messages.h"
#include "platform/owned.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr auto kStatusPeriod = std::chrono::milliseconds(250);

// Shared with the Ctrl-C handler, which runs on a thread of the system.
std::atomic<int32_t (*)()> g_stop{nullptr};
std::atomic<bool> g_isStopped{false};  // by the first Ctrl-C
std::atomic<bool> g_isClosing{false};  // the console, or the user's session
std::atomic<int> g_completionGuards{0};
std::mutex g_saveMutex;
std::function<void()> g_save;  // of a CompletionGuard; empty: there is nothing to save
// Modes to restore, after a hidden prompt that is interrupted and after colours; 0: none.
std::atomic<DWORD> g_inputMode{0}, g_outputMode{0};
UINT g_formerCodePage = 0;

std::timed_mutex g_outputMutex;
std::atomic<size_t> g_statusWidth{0};  // characters of the status line on the console
bool g_isOutputBroken = false;
DWORD g_outputError = 0;  // of the first failure

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

// Few writes, with the system's line ends: C streams write to a console byte by byte, which
// flickers.
bool Write(DWORD handle, std::string_view text) {
    std::string bytes;
    for (const char letter : text) bytes += letter == '\n' ? "\r\n" : std::string(1, letter);
    return WriteText(GetStdHandle(handle), bytes);
}

void RestoreConsole() {
    if (g_formerCodePage != 0) SetConsoleOutputCP(g_formerCodePage);
    if (const DWORD mode = g_inputMode.exchange(0))
        SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), mode);
    if (const DWORD mode = g_outputMode.exchange(0))
        SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), mode);
}

void WarnOfSaving() {
    constexpr auto kMaxWait = std::chrono::milliseconds(500);  // for a pipe that may be full
    const std::unique_lock<std::timed_mutex> lock(g_outputMutex, kMaxWait);
    if (lock) Write(STD_ERROR_HANDLE, "vndiscover: saving first (Ctrl-C again ends at once)\n");
}

// The system ends the process after about 5 s. A request that is running may take 10 s, so what is
// known is saved without it.
void SaveBeforeEnd() {
    constexpr DWORD kMayEndMs = 1000;
    g_isClosing = true;
    if (int32_t(*const stop)() = g_stop) stop();
    Sleep(kMayEndMs);
    const std::lock_guard lock(g_saveMutex);
    if (g_save) g_save();
}

BOOL WINAPI OnControl(DWORD event) {
    int32_t (*const stop)() = g_stop;
    const bool canStop = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    const bool hasWork = stop || g_completionGuards > 0;
    if (canStop && hasWork && !g_isStopped.exchange(true)) {
        if (stop) {
            stop();
        } else {
            WarnOfSaving();
        }
        return TRUE;
    }
    if (!canStop && hasWork) {  // the console is closed, or the user logs off
        SaveBeforeEnd();
        Sleep(INFINITE);  // as soon as this returned, the process would end
    }
    RestoreConsole();
    if (g_statusWidth > 0) Write(STD_ERROR_HANDLE, "\n");
    // Immediately: an orderly exit would unload the module during its sweep.
    if (canStop) TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_CONTROL_C_EXIT));
    return FALSE;  // nothing to save: the system ends the process
}

// Requires the output mutex. Erases the line with spaces, which works on every console.
void EraseStatus() {
    if (g_statusWidth == 0) return;
    Write(STD_ERROR_HANDLE, "\r" + std::string(g_statusWidth, ' ') + "\r");
    g_statusWidth = 0;
}

void ShowStatus(const std::string& text) {
    const std::lock_guard lock(g_outputMutex);
    Write(STD_ERROR_HANDLE, "\r" + Padded(text, g_statusWidth));
    g_statusWidth = std::max<size_t>(g_statusWidth, text.size());
}

}  // namespace

ConsoleSession::ConsoleSession() {
    g_formerCodePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCtrlHandler(OnControl, TRUE);
}

ConsoleSession::~ConsoleSession() {
    SetConsoleCtrlHandler(OnControl, FALSE);
    RestoreConsole();
}

bool WriteText(HANDLE file, const std::string& text) {
    const bool isConsole = IsConsole(file);
    const std::wstring wide = isConsole ? ToWide(text) : L"";
    const size_t size = isConsole ? wide.size() : text.size();
    const size_t most = isConsole ? 8192 : size_t{1} << 20;  // older consoles fail beyond 64 KB
    for (size_t done = 0; done < size;) {
        DWORD written = 0;
        const auto part = static_cast<DWORD>(std::min(most, size - done));
        const BOOL isWritten =
            isConsole ? WriteConsoleW(file, wide.data() + done, part, &written, nullptr)
                      : WriteFile(file, text.data() + done, part, &written, nullptr);
        if (!isWritten || written == 0) return false;
        done += written;
    }
    return true;
}

bool Print(std::string_view text) {
    const std::lock_guard lock(g_outputMutex);
    EraseStatus();
    if (!g_isOutputBroken && !Write(STD_OUTPUT_HANDLE, text)) {
        g_outputError = GetLastError();
        g_isOutputBroken = true;
    }
    return !g_isOutputBroken;
}

size_t OutputWidth(size_t otherwise) {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) return otherwise;
    // A full line would be followed by an empty one.
    return static_cast<size_t>(std::max(info.srWindow.Right - info.srWindow.Left, 40));
}

bool IsOutputConsole() { return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE)); }

bool HasOutputColours() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (!Environment(L"NO_COLOR").empty() || !GetConsoleMode(output, &mode) ||
        !SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING))
        return false;
    g_outputMode = mode;
    return true;
}

std::string OutputProblem() {
    constexpr DWORD kNobodyReads[] = {ERROR_BROKEN_PIPE, ERROR_NO_DATA, ERROR_PIPE_NOT_CONNECTED,
                                      ERROR_INVALID_HANDLE};
    const std::lock_guard lock(g_outputMutex);
    const bool isNormal = Contains(kNobodyReads, g_outputError);
    return isNormal || !g_isOutputBroken ? "" : ErrorText(g_outputError);
}

void Warn(const std::string& text) {
    const std::lock_guard lock(g_outputMutex);
    EraseStatus();
    Write(STD_ERROR_HANDLE, "vndiscover: " + text + "\n");
}

std::optional<std::wstring> PromptHidden(const std::string& prompt) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(input, &mode)) return std::nullopt;
    g_inputMode = mode;
    SetConsoleMode(input, (mode | ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT) & ~ENABLE_ECHO_INPUT);
    Write(STD_ERROR_HANDLE, prompt);  // only now, since the user types as soon as it appears
    constexpr DWORD kLongest = 8192;
    std::wstring text(kLongest, L'\0');  // growing would leave copies in memory
    DWORD count = 0;
    const bool isRead = ReadConsoleW(input, text.data(), kLongest, &count, nullptr) && count > 0;
    text.resize(count);
    SetConsoleMode(input, mode);
    g_inputMode = 0;
    Write(STD_ERROR_HANDLE, "\n");
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r')) text.pop_back();
    if (isRead) return text;
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    return std::nullopt;
}

// A program that has loaded user32.dll gets no console event when the user logs off. Its top-level
// windows get messages instead, if their thread handles messages: the thread of a sweep does not.
class SessionEnd {
  public:
    SessionEnd() : thread_([this] { Run(); }) {}
    ~SessionEnd() {
        SetEvent(over_.Get());
        thread_.join();
    }

    std::optional<LRESULT> OnMessage(HWND, UINT message, WPARAM wParam, LPARAM) {
        if (message == WM_QUERYENDSESSION) return TRUE;
        if (message == WM_ENDSESSION && wParam) SaveBeforeEnd();
        return std::nullopt;
    }
    void OnException() noexcept {}  // saving does not throw

  private:
    void Run() {
        const HANDLE over = over_.Get();
        const Owned<ClosedBy<HWND, DestroyWindow>> window(
            MakeHiddenWindow(L"VnDiscoverSessionEnd", nullptr, this));
        constexpr DWORD kMessage = WAIT_OBJECT_0 + 1;
        while (MsgWaitForMultipleObjects(1, &over, FALSE, INFINITE, QS_ALLINPUT) == kMessage) {
            for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
                DispatchMessageW(&message);
        }
    }

    const OwnedHandle over_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::thread thread_;
};

CompletionGuard::CompletionGuard(std::function<void()> save)
    : sessionEnd_(save ? std::make_unique<SessionEnd>() : nullptr) {
    g_isStopped = false;
    ++g_completionGuards;
    if (!sessionEnd_) return;
    const std::lock_guard lock(g_saveMutex);
    g_save = std::move(save);
}

CompletionGuard::~CompletionGuard() {
    --g_completionGuards;
    if (!sessionEnd_) return;
    const std::lock_guard lock(g_saveMutex);  // not while it saves
    g_save = nullptr;
}

SweepWatch::SweepWatch(int32_t (*stop)(), std::function<std::string()> status)
    : stop_(stop), status_(std::move(status)) {
    g_isStopped = false;
    g_stop = stop;
    thread_ = std::thread([this] { Run(); });
}

SweepWatch::~SweepWatch() {
    over_.set_value();
    thread_.join();
    g_stop = nullptr;
    const std::lock_guard lock(g_outputMutex);
    EraseStatus();
}

void SweepWatch::RequestStop() {
    if (!g_isStopped.exchange(true)) stop_();
}

// If the console is closing, work that begins later does not clear it.
bool SweepWatch::IsStopped() const { return g_isStopped || g_isClosing; }

void SweepWatch::Run() {
    const bool hasConsole = IsConsole(GetStdHandle(STD_ERROR_HANDLE));
    const std::future<void> over = over_.get_future();
    do {
        // The sweep clears a request that came just before it began, so repeat it.
        if (IsStopped()) stop_();
        if (hasConsole)
            ShowStatus(status_() + (IsStopped() ? ", stopping (Ctrl-C again ends at once)" : ""));
    } while (over.wait_for(kStatusPeriod) == std::future_status::timeout);
}

}  // namespace vndiscover::host
