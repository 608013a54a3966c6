#include "support/text_convert.h"

#include "support/win.h"

namespace vndiscover {
namespace {

// One string, returned without a move: moving a short password would leave a copy on the stack.
std::string ToNarrow(UINT codePage, const wchar_t* text) {
    std::string narrow;
    if (!text || !*text) return narrow;
    const int size = WideCharToMultiByte(codePage, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) return narrow;
    narrow.resize(static_cast<size_t>(size));
    WideCharToMultiByte(codePage, 0, text, -1, narrow.data(), size, nullptr, nullptr);
    narrow.resize(narrow.size() - 1);  // the terminator was converted with the text
    return narrow;
}

std::wstring ToWide(UINT codePage, const char* text) {
    if (!text || !*text) return {};
    const int size = MultiByteToWideChar(codePage, 0, text, -1, nullptr, 0);
    if (size <= 1) return {};
    std::wstring wide(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(codePage, 0, text, -1, wide.data(), size);
    wide.resize(wide.size() - 1);
    return wide;
}

}  // namespace

std::string WideToAnsi(const wchar_t* text) { return ToNarrow(CP_ACP, text); }
std::wstring AnsiToWide(const char* text) { return ToWide(CP_ACP, text); }
std::string WideToUtf8(const wchar_t* text) { return ToNarrow(CP_UTF8, text); }
std::wstring Utf8ToWide(const char* text) { return ToWide(CP_UTF8, text); }

}  // namespace vndiscover
