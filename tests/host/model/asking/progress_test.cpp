#include "model/asking/progress.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace vndiscover::host {
namespace {

using Kind = Progress::Kind;

class ProgressTest : public testing::Test {
  protected:
    // The kind, and its numbers: seconds, count, and of a reading done, total.
    std::pair<Kind, std::vector<int64_t>> Shown(const Progress::Work& work = {}) const {
        const Progress::Status status = progress.Now(work);
        return {status.kind,
                {status.seconds, static_cast<int64_t>(status.count),
                 static_cast<int64_t>(status.read.done), static_cast<int64_t>(status.read.total)}};
    }
    using Expected = std::pair<Kind, std::vector<int64_t>>;
    int64_t nowMs = 5000;
    Progress progress{[this] { return nowMs; }};
};

TEST_F(ProgressTest, SearchEndsWithItsLastSweep) {
    EXPECT_EQ(Kind::kReady, Shown().first);
    progress.SetNetworks(3);
    progress.BeginSearch(2);
    progress.CountAnswer();
    nowMs += 2500;
    EXPECT_EQ((Expected{Kind::kSearching, {2, 3, 0, 0}}), Shown());
    EXPECT_FALSE(progress.EndSweep());
    EXPECT_TRUE(progress.IsSearching());
    EXPECT_TRUE(progress.EndSweep());
    EXPECT_FALSE(progress.EndSweep());  // of an earlier search
    nowMs += 60000;
    EXPECT_EQ((Expected{Kind::kDone, {2, 0, 0, 0}}), Shown());
    EXPECT_EQ(1u, progress.Answers());
    progress.BeginSearch(1);
    progress.Stop();
    EXPECT_TRUE(progress.IsStopping());
    progress.EndSweep();
    progress.SetIdle();
    EXPECT_EQ((Expected{Kind::kStopped, {0, 0, 0, 0}}), Shown());
    EXPECT_FALSE(progress.IsStopping());
    progress.ForgetSearch();
    EXPECT_EQ(Kind::kReady, Shown().first);
}

TEST_F(ProgressTest, NoteReturnsWhenNothingIsInProgress) {
    progress.BeginWalk("10.0.0.1");
    progress.SetNote(L"saved");
    nowMs += Progress::kNoteMs - 1;
    EXPECT_EQ(Kind::kNote, Shown().first);
    ++nowMs;
    progress.CountValue();
    EXPECT_EQ((Expected{Kind::kWalking, {4, 1, 0, 0}}), Shown());
    progress.EndWalk();
    EXPECT_EQ(Kind::kNote, Shown().first);
    progress.ClearNote();
    EXPECT_EQ(Kind::kReady, Shown().first);
    for (const bool isReading : {false, true}) {  // what is over by then
        progress.SetNote(L"nothing could be sent");
        nowMs += Progress::kNoteMs;
        isReading ? progress.EndReadingAll({1, 0, 1}) : progress.BeginSearch(1);
        progress.EndSweep();
        EXPECT_EQ(isReading ? Kind::kRead : Kind::kDone, Shown().first);
    }
}

// A device is asked between two requests of a walk.
TEST_F(ProgressTest, AskingIsShownBeforeAWalk) {
    progress.BeginWalk("10.0.0.1");
    progress.BeginAsking("10.0.0.2");
    Progress::Work work;
    work.waiting = 7;
    EXPECT_EQ((Expected{Kind::kAsking, {0, 7, 0, 0}}), Shown(work));
    EXPECT_EQ("10.0.0.2", progress.Now({}).address);
    progress.BeginAsking("10.0.0.3");  // between two requests
    progress.EndAsking("10.0.0.3");
    EXPECT_EQ("10.0.0.2", progress.Now({}).address);
    progress.EndAsking("10.0.0.2");
    EXPECT_EQ("10.0.0.1", progress.Now({}).address);
}

TEST_F(ProgressTest, ReadingNamesWhomItWaitsFor) {
    progress.BeginReadingAll();
    Progress::Work work = {0, {29, 0, 403}, "10.80.9.12", Progress::kWaitMs - 1};
    EXPECT_EQ((Expected{Kind::kReadingAll, {0, 0, 29, 403}}), Shown(work));
    EXPECT_EQ("", progress.Now(work).address);
    work.waitMs = 9000;
    EXPECT_EQ("10.80.9.12", progress.Now(work).address);
    EXPECT_EQ(9, progress.Now(work).waitSeconds);
    progress.Stop();  // the request may take 12 s
    EXPECT_EQ((Expected{Kind::kStopping, {3, 0, 0, 0}}), Shown(work));
    nowMs += 60000;
    EXPECT_EQ((Expected{Kind::kStopping, {1, 0, 0, 0}}), Shown({}));
    progress.BeginWalk("10.80.9.12");  // which was asked for since
    EXPECT_EQ((Expected{Kind::kWalking, {0, 0, 0, 0}}), Shown({}));
    progress.EndWalk();
    progress.BeginAsking("10.80.9.13");  // chosen since
    EXPECT_EQ(Kind::kAsking, progress.Now({}).kind);
    Progress::Work other;
    other.address = "10.80.9.12";
    other.waitMs = 9000;
    EXPECT_EQ(0, progress.Now(other).waitSeconds) << "another one keeps waiting";
    other.read.total = 403;
    EXPECT_EQ(Kind::kReadingAll, progress.Now(other).kind);
    progress.EndAsking("10.80.9.13");
    progress.EndReadingAll({29, 2, 403, true});
    progress.SetIdle();
    EXPECT_EQ((Expected{Kind::kRead, {60, 0, 29, 403}}), Shown());
    EXPECT_EQ(2u, progress.Now({}).read.unread);
    EXPECT_TRUE(progress.Now({}).read.isOfStates) << "what was read until the stop";
}

}  // namespace
}  // namespace vndiscover::host
