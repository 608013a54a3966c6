// The log and conversions of text on other systems: lines go to a LogCapture, one at a time;
// wchar_t holds a whole character, and the ANSI code page is Latin-1.
#include <climits>
#include <clocale>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <regex>

#include "../helpers/log_capture.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

[[maybe_unused]] const char* const g_locale = std::setlocale(LC_CTYPE, "C.UTF-8");

void Write(const char* format, va_list arguments) {
    char message[1024 + 1];
    std::vsnprintf(message, sizeof message, format, arguments);
    LogCapture::Current()->Add(message);
}

}  // namespace

DebugSwitches g_debugSwitches = {0, 0};

void DebugLogA(const char* format, ...) {
    if (g_debugSwitches.debug == 0 || !LogCapture::Current()) return;
    va_list arguments;
    va_start(arguments, format);
    Write(format, arguments);
    va_end(arguments);
}

// In a wide format, "%s" means wide text on Windows, but narrow text here.
void DebugLogW(const wchar_t* format, ...) {
    if (g_debugSwitches.debug == 0 || !LogCapture::Current()) return;
    const std::string narrow = std::regex_replace(WideToUtf8(format), std::regex("%s"), "%ls");
    va_list arguments;
    va_start(arguments, format);
    Write(narrow.c_str(), arguments);
    va_end(arguments);
}

std::string WideToAnsi(const wchar_t* text) {
    std::string narrow;
    for (; text && *text; ++text) narrow += *text < 0x100 ? static_cast<char>(*text) : '?';
    return narrow;
}

std::wstring AnsiToWide(const char* text) {
    std::wstring wide;
    for (; text && *text; ++text) wide += static_cast<wchar_t>(static_cast<uint8_t>(*text));
    return wide;
}

std::string WideToUtf8(const wchar_t* text) {
    std::string utf8;
    for (; text && *text; ++text) {
        std::mbstate_t state = {};
        char bytes[MB_LEN_MAX];
        const size_t size = std::wcrtomb(bytes, *text, &state);
        utf8 += size <= MB_LEN_MAX ? std::string(bytes, size) : "\xEF\xBF\xBD";
    }
    return utf8;
}

std::wstring Utf8ToWide(const char* text) {
    std::wstring wide;
    while (text && *text) {
        std::mbstate_t state = {};
        wchar_t c = 0;
        const size_t size = std::mbrtowc(&c, text, strnlen(text, 4), &state);
        wide += size <= 4 ? c : L'\xFFFD';
        text += size <= 4 ? size : 1;
    }
    return wide;
}

}  // namespace vndiscover
