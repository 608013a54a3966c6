// The console: UTF-8 output, Ctrl-C, the status line, the password prompt. Only results go to
// standard output, everything else goes to standard error.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
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

// Writes results and flushes, so that a row can be read at once. False once a pipe is closed; the
// caller then stops.
bool Print(std::string_view text);

// Characters in a line of standard output: those of the console, or `otherwise`.
size_t OutputWidth(size_t otherwise = 80);

// " (the disk is full, error 112)"; empty if all output was written, or nobody reads it.
std::string OutputProblem();

// Writes a line to standard error, after the program's name.
void Warn(const std::string& text);

// Reads a line without echo; empty if standard input is not a console. Give the result to a Secret
// at once, which wipes it.
std::optional<std::wstring> PromptHidden(const std::string& prompt);

// For work that must be completed, such as saving a file: while one exists, the first Ctrl-C only
// shows a message and the second ends the process. Each one constructed begins counting anew.
class CompletionGuard {
  public:
    CompletionGuard();
    ~CompletionGuard();
    CompletionGuard(const CompletionGuard&) = delete;
    CompletionGuard& operator=(const CompletionGuard&) = delete;
};

// For the duration of a sweep: the first Ctrl-C calls `stop`, on any thread, and the second ends
// the process. With `status` the console shows a line that is updated while the sweep blocks its
// thread.
class SweepWatch {
  public:
    SweepWatch(int32_t (*stop)(), std::function<std::string()> status);
    ~SweepWatch();
    SweepWatch(const SweepWatch&) = delete;
    SweepWatch& operator=(const SweepWatch&) = delete;

    // Does what Ctrl-C does.
    void RequestStop();
    bool IsStopped() const;

  private:
    void Run();

    int32_t (*stop_)();
    std::function<std::string()> status_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool isOver_ = false;
    std::thread thread_;
};

}  // namespace vndiscover::host
