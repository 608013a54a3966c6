// The log on systems without a debugger to send it to: its lines go to a LogCapture, one at a time.
#include <cstdarg>
#include <cstdio>
#include <regex>

#include "../helpers/log_capture.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

LogCapture* g_capture = nullptr;

void Write(const char* format, va_list arguments) {
    char message[1024 + 1];
    std::vsnprintf(message, sizeof message, format, arguments);
    g_capture->Add(message);
}

}  // namespace

DebugSwitches g_debugSwitches = {0, 0};

LogCapture::LogCapture() { g_capture = this; }
LogCapture::~LogCapture() { g_capture = nullptr; }

void DebugLogA(const char* format, ...) {
    if (g_debugSwitches.debug == 0 || !g_capture) return;
    va_list arguments;
    va_start(arguments, format);
    Write(format, arguments);
    va_end(arguments);
}

// In a wide format, "%s" means wide text on Windows, but narrow text here.
void DebugLogW(const wchar_t* format, ...) {
    if (g_debugSwitches.debug == 0 || !g_capture) return;
    const std::string narrow = std::regex_replace(WideToUtf8(format), std::regex("%s"), "%ls");
    va_list arguments;
    va_start(arguments, format);
    Write(narrow.c_str(), arguments);
    va_end(arguments);
}

}  // namespace vndiscover
