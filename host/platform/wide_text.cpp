#include "platform/wide_text.h"

#include <windows.h>
#include <exception>
#include <new>
#include <utility>

namespace vndiscover::host {
namespace {

constexpr std::pair<uint32_t, const char*> kWords[] = {
    {ERROR_FILE_NOT_FOUND, "no such file, "},
    {ERROR_PATH_NOT_FOUND, "no such folder, "},
    {ERROR_ACCESS_DENIED, "access denied, "},
    {ERROR_SHARING_VIOLATION, "another program has it open, "},
    {ERROR_DISK_FULL, "the disk is full, "},
    {ERROR_HANDLE_DISK_FULL, "the disk is full, "},
    {ERROR_INVALID_NAME, "not a file name, "}};

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

std::string ErrorText(uint32_t error) {
    std::string words;
    for (const auto& [known, text] : kWords) {
        if (known == error) words = text;
    }
    return " (" + words + "error " + std::to_string(error) + ")";
}

std::string ExceptionText() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "out of memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown error";
    }
}

}  // namespace vndiscover::host
