// Conversions for systems where wchar_t holds a whole character. The ANSI code page is taken as
// Latin-1.
#include "support/text_convert.h"

#include <cstdint>

namespace vndiscover {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, uint32_t c) {
    const int rest = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    const uint32_t mark = rest == 0 ? 0 : 0xFF00u >> (rest + 1);
    out += static_cast<char>(mark | (c >> (6 * rest)));
    for (int i = rest - 1; i >= 0; --i) out += static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F));
}

wchar_t TakeUtf8(const char*& text) {
    const auto lead = static_cast<uint8_t>(*text++);
    if (lead < 0x80) return lead;
    if (lead < 0xC2 || lead > 0xF4) return kReplacement;
    const int rest = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    uint32_t c = lead & (0x3F >> rest);
    for (int i = 0; i < rest; ++i, ++text) {
        const auto next = static_cast<uint8_t>(*text);
        if ((next & 0xC0) != 0x80) return kReplacement;
        c = (c << 6) | (next & 0x3F);
    }
    return static_cast<wchar_t>(c);
}

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
    for (; text && *text; ++text) AppendUtf8(utf8, static_cast<uint32_t>(*text));
    return utf8;
}

std::wstring Utf8ToWide(const char* text) {
    std::wstring wide;
    while (text && *text) wide += TakeUtf8(text);
    return wide;
}

}  // namespace vndiscover
