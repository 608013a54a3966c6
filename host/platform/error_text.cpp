#include "platform/error_text.h"

#include <windows.h>

#include <exception>
#include <new>

namespace vndiscover::host {
namespace {

const char* WordsFor(uint32_t error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
            return "no such file, ";
        case ERROR_PATH_NOT_FOUND:
            return "no such folder, ";
        case ERROR_ACCESS_DENIED:
            return "access denied, ";
        case ERROR_SHARING_VIOLATION:
            return "another program has it open, ";
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return "the disk is full, ";
        case ERROR_INVALID_NAME:
            return "not a file name, ";
        default:
            return "";
    }
}

}  // namespace

std::string ErrorText(uint32_t error) {
    return std::string(" (") + WordsFor(error) + "error " + std::to_string(error) + ")";
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
