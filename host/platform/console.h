// The console. Only results go to standard output, everything else goes to standard error.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace vndiscover::host {

// Sets the console to UTF-8 for its lifetime and installs the Ctrl-C handler. One, in main.
class ConsoleSession {
  public:
    ConsoleSession();
    ~ConsoleSession();
    ConsoleSession(const ConsoleSession&) = delete;
    ConsoleSession& operator=(const ConsoleSession&) = delete;
};

// Writes UTF-8 to a HANDLE. A console gets characters, since older ones count bytes wrongly.
bool WriteText(void* file, const std::string& text);

// Writes results at once. Returns false after a pipe is closed; the caller then stops.
bool Print(std::string_view text);

// Characters in a line of standard output: those of the console, or `otherwise`.
size_t OutputWidth(size_t otherwise = 80);

// Whether standard output is a console that shows colours, and NO_COLOR is not set.
bool HasOutputColours();
bool IsOutputConsole();

// " (the disk is full, error 112)"; empty if all output was written, or nobody reads it.
std::string OutputProblem();

// Writes a line to standard error, after the program's name.
void Warn(const std::string& text);

// Reads a line without echo, for a Secret. Empty if standard input is not a console.
std::optional<std::wstring> PromptHidden(const std::string& prompt);

class SessionEnd;

// For work that must be completed, such as saving a file. While a guard exists, the first Ctrl-C
// only shows a message and the second ends the process. Each guard starts the count again.
class CompletionGuard {
  public:
    // `save`, which must not throw: called on another thread if the console closes, or the user
    // logs off, and the process has not ended a second later. Only one guard at a time may have
    // one.
    explicit CompletionGuard(std::function<void()> save = nullptr);
    ~CompletionGuard();

  private:
    std::unique_ptr<SessionEnd> sessionEnd_;  // null: there is nothing to save
};

// While a sweep runs, the first Ctrl-C calls `stop`, on any thread, and the second ends the
// process. The console shows the line that `status` returns, again and again.
class SweepWatch {
  public:
    SweepWatch(int32_t (*stop)(), std::function<std::string()> status);
    ~SweepWatch();

    void RequestStop();
    bool IsStopped() const;

  private:
    void Run();

    int32_t (*stop_)();
    std::function<std::string()> status_;
    std::promise<void> over_;
    std::thread thread_;
};

}  // namespace vndiscover::host
