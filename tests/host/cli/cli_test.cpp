// What the commands accept as protocols; scans that they save.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "cli/saved_scans.h"
#include "device/security.h"
#include "model/scan/scan_file.h"
#include "platform/saved_file.h"
#include "values/utc_time.h"
#include "values/value_text.h"

namespace {

PHANDLER_ROUTINE consoleHandler = nullptr;

BOOL WINAPI KeepHandler(PHANDLER_ROUTINE handler, BOOL) {
    consoleHandler = handler;
    return TRUE;
}

}  // namespace

// Replaces the function of the import library.
extern "C" void* const __imp_SetConsoleCtrlHandler = reinterpret_cast<void*>(&KeepHandler);

namespace vndiscover::host {
namespace {

// The module would take any other text for "none" and send unprotected requests.
TEST(SecurityLabels, AcceptCommonSpellingsOnly) {
    using Label = std::optional<std::wstring>;
    const std::tuple<const std::vector<Protocol>&, Label, std::vector<const char*>> rows[] = {
        {kAuth, L"MD5", {"MD5", "md5"}},
        {kAuth, L"SHA1", {"SHA", "sha-1", "SHA1", "HMAC-SHA-1"}},
        {kAuth, L"SHA-2(224)", {"SHA-224"}},
        {kAuth, L"SHA-2(256)", {"sha2-256", "SHA256"}},
        {kAuth, L"SHA-2(384)", {"SHA-2(384)"}},
        {kAuth, L"SHA-2(512)", {"sha_512"}},
        {kAuth, {}, {"", "none", "SHA3", "SHA-2", "MD4", "sha25"}},
        {kPriv, L"AES", {"aes", "AES-128", "aes128"}},
        {kPriv, L"DES", {"DES", "des", "DES-CBC"}},
        {kPriv, {}, {"", "AES-192", "AES256", "3DES", "SHA1"}}};
    for (const auto& [protocols, label, texts] : rows) {
        for (const char* text : texts) EXPECT_EQ(label, LabelOf(protocols, text)) << text;
    }
}

// Keeps the scan of a file in the system's folder for temporary files.
class ScanSaverTest : public testing::Test {
  protected:
    void TearDown() override {
        for (const char* suffix : {"", ".2"}) std::remove((path_ + suffix).c_str());
    }
    void Save(size_t sweeps) {
        Scan scan;
        scan.sweeps.resize(sweeps, {SweepKind::kWsd, AnswerForm::kReply, false, {}, UtcNow()});
        std::string problem;
        ASSERT_TRUE(ReplaceFileText(path_, *WriteScan(scan, problem), problem)) << problem;
    }
    size_t Sweeps(const char* suffix = "") { return LoadScan(path_ + suffix, "").sweeps.size(); }

    std::string path_ = std::string(std::getenv("TEMP")) + "\\scan_keeper_test.json";
};

TEST_F(ScanSaverTest, AppendsToWhatAnotherRunHasAddedMeanwhile) {
    Save(1);
    ScanSaver saver({path_, true});
    Save(2);
    saver.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    saver.Add("10.77.1.20", "hello");
    saver.Save();
    const Scan scan = LoadScan(path_, "");
    EXPECT_EQ(3U, scan.sweeps.size());
    ASSERT_EQ(1U, scan.answers.size());
    EXPECT_EQ(2U, scan.answers[0].sweep);
}

TEST_F(ScanSaverTest, SavesToAnotherFileWhatAFullOneCannotTake) {
    Save(50000);
    ScanSaver saver({path_, true});
    saver.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    EXPECT_THROW(saver.Save(), std::runtime_error);
    EXPECT_EQ(50000U, Sweeps());
    EXPECT_EQ(1U, Sweeps(".2"));
}

TEST_F(ScanSaverTest, KeepsAScanWithDevicesAndWhatIsNoScan) {
    for (const bool hasDevice : {true, false}) {
        ScanSaver saver({path_, false});
        saver.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
        if (hasDevice) {
            saver.Add("10.77.1.20", "hello");
            saver.Save();
        } else {
            EXPECT_THROW(saver.Save(), std::runtime_error);
        }
    }
    EXPECT_EQ(1U, LoadScan(path_, "").answers.size());
    std::string problem;
    ASSERT_TRUE(ReplaceFileText(path_, "a letter", problem));
    EXPECT_THROW(ScanSaver({path_, false}), CLI::ValidationError);
    EXPECT_EQ("a letter", ReadFileText(path_, 100, problem));
    ASSERT_TRUE(ReplaceFileText(path_, "", problem));
    EXPECT_NO_THROW(ScanSaver({path_, false}));
}

TEST_F(ScanSaverTest, AFloodTakesHalfOfTheRoomAndIsTold) {
    ScanSaver saver({path_, false, 300000});
    saver.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    for (int i = 0; i < 3000; ++i) saver.Add("10.77.1.20", "");
    for (int i = 0; i < 300; ++i) saver.Add("10.77.1.21", "");
    std::string problem;
    try {
        saver.Save();
    } catch (const std::runtime_error& error) {
        problem = error.what();
    }
    EXPECT_NE(std::string::npos, problem.find("lacks 1873 answers")) << problem;
    EXPECT_EQ(1427U, LoadScan(path_, "").answers.size());
}

// Does not return, and leaves the console closing: the last test that may watch a sweep.
void CloseConsole() { consoleHandler(CTRL_CLOSE_EVENT); }

void LogOff() {
    HWND window = nullptr;
    for (int wait = 0; wait < 400 && !window; ++wait, Sleep(10))
        window = FindWindowW(L"VnDiscoverSessionEnd", nullptr);
    EXPECT_TRUE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
}

// While a request runs for longer than the 5 s that the system leaves. Once, when it has ended.
TEST_F(ScanSaverTest, ClosingConsoleAndLoggingOffSaveWhatIsKnown) {
    const ConsoleSession session;
    for (void (*end)() : {LogOff, CloseConsole}) {
        TearDown();
        ScanSaver saver({path_, true});
        saver.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
        saver.Add("10.77.1.20", "hello");
        std::thread(end).detach();
        std::string problem;
        bool isBroken = false;  // or still held by the other thread
        for (int wait = 0; wait < 400 && !LoadScan(path_, isBroken, problem); ++wait) Sleep(10);
        EXPECT_EQ(1U, LoadScan(path_, "").answers.size());
        saver.Add("10.77.1.21", "late");
        saver.Save();
        EXPECT_EQ(1U, Sweeps());
    }
}

}  // namespace
}  // namespace vndiscover::host
