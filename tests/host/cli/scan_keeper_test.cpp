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

TEST_F(ScanKeeperTest, AFloodTakesHalfOfTheRoomAndIsTold) {
    ScanKeeper keeper({path_, false, 300000});
    keeper.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    for (int i = 0; i < 3000; ++i) keeper.Add("10.77.1.20", "");
    for (int i = 0; i < 300; ++i) keeper.Add("10.77.1.21", "");
    std::string problem;
    try {
        keeper.Save();
    } catch (const std::runtime_error& error) {
        problem = error.what();
    }
    EXPECT_NE(std::string::npos, problem.find("lacks 1873 answers")) << problem;
    EXPECT_EQ(1427U, LoadScan(path_, "").answers.size());
}

}  // namespace
}  // namespace vndiscover::host
