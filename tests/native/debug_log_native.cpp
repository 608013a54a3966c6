// The log where there is no debugger to send it to: one LogCapture at a time gets its lines.
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

// "%s" means wide text in a wide format of Windows, narrow text here.
void DebugLogW(const wchar_t* format, ...) {
    if (g_debugSwitches.debug == 0 || !g_capture) return;
    const std::string narrow = std::regex_replace(WideToUtf8(format), std::regex("%s"), "%ls");
    va_list arguments;
    va_start(arguments, format);
    Write(narrow.c_str(), arguments);
    va_end(arguments);
}

}  // namespace vndiscover
