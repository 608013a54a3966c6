// Walks of a subtree, the answers that they consist of, and why a device refuses to be asked.
#include "model/asking/walk.h"

#include <gmock/gmock.h>

#include "host/model/scripted_device.h"
#include "model/asking/answer.h"

namespace vndiscover::host {
namespace {

const Oid kSystem = {1, 3, 6, 1, 2, 1, 1};

class WalkTest : public testing::Test {
  protected:
    WalkTest() { device_.Add("sysDescr.0 s printer; sysName.0 s hall; ifNumber.0 i 2"); }
    WalkEnd Walk(const Asker& asker, const Oid& root) {
        seen_.clear();
        return WalkSubtree(asker, root, [&](const Answer& answer) {
            seen_ += NameText(answer.oid) + " ";
            return seen_.size() < 1000;
        });
    }
    ScriptedDevice device_;
    std::string seen_;
};

TEST_F(WalkTest, EndsWithTheSubtree) {
    const WalkEnd end = Walk(device_.MakeAsker(), kSystem);
    EXPECT_EQ("sysDescr.0 sysName.0 ", seen_);
    EXPECT_EQ(WalkStep::kEnd, end.step);
    EXPECT_EQ(2u, end.variables);
    // An OID in a request has two numbers; the subtree is still all of .1.
    EXPECT_EQ(WalkStep::kEnd, Walk(device_.MakeAsker(), {1}).step);
    EXPECT_EQ("sysDescr.0 sysName.0 ifNumber.0 ", seen_);
}

TEST_F(WalkTest, SaysWhyItEndedEarly) {
    device_.failure = [](const Oid& asked) {
        return asked == kSystem ? Status::kAnswered : Status::kNoAnswer;
    };
    WalkEnd end = Walk(device_.MakeAsker(), kSystem);
    EXPECT_EQ("sysDescr.0 ", seen_);
    EXPECT_EQ(Status::kNoAnswer, end.last.status);
    EXPECT_EQ(WalkStep::kVariable, end.step);
    EXPECT_FALSE(end.isStopped);

    Asker asker = device_.MakeAsker();
    asker.mayGoOn = [&] { return seen_.empty(); };
    end = Walk(asker, kSystem);
    EXPECT_EQ("sysDescr.0 ", seen_);
    EXPECT_TRUE(end.isStopped);

    device_.failure = nullptr;
    device_.Integer(".1.3.6.1.2.1.1.9.20000", 1);
    end = Walk(device_.MakeAsker(), kSystem);
    EXPECT_EQ(WalkStep::kLastReachable, end.step);
    EXPECT_EQ(3u, end.variables);
    EXPECT_EQ(20000u, end.at.back());

    device_.requests = 0;
    end = WalkSubtree(device_.MakeAsker(), kSystem, [](const Answer&) { return false; });
    EXPECT_TRUE(end.isStopped);
    EXPECT_EQ(1u, end.variables);
    EXPECT_EQ(1u, device_.requests);
}

// Counts the variables that are seen, and those that are passed.
class WalkPast : public testing::Test {
  protected:
    WalkEnd Walk() {
        return WalkSubtree(device_.MakeAsker(), kMib2, [](const Answer&) { return true; });
    }
    using Counts = std::pair<size_t, size_t>;
    static Counts CountsOf(const WalkEnd& end) { return {end.variables, end.skipped}; }

