// Conversions for systems where wchar_t holds a whole character. The ANSI code page is Latin-1.
#include "support/text_convert.h"

#include <climits>
#include <clocale>
#include <cstdint>
#include <cstring>
#include <cwchar>

namespace vndiscover {
namespace {

[[maybe_unused]] const char* const g_locale = std::setlocale(LC_CTYPE, "C.UTF-8");

}  // namespace

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
