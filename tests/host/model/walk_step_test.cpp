#include "model/walk_step.h"

#include <gtest/gtest.h>

#include "values/value_text.h"

namespace vndiscover::host {
namespace {

TEST(Walk, EndsWhereItMustAndNeverLoops) {
    const Oid root = {1, 3, 6, 1, 2, 1};
    const Oid asked = {1, 3, 6, 1, 2, 1, 1, 1, 0};
    const Oid next = {1, 3, 6, 1, 2, 1, 1, 2, 0};
    const Oid wrongDigest = {1, 3, 6, 1, 6, 3, 15, 1, 1, 5, 0};  // usmStatsWrongDigests of RFC 3414
    const std::tuple<WalkStep, std::optional<Oid>, uint32_t, bool> rows[] = {
        {WalkStep::kVariable, next, kInteger, false},
        {WalkStep::kVariable, next, kNull, false},
        {WalkStep::kEnd, Oid{1, 3, 6, 1, 4, 1}, kInteger, false},
        {WalkStep::kEnd, asked, kNull, false},
        {WalkStep::kEnd, asked, kEndOfMibView, true},
        {WalkStep::kNotIncreasing, asked, kInteger, false},
        {WalkStep::kNotIncreasing, Oid{1, 3, 6, 1, 2, 1, 1, 1}, kInteger, false},
        {WalkStep::kNotIncreasing, Oid{1, 3, 6}, kNull, false},
        {WalkStep::kLastReachable, Oid{1, 3, 6, 1, 2, 1, 6, 16384}, kInteger, false},
        {WalkStep::kUnreadable, std::nullopt, kInteger, false},
        {WalkStep::kRefused, wrongDigest, kCounter32, true},
        {WalkStep::kEnd, wrongDigest, kCounter32, false}};
    for (const auto& [step, answered, type, isV3] : rows) {
        EXPECT_EQ(step, JudgeAnswer(root, asked, answered, type, isV3))
            << (answered ? OidToText(*answered) : "") << " type " << type;
    }
    EXPECT_EQ(WalkStep::kVariable, JudgeAnswer({1, 3, 6}, {1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0},
                                               wrongDigest, kCounter32, true));
}

}  // namespace
}  // namespace vndiscover::host
