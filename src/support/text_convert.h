// Conversions between UTF-16, UTF-8 and the system's ANSI code page. Null reads as "". A character
// that the target lacks becomes that code page's substitute, so no conversion fails.
#pragma once

#include <string>

namespace vndiscover {

std::string WideToAnsi(const wchar_t* text);
std::wstring AnsiToWide(const char* text);
std::string WideToUtf8(const wchar_t* text);
std::wstring Utf8ToWide(const char* text);

}  // namespace vndiscover
