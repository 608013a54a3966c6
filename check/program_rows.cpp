// The two programs beside this one, as a script starts them, and the console.
#include "check/windows_headers.h"

#include <string>

#include "check/module.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr DWORD kProgramLimitMs = 20000;
constexpr DWORD kSweepBeginsMs = 1500;

constexpr char kNotBeside[] = "it is not beside this program";

// What a program is started with: pipes that are read when it has ended, so it may write little.
struct Ended {
    bool isStarted = false, isInTime = false;
    DWORD code = 0, breakError = 0;
    std::string output, error;
};

class Pipe {
  public:
    Pipe() {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        CreatePipe(&read_, &write_, &inherited, 0);
        SetHandleInformation(read_, HANDLE_FLAG_INHERIT, 0);
    }
    ~Pipe() {
        CloseHandle(read_);
        CloseHandle(write_);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    HANDLE Write() const { return write_; }
    std::string Waiting() const {
        char text[4096];
        DWORD size = 0;
        return PeekNamedPipe(read_, text, sizeof text, &size, nullptr, nullptr)
                   ? std::string(text, size)
                   : "";
    }

  private:
    HANDLE read_ = nullptr, write_ = nullptr;
};

// `kBreak`: Ctrl-Break is sent to it after a while, and to it alone.
enum class How { kPipes, kBreak, kNoHandles };
Ended Run(const wchar_t* program, const wchar_t* arguments, How how = How::kPipes) {
    const std::wstring path = BesideProgram(program);
    std::wstring line = L"\"" + path + L"\" " + arguments;
    const Pipe output, error;
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    const bool interrupts = how == How::kBreak, hasHandles = how != How::kNoHandles;
    start.dwFlags = hasHandles ? STARTF_USESTDHANDLES : 0;
    start.hStdOutput = output.Write();
    start.hStdError = error.Write();
    PROCESS_INFORMATION process = {};
    Ended ended;
    ended.isStarted = CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, hasHandles,
                                     interrupts ? CREATE_NEW_PROCESS_GROUP : 0, nullptr, nullptr,
                                     &start, &process) != 0;
    if (!ended.isStarted) return ended;
    if (interrupts) {
        Sleep(kSweepBeginsMs);
        if (!GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, process.dwProcessId))
            ended.breakError = GetLastError();
    }
    ended.isInTime = WaitForSingleObject(process.hProcess, kProgramLimitMs) == WAIT_OBJECT_0;
    if (!ended.isInTime) TerminateProcess(process.hProcess, 1);
    GetExitCodeProcess(process.hProcess, &ended.code);
    ended.output = output.Waiting();
    ended.error = error.Waiting();
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ended;
}

void ProgramRow(Report& report, const std::string& name, const char* expected, const Ended& ended) {
    if (!ended.isStarted) {
        report.NotSeen(name, expected, kNotBeside);
        return;
    }
    if (ended.breakError != 0) {
        report.NotSeen(name, expected, "no break is sent (" + Number(ended.breakError) + ")");
        return;
    }
    const bool isStopped = ended.error.find("stopped") != std::string::npos;
    const char* const error = ended.error.empty() ? "" : isStopped ? ", stopped" : ", error output";
    report.Add(name, expected,
               !ended.isInTime ? "it does not end"
                               : "exit code " + Number(int32_t(ended.code)) +
                                     (ended.output.empty() ? "" : ", output") + error);
}

void ConsoleRows(Report& report) {
    const char* const name = "WriteFile of 3 bytes in 2 characters to a UTF-8 console";
    const char* const attached = "VnBrowser.exe with an unknown option, without handles";
    const HANDLE console =
        CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (console == INVALID_HANDLE_VALUE) {
        report.NotSeen(name, "3 bytes", "there is no console");
        report.NotSeen(attached, "a line on this console", "there is no console");
        return;
    }
    const UINT former = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    DWORD written = 0;
    WriteFile(console, "\xC3\xA9x", 3, &written, nullptr);
    SetConsoleOutputCP(former);
    // The two characters moved the cursor off the first column; the line ends there again.
    const Ended ended = Run(L"VnBrowser.exe", L"--none --exit", How::kNoHandles);
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    info.dwCursorPosition.X = 1;
    GetConsoleScreenBufferInfo(console, &info);
    CloseHandle(console);
    std::printf("\n");
    report.Add(name, "3 bytes", Number(written) + " bytes");
    if (!ended.isStarted) {
        report.NotSeen(attached, "a line on this console", kNotBeside);
        return;
    }
    report.Add(attached, "a line on this console",
               info.dwCursorPosition.X == 0 ? "a line on this console" : "nothing");
}

}  // namespace

void ProgramRows(Report& report, bool mayUseNetwork) {
    report.Section("The programs and the console");
    ProgramRow(report, "vndiscover.exe --version", "exit code 0, output",
               Run(L"vndiscover.exe", L"--version"));
    ProgramRow(report, "vndiscover.exe with an unknown option", "exit code 2, error output",
               Run(L"vndiscover.exe", L"--none"));
    ProgramRow(report, "VnBrowser.exe with an unknown option", "exit code 2, error output",
               Run(L"VnBrowser.exe", L"--none --exit"));
    ConsoleRows(report);
    const char* const name = "Ctrl-Break in a sweep of vndiscover.exe";
    const char* const stopped = "exit code 1, stopped";
    if (!mayUseNetwork || GetConsoleCP() == 0) {
        report.NotSeen(name, stopped, mayUseNetwork ? "there is no console" : "needs --network");
    } else {
        ProgramRow(report, name, stopped,
                   Run(L"vndiscover.exe", L"sweep --oid 1.3.6.1.4.1.5963.1", How::kBreak));
    }
}

}  // namespace check
