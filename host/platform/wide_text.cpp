#include "platform/wide_text.h"

#include <windows.h>

namespace vndiscover::host {
namespace {

std::string Narrow(std::wstring_view wide, UINT codePage) {
    if (wide.empty()) return {};
    const int length = static_cast<int>(wide.size());
    const int size =
        WideCharToMultiByte(codePage, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(size > 0 ? size : 0), '\0');
    WideCharToMultiByte(codePage, 0, wide.data(), length, text.data(), size, nullptr, nullptr);
    return text;
}

}  // namespace

std::wstring ToWide(std::string_view utf8) {
    if (utf8.empty()) return {};
    const int length = static_cast<int>(utf8.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(size > 0 ? size : 0), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, wide.data(), size);
    return wide;
}

std::string ToUtf8(std::wstring_view wide) { return Narrow(wide, CP_UTF8); }

std::string ToAnsi(std::string_view utf8) { return Narrow(ToWide(utf8), CP_ACP); }

}  // namespace vndiscover::host
