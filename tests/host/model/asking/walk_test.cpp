// Walks of a subtree: their steps, and why a device refuses to be asked.
#include "model/asking/walk.h"

#include <gtest/gtest.h>

#include "host/model/scripted_device.h"
#include "model/asking/answer.h"

namespace vndiscover::host {
namespace {

const Oid kSystem = {1, 3, 6, 1, 2, 1, 1};

class WalkTest : public testing::Test {
  protected:
    WalkTest() {
        device_.Text("sysDescr.0", "printer");
        device_.Text("sysName.0", "hall");
        device_.Integer("ifNumber.0", 2);
    }
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

    asker.mayGoOn = nullptr;
    asker.getNext = [](const Oid&) {
        return AnsweredWith({1, 3, 6, 1, 2, 1, 1, 1}, kInteger, "\1");
    };
    end = Walk(asker, kSystem);
    EXPECT_EQ(WalkStep::kNotIncreasing, end.step);
    EXPECT_EQ(1u, end.variables);

    device_.requests = 0;
    end = WalkSubtree(device_.MakeAsker(), kSystem, [](const Answer&) { return false; });
    EXPECT_TRUE(end.isStopped);
    EXPECT_EQ(1u, end.variables);
    EXPECT_EQ(1u, device_.requests);
}

// One, or two in a row, of every kind of place in the tables.
TEST(WalkPast, LosesOnlyWhatCannotBeRead) {
    ScriptedDevice whole;
    for (const char* name : {"sysDescr.0", "sysObjectID.0", "sysUpTime.0", "sysName.0",
                             "ifNumber.0", "hrDeviceDescr.1", ".1.3.6.1.2.1.99.1.0"})
        whole.Text(name, "scalar");
    for (const char* column :
         {"ifIndex", "ifDescr", "ifType", "ifMtu", "prtAlertSeverityLevel", "prtAlertTime"}) {
        for (const char* row : {".1", ".2", ".5"})
            whole.Text((std::string(column) + row).c_str(), "cell");
    }
    std::vector<Oid> all;
    for (const auto& variable : whole.variables) all.push_back(variable.first);
    const Oid mib2 = {1, 3, 6, 1, 2, 1};
    size_t exact = 0;  // times in which one is known to be all
    // Of a table that has not been seen, the first row is guessed, but no second one.
    const auto isFirstColumn = [](const Oid& oid) {
        return IsWithin(oid, OidOf("ifIndex")) || IsWithin(oid, OidOf("prtAlertSeverityLevel"));
    };
    for (size_t first = 0; first < all.size(); ++first) {
        for (size_t count = 1; count <= 2 && first + count <= all.size(); ++count) {
            if (count == 2 && isFirstColumn(all[first + 1])) continue;
            ScriptedDevice device = whole;
            for (size_t i = first; i < first + count; ++i)
                device.withheld[all[i]] = Status::kUnreadable;
            size_t seen = 0, skipped = 0;
            const Asker asker = device.MakeAsker();
            const WalkEnd end = WalkSubtree(
                asker, mib2, [&](const Answer&) { return ++seen != 0; },
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
TEST(WalkPast, LosesNoMoreAtTheEdge) {
    ScriptedDevice device;
    for (const char* name : {"sysDescr.0", "sysUpTime.0", "ifDescr.1", ".1.3.6.1.4.1.9999.1.0"})
        device.Text(name, "value");
    device.withheld[*ParseOidOrName("sysDescr.0")] = Status::kUnreadable;
    const auto isGood = [](const Answer&) { return true; };
    for (const Status status : {Status::kNoAnswer, Status::kUnreadable}) {
        device.withheld[*ParseOidOrName(".1.3.6.1.4.1.9999.1.0")] = status;
        const WalkEnd end = WalkSubtree(device.MakeAsker(), {1, 3, 6, 1, 2, 1}, isGood);
        EXPECT_EQ(WalkStep::kEnd, end.step);
        EXPECT_EQ(Status::kAnswered, end.last.status);
        EXPECT_EQ(std::pair(size_t{2}, size_t{1}), std::pair(end.variables, end.skipped));
    }
    Asker asker = device.MakeAsker();
    asker.getNext = [ask = asker.getNext](const Oid& asked) {
        EXPECT_LT(1u, asked.size()) << "which the module cannot encode";
        return ask(asked);
    };
    EXPECT_EQ(2u, WalkSubtree(asker, {1}, isGood).variables);
}

TEST(WalkPast, TellsAnErrorAnswerFromTheEnd) {
    ScriptedDevice device;
    for (const char* name : {"sysName.0", "ifDescr.1", "ifDescr.2", "ifType.1", ".1.3.6.1.4.1.1"})
        device.Text(name, "value");
    device.withheld[*ParseOidOrName("ifDescr.1")] = Status::kAnswered;
    const WalkEnd end =
        WalkSubtree(device.MakeAsker(), {1, 3, 6, 1, 2, 1}, [](const Answer&) { return true; });
    EXPECT_EQ(WalkStep::kEnd, end.step);
    EXPECT_EQ(std::pair(size_t{3}, size_t{1}), std::pair(end.variables, end.skipped));
}

// Otherwise it would be asked in hundreds of ways, and the walk called complete.
TEST(WalkPast, EndsWhenTheDeviceStopsAnswering) {
    const Oid mib2 = {1, 3, 6, 1, 2, 1}, beyond = {1, 3, 6, 1, 2, 2};
    for (const Status status : {Status::kUnreadable, Status::kNoAnswer}) {
        ScriptedDevice device;
        for (const char* name : {"sysName.0", "ifDescr.1", "ifType.1"}) device.Text(name, "value");
        device.withheld[*ParseOidOrName("ifDescr.1")] = status;
        bool isOff = false;
        device.failure = [&](const Oid& asked) {
            return std::exchange(isOff, isOff || asked == beyond) ? Status::kNoAnswer
                                                                  : Status::kAnswered;
        };
        const WalkEnd end =
            WalkSubtree(device.MakeAsker(), mib2, [](const Answer&) { return true; });
        EXPECT_EQ(Status::kNoAnswer, end.last.status);
        EXPECT_EQ(std::pair(size_t{1}, size_t{0}), std::pair(end.variables, end.skipped));
        EXPECT_GT(12u, device.requests);
    }
}

TEST(WalkPast, GoesOnAfterASilentVariableAndLoss) {
    ScriptedDevice device;
    for (const char* name : {"sysDescr.0", "sysObjectID.0", "sysUpTime.0", "sysName.0", "ifDescr.1",
                             "ifDescr.2", "ifType.1", "ifType.2"})
        device.Text(name, "value");
    size_t seen = 0;
    const auto count = [&](const Answer&) { return ++seen != 0; };
    for (const auto& variable : device.variables) {
        device.withheld = {{variable.first, Status::kNoAnswer}};
        seen = device.requests = 0;
        EXPECT_EQ(WalkStep::kEnd, WalkSubtree(device.MakeAsker(), {1, 3, 6, 1, 2, 1}, count).step);
        EXPECT_EQ(7u, seen) << NameText(variable.first);
        EXPECT_GT(40u, device.requests);
    }
    // Both, for any place of the loss.
    for (size_t lost = 1; lost < 40; ++lost) {
        device.withheld = {{*ParseOidOrName("ifDescr.1"), Status::kNoAnswer}};
        device.failure = [&](const Oid&) {
            return device.requests == lost ? Status::kNoAnswer : Status::kAnswered;
        };
        seen = device.requests = 0;
        const WalkEnd end = WalkSubtree(device.MakeAsker(), {1, 3, 6, 1, 2, 1}, count);
        EXPECT_EQ(WalkStep::kEnd, end.step) << lost;
        EXPECT_EQ(7u, seen) << lost;
    }
    device.withheld.clear();
    device.failure = [&](const Oid&) {
        return device.requests % 3 == 2 ? Status::kNoAnswer : Status::kAnswered;
    };
    seen = 0;
    const WalkEnd end = WalkSubtree(device.MakeAsker(), {1, 3, 6, 1, 2, 1}, count);
    EXPECT_EQ(8u, seen);
    EXPECT_EQ(0u, end.skipped);
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
        EXPECT_NE(std::string::npos, std::string(reason).find(words)) << reason;
    }
    EXPECT_FALSE(RefusalReason(kAsked, wrongDigest, kInteger));
    EXPECT_FALSE(RefusalReason(kAsked, {1, 3, 6, 1, 6, 3, 15, 1, 1, 7, 0}, kCounter32));
    EXPECT_FALSE(RefusalReason({1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0}, wrongDigest, kCounter32));
}

}  // namespace
}  // namespace vndiscover::host
