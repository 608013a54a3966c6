#include "platform/saved_file.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

#include "platform/this_process.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

// In a folder of its own, whose path is longer than systems take without a prefix.
class SavedFile : public testing::Test {
  protected:
    SavedFile() { CreateDirectoryW(folder_.c_str(), nullptr); }
    ~SavedFile() override {
        DeleteFileW(file_.c_str());
        RemoveDirectoryW(folder_.c_str());
    }
    const std::wstring folder_ =
        L"\\\\?\\" + Environment(L"TEMP") + L"\\" + std::wstring(240, L'd');
    const std::wstring file_ = folder_ + L"\\scan.json";
    const std::string path_ = ToUtf8(file_.substr(4));
    std::string problem_;
};

// Of the old file, or of what is left of a new one.
TEST_F(SavedFile, WaitsForAProgramThatReadsIt) {
    ASSERT_TRUE(ReplaceFileText(path_, "old", problem_)) << problem_;
    for (const std::wstring& held :
         {file_, file_ + L"." + std::to_wstring(GetCurrentProcessId()) + L".new"}) {
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
