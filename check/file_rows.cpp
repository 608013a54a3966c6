// Files and secrets, as the programs keep them. Everything is in a folder of its own and deleted
// afterwards.
#include "check/windows_headers.h"

#include <sddl.h>
#include <wincrypt.h>

#include <cstring>
#include <string>

#include "check/rows.h"

namespace check {
namespace {

constexpr int kReplaced = 200;

std::string Outcome(bool done, const char* word) {
    return done ? word : "error " + Number(GetLastError());
}

// A folder in the user's temporary one; removed with the files named here.
class Folder {
  public:
    Folder() {
        wchar_t path[MAX_PATH + 1] = {};
        GetTempPathW(MAX_PATH + 1, path);
        path_ = path + (L"vndiscover-check-" + std::to_wstring(GetCurrentProcessId()));
        CreateDirectoryW(path_.c_str(), nullptr);
    }
    ~Folder() {
        for (const wchar_t* name : {L"kept", L"new"}) DeleteFileW((*this / name).c_str());
        RemoveDirectoryW(path_.c_str());
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::wstring operator/(const wchar_t* name) const { return path_ + L"\\" + name; }

  private:
    std::wstring path_;
};

bool Write(const std::wstring& path) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const bool done = WriteFile(file, "text", 4, &written, nullptr) != 0;
    CloseHandle(file);
    return done;
}

// As the programs do it: at first there is no file to be replaced.
bool Move(const Folder& folder) {
    return MoveFileExW((folder / L"new").c_str(), (folder / L"kept").c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool Replace(const Folder& folder) {
    return ReplaceFileW((folder / L"kept").c_str(), (folder / L"new").c_str(), nullptr,
                        REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0;
}

// Gives everyone the file, and a service the right to read it, which no new file has.
void SetRights(const std::wstring& path) {
    PSECURITY_DESCRIPTOR rights = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;WD)(A;;FR;;;NS)",
                                                         SDDL_REVISION_1, &rights, nullptr);
    SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, rights);
    LocalFree(rights);
}

bool HasRights(const std::wstring& path) {
    alignas(8) BYTE rights[1024];
    DWORD size = 0;
    wchar_t* text = nullptr;
    if (!GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, rights, sizeof rights, &size) ||
        !ConvertSecurityDescriptorToStringSecurityDescriptorW(
            rights, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr)) {
        return false;
    }
    const bool has = std::wstring(text).find(L";;;NS)") != std::wstring::npos;
    LocalFree(text);
    return has;
}

void ReplaceRows(Report& report) {
    const Folder folder;
    int replaced = 0;
    std::string problem;
    for (int i = 0; i < kReplaced; ++i) {
        if (Write(folder / L"new") && (i == 0 ? Move(folder) : Replace(folder))) {
            ++replaced;
        } else if (problem.empty()) {
            problem = ", first error " + Number(GetLastError());
        }
    }
    report.Add("a file replaced 200 times at once", "200", Number(replaced) + problem);
    SetRights(folder / L"kept");
    const std::string outcome = Outcome(Write(folder / L"new") && Replace(folder), "kept");
    report.Add("the rights of a replaced file", "kept",
               outcome == "kept" && !HasRights(folder / L"kept") ? "lost" : outcome);
    const HANDLE reader = CreateFileW((folder / L"kept").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    Write(folder / L"new");
    report.Add("MoveFileExW over a file that another program reads", "error 5",
               Outcome(Move(folder), "replaced"));
    Write(folder / L"new");
    report.Add("ReplaceFileW of a file that another program reads", "error 32",
               Outcome(Replace(folder), "replaced"));
    CloseHandle(reader);
}

bool AllowsLongPaths() {
    DWORD value = 0, size = sizeof value;
    return RegGetValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\FileSystem",
                        L"LongPathsEnabled", RRF_RT_REG_DWORD, nullptr, &value,
                        &size) == ERROR_SUCCESS &&
           value == 1;
}

void LongPathRows(Report& report) {
    const Folder folder;
    const std::wstring prefix = L"\\\\?\\";
    const std::wstring deep = folder / std::wstring(150, L'd').c_str();
    const std::wstring file = deep + L"\\" + std::wstring(150, L'f');
    CreateDirectoryW((prefix + deep).c_str(), nullptr);
    report.Add("a file with a path of over 300 characters, after \\\\?\\", "written",
               Outcome(Write(prefix + file), "written"));
    const char* const plain = "the same without \\\\?\\, by the manifest";
    if (AllowsLongPaths()) {
        report.Add(plain, "written", Outcome(Write(file), "written"));
    } else {
        report.NotSeen(plain, "written", "LongPathsEnabled is not set in the registry");
    }
    DeleteFileW((prefix + file).c_str());
    RemoveDirectoryW((prefix + deep).c_str());
}

std::string Unsealed(DATA_BLOB sealed, const char* entropyText) {
    DATA_BLOB entropy = {DWORD(std::strlen(entropyText)),
                         reinterpret_cast<BYTE*>(const_cast<char*>(entropyText))};
    DATA_BLOB plain = {};
    if (!CryptUnprotectData(&sealed, nullptr, &entropy, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                            &plain)) {
        return "error " + Number(GetLastError());
    }
    std::string text(reinterpret_cast<const char*>(plain.pbData), plain.cbData);
    LocalFree(plain.pbData);
    return text;
}

void SecretRows(Report& report) {
    BYTE text[] = {'t', 'e', 'x', 't'}, word[] = {'o', 'n', 'e'};
    DATA_BLOB plain = {sizeof text, text}, entropy = {sizeof word, word}, sealed = {};
    if (!CryptProtectData(&plain, nullptr, &entropy, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          &sealed)) {
        report.Add("a text sealed for the account", "text", "error " + Number(GetLastError()));
        return;
    }
    report.Add("a text sealed for the account", "text", Unsealed(sealed, "one"));
    report.Add("the same with another entropy", "error 13", Unsealed(sealed, "other"));
    LocalFree(sealed.pbData);
}

}  // namespace

void FileRows(Report& report) {
    report.Section("Files and secrets");
    ReplaceRows(report);
    LongPathRows(report);
    SecretRows(report);
}

}  // namespace check
