#include "platform/saved_file.h"

#include <windows.h>

#include <cstring>

#include "model/scan/scan_file.h"
#include "platform/console.h"
#include "platform/owned.h"
#include "platform/wide_text.h"
#include "values/ranges.h"

namespace vndiscover::host {
namespace {

constexpr size_t kChunk = size_t{1} << 20;

OwnedFile Open(const std::wstring& path, DWORD access, DWORD disposition) {
    return OwnedFile(CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::string LastErrorText() { return ErrorText(GetLastError()); }

std::wstring FullPath(const std::wstring& path) {
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    return full;
}

// In the same folder, and so on the same disk. Each process has its own.
std::wstring TemporaryPath(const std::string& path) {
    return SystemPath(path) + L"." + std::to_wstring(GetCurrentProcessId()) + L".new";
}

// ReplaceFileW keeps the old file's rights and attributes. MoveFileExW would drop them, so it is
// used only if ReplaceFileW says that there is no old file, or that the disk cannot replace one.
bool MoveOver(const std::wstring& path, const std::wstring& temporary) {
    if (ReplaceFileW(path.c_str(), temporary.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                     nullptr, nullptr))
        return true;
    constexpr DWORD kCannotReplace[] = {ERROR_FILE_NOT_FOUND,
                                        ERROR_UNABLE_TO_MOVE_REPLACEMENT,
                                        ERROR_UNABLE_TO_MOVE_REPLACEMENT_2,
                                        ERROR_INVALID_FUNCTION,
                                        ERROR_NOT_SUPPORTED,
                                        ERROR_INVALID_PARAMETER,
                                        ERROR_DIRECTORY};  // Wine, of a path of Unix
    return Contains(kCannotReplace, GetLastError()) &&
           MoveFileExW(temporary.c_str(), path.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

// Tries again and again, since virus scanners and indexers open a new or changed file for a moment.
template <class Attempt>
bool Retry(Attempt attempt) {
    constexpr int kTries = 20;
    constexpr DWORD kBetweenMs = 50;
    constexpr DWORD kMayPass[] = {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION,
                                  ERROR_USER_MAPPED_FILE, ERROR_UNABLE_TO_REMOVE_REPLACED};
    for (int left = kTries; !attempt(); Sleep(kBetweenMs)) {
        if (!Contains(kMayPass, GetLastError()) || --left == 0) return false;
    }
    return true;
}

bool WriteWhole(const std::wstring& path, const std::string& text) {
    const OwnedFile file = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
    return file && WriteText(file.Get(), text) &&
           FlushFileBuffers(file.Get()) != 0;  // before it replaces the old file
}

std::string FromUtf16(std::string text) {
    const bool isBig = text.compare(0, 2, "\xFE\xFF") == 0;
    if (!isBig && text.compare(0, 2, "\xFF\xFE") != 0) return text;
    std::wstring wide(text.size() / 2 - 1, L'\0');
    std::memcpy(wide.data(), text.data() + 2, wide.size() * sizeof wide[0]);
    for (wchar_t& letter : wide) letter = isBig ? _byteswap_ushort(letter) : letter;
    return ToUtf8(wide);
}

}  // namespace

std::wstring SystemPath(const std::string& path) {
    constexpr size_t kShort = MAX_PATH - 40;  // less what TemporaryPath adds
    std::wstring wide = ToWide(path);
    std::wstring full = FullPath(wide);
    if (full.size() <= kShort || full.rfind(L"\\\\?\\", 0) == 0) return wide;
    return full.rfind(L"\\\\", 0) == 0 ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

std::optional<std::string> ReadFileText(const std::string& path, size_t maxSize,
                                        std::string& problem) {
    const OwnedFile file = Open(SystemPath(path), GENERIC_READ, OPEN_EXISTING);
    std::string text;
    for (size_t done = 0; file;) {
        text.resize(done + kChunk);
        DWORD count = 0;
        if (!ReadFile(file.Get(), text.data() + done, kChunk, &count, nullptr)) break;
        text.resize(done += count);
        if (count == 0) return FromUtf16(std::move(text));
        if (done <= maxSize) continue;
        const size_t megabytes = maxSize >> 20;
        problem = "is too large: over " + (megabytes ? std::to_string(megabytes) + " MB"
                                                     : std::to_string(maxSize >> 10) + " KB");
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
    if (GetFileAttributesW(SystemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    const DWORD error = GetLastError();
    return error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND;
}

bool IsSamePath(const std::string& one, const std::string& other) {
    const std::wstring first = FullPath(ToWide(one)), second = FullPath(ToWide(other));
    return CompareStringOrdinal(first.c_str(), static_cast<int>(first.size()), second.c_str(),
                                static_cast<int>(second.size()), TRUE) == CSTR_EQUAL;
}

bool CanReplaceFile(const std::string& path, std::string& problem) {
    const DWORD attributes = GetFileAttributesW(SystemPath(path).c_str());
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
    if (!Retry([&] { return WriteWhole(temporary, text); })) {
        problem = "cannot be written" + LastErrorText();
        DeleteFileW(temporary.c_str());
        return false;
    }
    const std::wstring replaced = SystemPath(path);
    if (Retry([&] { return MoveOver(replaced, temporary); })) return true;
    // The new file is complete, so it is kept: another program may have the old one open.
    problem = "cannot be replaced" + LastErrorText() + "; the new one is " + ToUtf8(temporary);
    return false;
}

}  // namespace vndiscover::host
