#include "window/work/workers.h"

#include <gtest/gtest.h>

#include <chrono>

#include "platform/result_window.h"

namespace vndiscover::host {
namespace {

// Each device is asked until it must stop.
class PatientEngine : public Engine {
  public:
    void Sweep(const SweepStep&, const OnAnswer&) override {}
    void StopSnmp() override {}
    void StopWsd() override {}
    PrinterAnswers Read(const AskTarget&, std::function<bool()> mayGoOn) override {
        ++begun;
        for (int wait = 0; wait < 2000 && mayGoOn(); ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ended += !mayGoOn();
        return {};
    }
    WalkEnd Walk(const AskTarget&, const Oid&, std::function<bool()> mayGoOn,
                 const OnVariable&) override {
        ++walks;
        WalkEnd end;
        while (mayGoOn()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        end.isStopped = true;
        return end;
    }
    HostDiagnosis Diagnose(const AskTarget&, std::function<bool()>) override { return {}; }
    AdapterList IPv4() override {
        ++looks;
        return {};
    }
    ComputerReport Report() override { return {}; }
    std::atomic<int> begun{0}, ended{0}, looks{0}, walks{0};
};

template <class Condition>
bool Comes(Condition condition) {
    for (int wait = 0; wait < 1000 && !condition(); ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

class WorkersTest : public testing::Test {
  protected:
    // The engine waits in a reading.
    void BeginReading() {
        workers.Ask({"10.0.0.1", SweepKind::kSnmpV1, {}}, true);
        ASSERT_TRUE(Comes([&] { return engine.begun == 1; }));
    }
    PatientEngine engine;
    ResultQueue queue{[] {}};
    Workers workers{engine, queue};
};

// Even if the next device is asked before the worker has seen the stop, which must not stop that
// one.
TEST_F(WorkersTest, StopEndsOnlyTheRunningReading) {
    BeginReading();
    workers.Stop();
    workers.Ask({"10.0.0.2", SweepKind::kSnmpV1, {}}, true);
    EXPECT_TRUE(Comes([&] { return engine.begun == 2; }));
    EXPECT_EQ(1, engine.ended);
}

TEST_F(WorkersTest, ReportOnThisComputerWhileADeviceIsAsked) {
    BeginReading();
    workers.ReadAdapters();
    EXPECT_TRUE(Comes([&] { return engine.looks == 1; }));
    EXPECT_EQ(0, engine.ended);
}

// A walk may take hours, and the selected device is asked for in between, others after it.
TEST_F(WorkersTest, SelectedDeviceIsAskedDuringAWalk) {
    workers.Walk({"10.0.0.1", SweepKind::kSnmpV1, {}}, {1, 3}, 1);
    ASSERT_TRUE(Comes([&] { return engine.walks == 1; }));
    workers.Ask({"10.0.0.2", SweepKind::kSnmpV1, {}}, false);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(0, engine.begun);
    workers.Ask({"10.0.0.3", SweepKind::kSnmpV1, {}}, true);
    ASSERT_TRUE(Comes([&] { return engine.begun == 1; }));
    workers.StopWalk();  // the reading goes on
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(0, engine.ended);
    workers.Stop();
    EXPECT_TRUE(Comes([&] { return !workers.IsBusy(); }));
    EXPECT_EQ(1, engine.begun);
}

// Otherwise its window would wait for ever.
TEST_F(WorkersTest, WalkThatHasNotBegunReportsItsEnd) {
    BeginReading();
    for (const unsigned walk : {1, 2}) {
        workers.Walk({"10.0.0.1", SweepKind::kSnmpV1, {}}, {1, 3}, walk);
        if (walk == 1) {
            workers.StopWalk();
        } else {
            workers.Stop();
        }
        struct : Results {
            void OnWalked(unsigned number, bool hasBegun, const WalkEnd& end,
                          const std::string&) override {
                if (!hasBegun && end.isStopped) dropped = number;
            }
            unsigned dropped = 0;
        } results;
        queue.RunAll(results);
        EXPECT_EQ(walk, results.dropped);
    }
    EXPECT_EQ(0, engine.walks);
}

// Of sweeps that begin at the same time, no other one having registered the type of the windows.
TEST(ResultWindows, AreCreatedByThreadsAtTheSameTime) {
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> ready{0};
        const auto create = [&ready] {
            for (++ready; ready < 4;) continue;
            EXPECT_NO_THROW(ResultWindow([](const char*, const char*) {}));
        };
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) threads.emplace_back(create);
        for (std::thread& thread : threads) thread.join();
        EXPECT_TRUE(UnregisterClassW(L"VnDiscoverResults", GetModuleHandleW(nullptr)));
    }
}

}  // namespace
}  // namespace vndiscover::host
