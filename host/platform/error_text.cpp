#include "platform/error_text.h"

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

}  // namespace

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
