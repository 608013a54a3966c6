#include "platform/saved_file.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "model/scan/scan_file.h"
#include "platform/error_text.h"
#include "platform/owned.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kChunk = size_t{1} << 20;

OwnedFile Open(const std::wstring& path, DWORD access, DWORD disposition) {
    return OwnedFile(CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::string LastErrorText() { return ErrorText(GetLastError()); }

// In the same folder, and so on the same disk. Each process has its own.
std::wstring TemporaryPath(const std::string& path) {
    return ToWide(path + "." + std::to_string(GetCurrentProcessId()) + ".new");
}

std::wstring FullPath(const std::string& path) {
    const std::wstring wide = ToWide(path);
    const DWORD size = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(wide.c_str(), size, full.data(), nullptr));
    return full;
}

bool WriteWhole(const std::wstring& path, const std::string& text) {
    const OwnedFile file = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
    if (!file) return false;
    for (size_t done = 0; done < text.size();) {
        DWORD written = 0;
        const auto part = static_cast<DWORD>(std::min(kChunk, text.size() - done));
        if (!WriteFile(file.Get(), text.data() + done, part, &written, nullptr) || written == 0)
            return false;
        done += written;
    }
    return FlushFileBuffers(file.Get()) != 0;  // before it replaces the old file
}

}  // namespace

std::optional<std::string> ReadFileText(const std::string& path, size_t maxSize,
                                        std::string& problem) {
    const OwnedFile file = Open(ToWide(path), GENERIC_READ, OPEN_EXISTING);
    std::string text;
    for (size_t done = 0; file;) {
        text.resize(done + kChunk);
        DWORD count = 0;
        if (!ReadFile(file.Get(), text.data() + done, kChunk, &count, nullptr)) break;
        text.resize(done += count);
        if (count == 0) return text;
        if (done <= maxSize) continue;
        problem = "is too large: over " + std::to_string(maxSize >> 20) + " MB";
        return std::nullopt;
    }
    problem = "cannot be read" + LastErrorText();
    return std::nullopt;
}

std::optional<Scan> LoadScan(const std::string& path, bool& isBroken, std::string& problem) {
    const auto text = ReadFileText(path, kMaxScanSize, problem);
    isBroken = text.has_value();
    return text ? ReadScan(*text, problem) : std::nullopt;
}

bool FileExists(const std::string& path) {
    if (GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    const DWORD error = GetLastError();
    return error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND;
}

bool IsSamePath(const std::string& one, const std::string& other) {
    const std::wstring first = FullPath(one), second = FullPath(other);
    return CompareStringOrdinal(first.c_str(), static_cast<int>(first.size()), second.c_str(),
                                static_cast<int>(second.size()), TRUE) == CSTR_EQUAL;
}

bool CanReplaceFile(const std::string& path, std::string& problem) {
    const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
        problem = attributes & FILE_ATTRIBUTE_DIRECTORY ? "is a directory" : "is read-only";
        return false;
    }
    const std::wstring temporary = TemporaryPath(path);
    const bool canWrite = WriteWhole(temporary, "");
    if (!canWrite) problem = "cannot be written" + LastErrorText();
    DeleteFileW(temporary.c_str());
    return canWrite;
}

bool ReplaceFileText(const std::string& path, const std::string& text, std::string& problem) {
    const std::wstring temporary = TemporaryPath(path);
    if (!WriteWhole(temporary, text)) {
        problem = "cannot be written" + LastErrorText();
        DeleteFileW(temporary.c_str());
        return false;
    }
    if (MoveFileExW(temporary.c_str(), ToWide(path).c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return true;
    // The new file is complete, so it is kept: another program may have the old one open.
    problem = "cannot be replaced" + LastErrorText() + "; the new one is " + ToUtf8(temporary);
    return false;
}

}  // namespace vndiscover::host
