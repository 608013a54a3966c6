#include "window/workers.h"

#include <gtest/gtest.h>

#include <chrono>

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
    AdapterList IPv4() override {
        ++looks;
        return {};
    }
    ComputerReport Report() override { return {}; }
    std::atomic<int> begun{0}, ended{0}, looks{0};
};

template <class Condition>
bool Comes(Condition condition) {
    for (int wait = 0; wait < 1000 && !condition(); ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

// Even if the next device is asked before the worker has seen the stop, which must not stop that
// one.
TEST(Workers, StopEndsOnlyTheRunningReading) {
    PatientEngine engine;
    EventQueue events([] {});
    Workers workers(engine, events);
    workers.Ask({"10.0.0.1", SweepKind::kSnmpV1, {}}, true);
    ASSERT_TRUE(Comes([&] { return engine.begun == 1; }));
    workers.Stop();
    workers.Ask({"10.0.0.2", SweepKind::kSnmpV1, {}}, true);
    EXPECT_TRUE(Comes([&] { return engine.begun == 2; }));
    EXPECT_EQ(1, engine.ended);
}

TEST(Workers, ReportOnThisComputerWhileADeviceIsAsked) {
    PatientEngine engine;
    EventQueue events([] {});
    Workers workers(engine, events);
    workers.Ask({"10.0.0.1", SweepKind::kSnmpV1, {}}, true);
    ASSERT_TRUE(Comes([&] { return engine.begun == 1; }));
    workers.LookAtAdapters();
    EXPECT_TRUE(Comes([&] { return engine.looks == 1; }));
    EXPECT_EQ(0, engine.ended);
}

}  // namespace
}  // namespace vndiscover::host
