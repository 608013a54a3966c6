#include "platform/saved_file.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

// A folder of its own, whose path is longer than systems take without a prefix.
class SavedFile : public testing::Test {
  protected:
    SavedFile() {
        wchar_t temporary[MAX_PATH + 1] = {};
        GetTempPathW(MAX_PATH + 1, temporary);
        folders_ = {temporary + (L"vn-saved-" + std::to_wstring(GetCurrentProcessId()))};
        for (int deep = 0; deep < 3; ++deep)
            folders_.push_back(folders_.back() + L"\\" + std::wstring(90, L'd'));
        for (const std::wstring& folder : folders_)
            CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr);
        path_ = ToUtf8(folders_.back() + L"\\scan.json");
    }
    ~SavedFile() override {
        DeleteFileW(Wide().c_str());
        for (; !folders_.empty(); folders_.pop_back())
            RemoveDirectoryW((L"\\\\?\\" + folders_.back()).c_str());
    }
    std::wstring Wide() const { return L"\\\\?\\" + ToWide(path_); }

    std::vector<std::wstring> folders_;
    std::string path_, problem_;
};

// Of the old file, or of what is left of a new one.
TEST_F(SavedFile, WaitsForAProgramThatReadsIt) {
    ASSERT_TRUE(ReplaceFileText(path_, "old", problem_)) << problem_;
    for (const std::wstring& held :
         {Wide(), Wide() + L"." + std::to_wstring(GetCurrentProcessId()) + L".new"}) {
        const HANDLE reader = CreateFileW(held.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                          OPEN_ALWAYS, 0, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, reader);
        std::thread end([reader] {
            Sleep(200);
            CloseHandle(reader);
        });
        EXPECT_TRUE(ReplaceFileText(path_, "new", problem_)) << problem_;
        end.join();
        EXPECT_EQ("new", ReadFileText(path_, 100, problem_)) << problem_;
    }
}

}  // namespace
}  // namespace vndiscover::host
