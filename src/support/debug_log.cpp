#include "support/debug_log.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

DebugSwitches g_debugSwitches = {0, 0};

namespace {

constexpr size_t kNarrowSize = 4096;
constexpr size_t kMessageSize = 1024;  // wvsprintfA and the wide writer truncate messages here
constexpr size_t kWideLineSize = kMessageSize + 64;

// Callers read the last error again after a log line; OutputDebugString and the C runtime change
// it.
class LastErrorKeeper {
  public:
    LastErrorKeeper() : error_(GetLastError()) {}
    ~LastErrorKeeper() { SetLastError(error_); }

  private:
    DWORD error_;
};

void AppendToLogFile(const char* line) {
    // Opened and closed for every line, so that the host may move or delete the file at any time.
    // "t": text mode even if the host has made binary its runtime's default.
    OwnedFile file(std::fopen("VxAdmSvc.log", "a+t"));
    if (file) std::fputs(line, file.Get());
}

}  // namespace

void DebugLogA(const char* format, ...) {
    if (!IsNarrowLogOn()) return;
    LastErrorKeeper keeper;

    char message[kNarrowSize] = {};
    va_list arguments;
    va_start(arguments, format);
    wvsprintfA(message, format, arguments);  // writes at most 1,024 characters
    va_end(arguments);
    message[kMessageSize] = '\0';

    SYSTEMTIME now;
    GetLocalTime(&now);
    char line[kNarrowSize] = {};
    const int stamp = wsprintfA(line, "%02i/%02i/%02i %02i:%02i:%02i:%03i ", now.wMonth, now.wDay,
                                now.wYear, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
    lstrcpynA(line + stamp, message, static_cast<int>(kNarrowSize) - stamp);

    if (g_debugSwitches.debug != 0) OutputDebugStringA(line);
    if (g_debugSwitches.dbg2Log != 0) AppendToLogFile(line);
}

void DebugLogW(const wchar_t* format, ...) {
    if (g_debugSwitches.debug == 0) return;
    LastErrorKeeper keeper;

    wchar_t message[kMessageSize + 1] = {};
    va_list arguments;
    va_start(arguments, format);
    // Leaves a truncated message unterminated, hence the extra zeroed character.
    _vsnwprintf(message, kMessageSize, format, arguments);
    va_end(arguments);

    SYSTEMTIME now;
    GetLocalTime(&now);
    wchar_t line[kWideLineSize] = {};
    // Kept: wsprintfW writes at most 1,024 characters, so unlike in narrow lines the limit includes
    // the time stamp.
    wsprintfW(line, L"%02i/%02i/%02i %02i:%02i:%02i:%03i %s", now.wMonth, now.wDay, now.wYear,
              now.wHour, now.wMinute, now.wSecond, now.wMilliseconds, message);
    OutputDebugStringW(line);
}

uint8_t IsDebugLogEnabled() { return g_debugSwitches.debug; }

}  // namespace vndiscover
