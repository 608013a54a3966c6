#include "platform/console.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>

#include "platform/this_process.h"
#include "platform/wide_text.h"
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
// To be restored: of a hidden prompt that is interrupted, and without colours. 0: none
std::atomic<DWORD> g_inputMode{0}, g_outputMode{0};
UINT g_formerCodePage = 0;

std::mutex g_outputMutex;
std::atomic<size_t> g_statusWidth{0};  // characters of the status line on the console
bool g_isOutputBroken = false;
DWORD g_outputError = 0;  // of the first failure

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}
bool IsConsole(DWORD handle) { return IsConsole(GetStdHandle(handle)); }

// All of a text, by a function that writes some of it.
template <class Text, class Function>
bool WriteAll(const Text& text, Function&& write) {
    constexpr size_t kMost = 8192;  // older consoles fail beyond 64 KB
    for (size_t done = 0; done < text.size();) {
        DWORD written = 0;
        const auto part = static_cast<DWORD>(std::min(kMost, text.size() - done));
        if (!write(text.data() + done, part, &written) || written == 0) return false;
        done += written;
    }
    return true;
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

// Waits half a second for other output at most: a pipe may be full.
void WarnOfSaving() {
    std::unique_lock<std::mutex> lock(g_outputMutex, std::try_to_lock);
    for (int wait = 0; wait < 50 && !lock; ++wait) {
        Sleep(10);
        (void)lock.try_lock();
    }
    if (lock) Write(STD_ERROR_HANDLE, "vndiscover: saving first (Ctrl-C again ends at once)\n");
}

BOOL WINAPI OnControl(DWORD event) {
    int32_t (*const stop)() = g_stop;
    const bool canStop = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    if (canStop && (stop || g_completionGuards > 0) && !g_isStopped.exchange(true)) {
        if (stop) {
            stop();
        } else {
            WarnOfSaving();
        }
        return TRUE;
    }
    if (!canStop && (stop || g_completionGuards > 0)) {
        // The console is closed, or the user logs off: the system ends the process after about 5 s,
        // or as soon as this returns. A request that is running may take 10 s, so what is known is
        // saved without it.
        constexpr DWORD kMayEndMs = 1000;
        g_isClosing = true;
        if (stop) stop();
        Sleep(kMayEndMs);
        {
            const std::lock_guard<std::mutex> lock(g_saveMutex);
            if (g_save) g_save();
        }
        Sleep(INFINITE);
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

// No work that begins later clears it if the console is closing.
bool IsStopRequested() { return g_isStopped || g_isClosing; }

void ShowStatus(const std::string& text) {
    const std::lock_guard<std::mutex> lock(g_outputMutex);
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
    if (IsConsole(file)) {
        return WriteAll(ToWide(text), [file](const wchar_t* from, DWORD size, DWORD* written) {
            return WriteConsoleW(file, from, size, written, nullptr);
        });
    }
    return WriteAll(text, [file](const char* from, DWORD size, DWORD* written) {
        return WriteFile(file, from, size, written, nullptr);
    });
}

bool Print(std::string_view text) {
    const std::lock_guard<std::mutex> lock(g_outputMutex);
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

bool IsOutputConsole() { return IsConsole(STD_OUTPUT_HANDLE); }

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
    const std::lock_guard<std::mutex> lock(g_outputMutex);
    const bool isNormal = std::find(std::begin(kNobodyReads), std::end(kNobodyReads),
                                    g_outputError) != std::end(kNobodyReads);
    return isNormal || !g_isOutputBroken ? "" : ErrorText(g_outputError);
}

void Warn(const std::string& text) {
    const std::lock_guard<std::mutex> lock(g_outputMutex);
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
    constexpr DWORD kPart = 256;
    constexpr size_t kLongest = 8192;
    std::wstring text;
    text.reserve(kLongest);  // growing would leave copies in memory
    bool isRead = true;
    while (isRead && text.size() + kPart <= kLongest && (text.empty() || text.back() != L'\n')) {
        const size_t done = text.size();
        DWORD count = 0;
        text.resize(done + kPart);
        isRead = ReadConsoleW(input, text.data() + done, kPart, &count, nullptr) && count > 0;
        text.resize(done + count);
    }
    SetConsoleMode(input, mode);
    g_inputMode = 0;
    Write(STD_ERROR_HANDLE, "\n");
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r')) text.pop_back();
    if (isRead) return text;
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    return std::nullopt;
}

CompletionGuard::CompletionGuard(std::function<void()> save) : hasSave_(save != nullptr) {
    g_isStopped = false;
    ++g_completionGuards;
    if (!hasSave_) return;
    const std::lock_guard<std::mutex> lock(g_saveMutex);
    g_save = std::move(save);
}

CompletionGuard::~CompletionGuard() {
    --g_completionGuards;
    if (!hasSave_) return;
    const std::lock_guard<std::mutex> lock(g_saveMutex);  // not while it saves
    g_save = nullptr;
}

SweepWatch::SweepWatch(int32_t (*stop)(), std::function<std::string()> status)
    : stop_(stop), status_(std::move(status)) {
    g_isStopped = false;
    g_stop = stop;
    thread_ = std::thread([this] { Run(); });
}

SweepWatch::~SweepWatch() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isOver_ = true;
    }
    wake_.notify_all();
    thread_.join();
    g_stop = nullptr;
    const std::lock_guard<std::mutex> lock(g_outputMutex);
    EraseStatus();
}

void SweepWatch::RequestStop() {
    if (!g_isStopped.exchange(true)) stop_();
}

bool SweepWatch::IsStopped() const { return IsStopRequested(); }

void SweepWatch::Run() {
    const bool hasConsole = IsConsole(STD_ERROR_HANDLE);
    std::unique_lock<std::mutex> lock(mutex_);
    while (!isOver_) {
        // The sweep clears a request that came just before it began, so repeat it.
        if (IsStopRequested()) stop_();
        if (hasConsole)
            ShowStatus(status_() +
                       (IsStopRequested() ? ", stopping (Ctrl-C again ends at once)" : ""));
        wake_.wait_for(lock, kStatusPeriod);
    }
}

}  // namespace vndiscover::host
