#include "debug_log_native.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <string>

#include "support/debug_log.h"
#include "support/text_convert.h"

namespace vndiscover {

DebugSwitches g_debugSwitches = {0, 0};
void (*g_logSink)(const char* line, void* context) = nullptr;
void* g_logSinkContext = nullptr;

namespace {

constexpr size_t kMessageSize = 1024;

// "%s" means wide text in a wide format of Windows, narrow text here.
std::wstring PortableFormat(const wchar_t* format) {
    std::wstring portable;
    for (; *format; ++format) {
        if (portable.size() >= 1 && portable.back() == L'%' && *format == L's') portable += L'l';
        portable += *format;
    }
    return portable;
}

}  // namespace

void DebugLogA(const char* format, ...) {
    if (g_debugSwitches.debug == 0 || !g_logSink) return;
    char message[kMessageSize + 1] = {};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    g_logSink(message, g_logSinkContext);
}

void DebugLogW(const wchar_t* format, ...) {
    if (g_debugSwitches.debug == 0 || !g_logSink) return;
    wchar_t message[kMessageSize + 1] = {};
    va_list arguments;
    va_start(arguments, format);
    std::vswprintf(message, kMessageSize, PortableFormat(format).c_str(), arguments);
    va_end(arguments);
    g_logSink(WideToUtf8(message).c_str(), g_logSinkContext);
}

}  // namespace vndiscover
