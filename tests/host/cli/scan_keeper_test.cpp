#include "cli/scan_keeper.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "model/scan_file.h"
#include "platform/saved_file.h"

namespace vndiscover::host {
namespace {

// Keeps the scan of a file in the system's folder for temporary files.
class ScanKeeperTest : public testing::Test {
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

TEST_F(ScanKeeperTest, AppendsToWhatAnotherRunHasAddedMeanwhile) {
    Save(1);
    ScanKeeper keeper({path_, true});
    Save(2);
    keeper.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    keeper.Add("10.77.1.20", "hello");
    keeper.Save();
    const Scan scan = LoadScan(path_, "");
    EXPECT_EQ(3U, scan.sweeps.size());
    ASSERT_EQ(1U, scan.answers.size());
    EXPECT_EQ(2U, scan.answers[0].sweep);
}

TEST_F(ScanKeeperTest, SavesToAnotherFileWhatAFullOneCannotTake) {
    Save(50000);
    ScanKeeper keeper({path_, true});
    keeper.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    EXPECT_THROW(keeper.Save(), std::runtime_error);
    EXPECT_EQ(50000U, Sweeps());
    EXPECT_EQ(1U, Sweeps(".2"));
}

}  // namespace
}  // namespace vndiscover::host
