#include "support/system_library.h"

#include <cwchar>

namespace vndiscover {
namespace {

constexpr size_t kFileNameChars = 32;

HMODULE LoadFromSystem(const wchar_t* fileName) {
    wchar_t path[MAX_PATH + kFileNameChars] = {};
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH || wcslen(fileName) + 2 > kFileNameChars) return nullptr;
    path[length] = L'\\';
    wcscpy(path + length + 1, fileName);
    // The library's own imports are then searched for beside it, not in the program's folder.
    return LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

}  // namespace

SystemLibrary::SystemLibrary(const wchar_t* fileName) noexcept
    : module_(LoadFromSystem(fileName)) {}

}  // namespace vndiscover