    const Oid kMib2 = {1, 3, 6, 1, 2, 1};
    ScriptedDevice device_;
};

// One, or two in a row, of every kind of place in the tables.
TEST_F(WalkPast, LosesOnlyWhatCannotBeRead) {
    ScriptedDevice whole;
    whole.Texts({"sysDescr.0", "sysObjectID.0", "sysUpTime.0", "sysName.0", "ifNumber.0",
                 "hrDeviceDescr.1", ".1.3.6.1.2.1.99.1.0"});
    whole.Texts({"ifIndex", "ifDescr", "ifType", "ifMtu", "prtAlertSeverityLevel", "prtAlertTime"},
                {".1", ".2", ".5"});
    std::vector<Oid> all;
    for (const auto& variable : whole.variables) all.push_back(variable.first);
    size_t exact = 0;  // times in which one is known to be all
    // Of a table that has not been seen, the first row is guessed, but no second one.
    const auto isFirstColumn = [](const Oid& oid) {
        return IsWithin(oid, OidOf("ifIndex")) || IsWithin(oid, OidOf("prtAlertSeverityLevel"));
    };
    for (size_t first = 0; first < all.size(); ++first) {
        for (size_t count = 1; count <= 2 && first + count <= all.size(); ++count) {
            if (count == 2 && isFirstColumn(all[first + 1])) continue;
            device_ = whole;
            for (size_t i = first; i < first + count; ++i)
                device_.withheld[all[i]] = Status::kUnreadable;
            size_t seen = 0, skipped = 0;
            const WalkEnd end = WalkSubtree(
                device_.MakeAsker(), kMib2, [&](const Answer&) { return ++seen != 0; },
                [&](const Answer&) { ++skipped; });
            EXPECT_EQ(WalkStep::kEnd, end.step) << NameText(all[first]) << count;
            EXPECT_EQ(all.size() - count, seen) << NameText(all[first]) << count;
            EXPECT_LT(0u, skipped);
            EXPECT_EQ(skipped, end.skipped);
            EXPECT_TRUE(end.isLeast || end.skipped == count) << NameText(all[first]) << count;
            exact += !end.isLeast;
        }
    }
    EXPECT_LT(10u, exact);
}

// Though what follows the subtree cannot be read either; from .1 on too, whose end is .2.
TEST_F(WalkPast, LosesNoMoreAtTheEdge) {
    device_.Texts({"sysDescr.0", "sysUpTime.0", "ifDescr.1", ".1.3.6.1.4.1.9999.1.0"});
    device_.withheld[*ParseOidOrName("sysDescr.0")] = Status::kUnreadable;
    for (const Status status : {Status::kNoAnswer, Status::kUnreadable}) {
        device_.withheld[*ParseOidOrName(".1.3.6.1.4.1.9999.1.0")] = status;
        const WalkEnd end = Walk();
        EXPECT_EQ(WalkStep::kEnd, end.step);
        EXPECT_EQ(Status::kAnswered, end.last.status);
        EXPECT_EQ(Counts(2, 1), CountsOf(end));
    }
    Asker asker = device_.MakeAsker();
    asker.getNext = [ask = asker.getNext](const Oid& asked) {
        EXPECT_LT(1u, asked.size()) << "which the module cannot encode";
        return ask(asked);
    };
    EXPECT_EQ(2u, WalkSubtree(asker, {1}, [](const Answer&) { return true; }).variables);
}

TEST_F(WalkPast, TellsAnErrorAnswerFromTheEnd) {
    device_.Texts({"sysName.0", "ifDescr.1", "ifDescr.2", "ifType.1", ".1.3.6.1.4.1.1"});
    device_.withheld[*ParseOidOrName("ifDescr.1")] = Status::kAnswered;
    const WalkEnd end = Walk();
    EXPECT_EQ(WalkStep::kEnd, end.step);
    EXPECT_EQ(Counts(3, 1), CountsOf(end));
}

// Otherwise it would be asked in hundreds of ways, and the walk called complete.
TEST_F(WalkPast, EndsWhenTheDeviceStopsAnswering) {
    const Oid beyond = {1, 3, 6, 1, 2, 2};
    device_.Texts({"sysName.0", "ifDescr.1", "ifType.1"});
    for (const Status status : {Status::kUnreadable, Status::kNoAnswer}) {
        device_.withheld[*ParseOidOrName("ifDescr.1")] = status;
        bool isOff = false;
        device_.failure = [&](const Oid& asked) {
            return std::exchange(isOff, isOff || asked == beyond) ? Status::kNoAnswer
                                                                  : Status::kAnswered;
        };
        device_.requests = 0;
        const WalkEnd end = Walk();
        EXPECT_EQ(Status::kNoAnswer, end.last.status);
        EXPECT_EQ(Counts(1, 0), CountsOf(end));
        EXPECT_GT(12u, device_.requests);
    }
}

TEST_F(WalkPast, GoesOnAfterASilentVariableAndLoss) {
    device_.Texts({"sysDescr.0", "sysObjectID.0", "sysUpTime.0", "sysName.0", "ifDescr.1",
                   "ifDescr.2", "ifType.1", "ifType.2"});
    for (const auto& variable : device_.variables) {
        device_.withheld = {{variable.first, Status::kNoAnswer}};
        device_.requests = 0;
        const WalkEnd end = Walk();
        EXPECT_EQ(WalkStep::kEnd, end.step);
        EXPECT_EQ(7u, end.variables) << NameText(variable.first);
        EXPECT_GT(40u, device_.requests);
    }
    // Both, for any place of the loss.
    device_.withheld = {{*ParseOidOrName("ifDescr.1"), Status::kNoAnswer}};
    for (size_t lost = 1; lost < 40; ++lost) {
        device_.failure = [&](const Oid&) {
            return device_.requests == lost ? Status::kNoAnswer : Status::kAnswered;
        };
        device_.requests = 0;
        const WalkEnd end = Walk();
        EXPECT_EQ(WalkStep::kEnd, end.step) << lost;
        EXPECT_EQ(7u, end.variables) << lost;
    }
    device_.withheld.clear();
    device_.failure = [&](const Oid&) {
        return device_.requests % 3 == 2 ? Status::kNoAnswer : Status::kAnswered;
    };
    EXPECT_EQ(Counts(8, 0), CountsOf(Walk()));
}

const Oid kAsked = {1, 3, 6, 1, 2, 1, 1, 1, 0};

// What a scripted device never answers.
TEST(WalkStep, NeverLoops) {
    const std::tuple<WalkStep, Oid, uint32_t, bool> rows[] = {
        {WalkStep::kVariable, {1, 3, 6, 1, 2, 1, 1, 2, 0}, kNull, false},
        {WalkStep::kEnd, kAsked, kEndOfMibView, true},
        {WalkStep::kNotIncreasing, kAsked, kInteger, false},
        {WalkStep::kNotIncreasing, {1, 3, 6}, kNull, false}};
    for (const auto& [step, answered, type, isV3] : rows) {
        EXPECT_EQ(step, StepOf(kSystem, kAsked, AnsweredWith(answered, type, ""), isV3))
            << OidToText(answered) << " type " << type;
    }
}

TEST(LongValues, AreShownWithoutTheirLengthByte) {
    const std::string text(128, 'x');
    const std::tuple<std::string, size_t, size_t> rows[] = {
        {"\xAF" + text, 128, 0xAF},
        {"\x80" + text, 128, 128},
        {text.substr(1), 127, 127},
        {"x" + text, 129, 129}};  // no such length: unchanged
    for (const auto& [bytes, shown, whole] : rows) {
        const Answer answer = AnsweredWith({}, kOctetString, bytes);
        EXPECT_EQ(bytes.substr(bytes.size() - shown), answer.bytes);
        EXPECT_EQ(whole, answer.wholeSize);
    }
}

// The counters of RFC 3412 to 3414; .11.2.1 and .12.1 come from agents that use contexts.
TEST(Refusals, AreReportsAndNotTheCountersThemselves) {
    const Oid wrongDigest = {1, 3, 6, 1, 6, 3, 15, 1, 1, 5, 0};
    const std::pair<Oid, const char*> rows[] = {
        {wrongDigest, "wrong authentication password"},
        {{1, 3, 6, 1, 6, 3, 11, 2, 1, 3, 0}, "context engine ID"},
        {{1, 3, 6, 1, 6, 3, 12, 1, 5, 0}, "default context"}};
    for (const auto& [counter, words] : rows) {
        const char* reason = RefusalReason(kAsked, counter, kCounter32);
        ASSERT_TRUE(reason) << OidToText(counter);
        EXPECT_THAT(reason, testing::HasSubstr(words));
    }
    EXPECT_FALSE(RefusalReason(kAsked, wrongDigest, kInteger));
    EXPECT_FALSE(RefusalReason(kAsked, {1, 3, 6, 1, 6, 3, 15, 1, 1, 7, 0}, kCounter32));
    EXPECT_FALSE(RefusalReason({1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0}, wrongDigest, kCounter32));
}

}  // namespace
}  // namespace vndiscover::host
