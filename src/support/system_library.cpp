#include "support/system_library.h"

#include <string>

namespace vndiscover {
namespace {

std::wstring SystemDirectory() {
    wchar_t directory[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
    return length < MAX_PATH ? std::wstring(directory, length) : std::wstring();
}

HMODULE LoadFromSystem(const wchar_t* fileName) {
    const std::wstring directory = SystemDirectory();
    if (directory.empty()) return nullptr;
    return LoadLibraryW((directory + L'\\' + fileName).c_str());
}

}  // namespace

SystemLibrary::SystemLibrary(const wchar_t* fileName) : module_(LoadFromSystem(fileName)) {}

}  // namespace vndiscover
