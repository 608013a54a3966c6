// The console: UTF-8 output, Ctrl-C, the live line, the password prompt. Standard output carries
// results alone, everything else goes to standard error.
#ifndef VNDISCOVER_HOST_PLATFORM_CONSOLE_H
#define VNDISCOVER_HOST_PLATFORM_CONSOLE_H

#include <condition_variable>
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

// Writes results and flushes, so that a row can be read when it arrives. False once nobody reads
// any more (a closed pipe): the caller stops its work.
bool Print(std::string_view text);

// One line on standard error, with the program's name in front.
void Warn(const std::string& text);

// Asks for a line without showing it; empty when standard input is no console. Ends in `text` being
// erased from memory by its owner: give it to a Secret at once.
std::optional<std::wstring> PromptHidden(const std::string& prompt);

// For the lifetime of a sweep: the first Ctrl-C calls `stop` (any thread may), the second ends the
// process. With `status` the console shows a line that is renewed while the sweep's thread is
// blocked.
class SweepWatch {
  public:
    SweepWatch(int32_t (*stop)(), std::function<std::string()> status);
    ~SweepWatch();
    SweepWatch(const SweepWatch&) = delete;
    SweepWatch& operator=(const SweepWatch&) = delete;

    // As by Ctrl-C.
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

#endif  // VNDISCOVER_HOST_PLATFORM_CONSOLE_H
