#include "model/walk_step.h"

#include <gtest/gtest.h>

#include "model/refusal.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

TEST(Walk, EndsWithTheSubtreeAndNeverLoops) {
    const Oid root = {1, 3, 6, 1, 2, 1};
    const Oid asked = {1, 3, 6, 1, 2, 1, 1, 1, 0};
    const Oid next = {1, 3, 6, 1, 2, 1, 1, 2, 0};
    const std::tuple<WalkStep, Oid, uint32_t, bool> rows[] = {
        {WalkStep::kVariable, next, kInteger, false},
        {WalkStep::kVariable, next, kNull, false},
        {WalkStep::kEnd, Oid{1, 3, 6, 1, 4, 1}, kInteger, false},
        {WalkStep::kEnd, asked, kNull, false},
        {WalkStep::kEnd, asked, kEndOfMibView, true},
        {WalkStep::kNotIncreasing, asked, kInteger, false},
        {WalkStep::kNotIncreasing, Oid{1, 3, 6, 1, 2, 1, 1, 1}, kInteger, false},
        {WalkStep::kNotIncreasing, Oid{1, 3, 6}, kNull, false},
        {WalkStep::kLastReachable, Oid{1, 3, 6, 1, 2, 1, 6, 16384}, kInteger, false}};
    for (const auto& [step, answered, type, isV3] : rows) {
        EXPECT_EQ(step, JudgeAnswer(root, asked, answered, type, isV3))
            << OidToText(answered) << " type " << type;
    }
}

// The counters of RFC 3412 to 3414; .11.2.1 and .12.1 come from agents that use contexts.
TEST(Refusals, AreReportsAndNotTheCountersThemselves) {
    const Oid asked = {1, 3, 6, 1, 2, 1, 1, 1, 0};
    const Oid wrongDigest = {1, 3, 6, 1, 6, 3, 15, 1, 1, 5, 0};
    const std::pair<Oid, const char*> rows[] = {
        {wrongDigest, "wrong authentication password"},
        {{1, 3, 6, 1, 6, 3, 11, 2, 1, 3, 0}, "context engine ID"},
        {{1, 3, 6, 1, 6, 3, 12, 1, 5, 0}, "default context"}};
    for (const auto& [counter, words] : rows) {
        const char* reason = RefusalReason(asked, counter, kCounter32);
        ASSERT_TRUE(reason) << OidToText(counter);
        EXPECT_NE(std::string::npos, std::string(reason).find(words)) << reason;
    }
    EXPECT_FALSE(RefusalReason(asked, wrongDigest, kInteger));
    EXPECT_FALSE(RefusalReason(asked, {1, 3, 6, 1, 6, 3, 15, 1, 1, 7, 0}, kCounter32));
    EXPECT_FALSE(RefusalReason({1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0}, wrongDigest, kCounter32));
}

}  // namespace
}  // namespace vndiscover::host
