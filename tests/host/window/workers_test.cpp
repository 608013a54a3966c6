#include "window/work/workers.h"

#include <chrono>
#include <map>

#include "platform/result_window.h"
#include "scripted_window.h"

namespace vndiscover::host {
namespace {

// Each device is asked until it must stop.
class PatientEngine : public ScriptedEngine {
  public:
    FleetDevice ReadForList(const AskTarget& target, const FleetDevice& job, Reader* reader,
                            std::function<bool()> mayGoOn) override {
        const int64_t delayMs = target.address == "10.0.0.1" ? slowMs.load() : 1;
        Asker asker = device.MakeAsker();
        asker.mayGoOn = mayGoOn;
        asker.getNext = [&, ask = asker.getNext](const Oid& oid) {
            ++(reader ? aside : here);
            std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
            const std::lock_guard<std::mutex> lock(mutex);
            return ask(oid);
        };
        return ReadJob(job, asker);
    }
    size_t MaxReaders() const override { return readers; }
    std::unique_ptr<Reader> MakeReader(const std::vector<Login>&) override {
        struct Idle : Reader {
            explicit Idle(bool isAlive) : isAlive_(isAlive) {}
            bool IsAlive() const override { return isAlive_; }
            Answer GetNext(size_t, const std::string&, const Oid&) override { return {}; }
            void End() override { isAlive_ = false; }
            std::atomic<bool> isAlive_;
        };
        return std::make_unique<Idle>(areAlive);
    }
    PrinterAnswers Read(const AskTarget&, std::function<bool()> mayGoOn) override {
        ++begun;
        for (int wait = 0; wait < requests && mayGoOn(); ++wait)
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
    AdapterList IPv4() override {
        ++looks;
        return {};
    }
    std::atomic<int> begun{0}, ended{0}, looks{0}, walks{0}, here{0}, aside{0};
    std::atomic<int64_t> slowMs{1};
    std::atomic<int> requests{2000};  // of a reading of one device
    size_t readers = 0;
    bool areAlive = true;
    ScriptedDevice device;  // that every address is
    std::mutex mutex;
};

template <class Condition>
bool Comes(Condition condition) {
    for (int wait = 0; wait < 3000 && !condition(); ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

class WorkersTest : public testing::Test {
  protected:
    // The engine waits in a reading.
    void BeginReading() {
        workers.Read({"10.0.0.1"}, true);
        ASSERT_TRUE(Comes([&] { return engine.begun == 1; }));
    }
    PatientEngine engine;
    ResultQueue queue{[] {}};
    Workers workers{engine, queue};
};

// However fast the user goes to the next device and back. After a stop it is read again, even if
// the worker has not seen the stop, which must not stop the new reading.
TEST_F(WorkersTest, DeviceThatIsBeingReadIsNotReadTwice) {
    BeginReading();
    for (const char* selected : {"10.0.0.2", "10.0.0.1"}) workers.Read({selected}, true, true);
    EXPECT_EQ(0u, workers.Now().waiting);
    workers.Stop();
    workers.Read({"10.0.0.1"}, true, true);
    EXPECT_TRUE(Comes([&] { return engine.begun == 2; }));
    EXPECT_EQ(1, engine.ended);
}

TEST_F(WorkersTest, SelectionDropsNoDeviceAskedOtherwise) {
    BeginReading();
    workers.Read({"10.0.0.2"}, false);
    for (const char* selected : {"10.0.0.2", "10.0.0.3"}) workers.Read({selected}, true, true);
    EXPECT_EQ(2u, workers.Now().waiting);
    engine.requests = 1;
    ASSERT_TRUE(Comes([&] { return !workers.IsBusy(); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ("", workers.Now().address);  // nobody waits for what has ended
}

TEST_F(WorkersTest, ReportOnThisComputerWhileADeviceIsAsked) {
    BeginReading();
    workers.ReadAdapters();
    EXPECT_TRUE(Comes([&] { return engine.looks == 1; }));
    EXPECT_EQ(0, engine.ended);
}

// Names may take minutes, of which a window that closes waits for one.
TEST_F(WorkersTest, StopEndsTheLookForAddresses) {
    workers.Resolve(std::vector<std::string>(1000000, "10.0.0.1"));
    workers.Stop();
    ASSERT_TRUE(Comes([&] { return !workers.IsBusy(); }));
    struct : Results {
        void OnResolved(const Addresses&, std::vector<std::string>) override { FAIL(); }
    } results;
    queue.RunAll(results);
}

// A walk may take hours, and the selected device is asked for in between, others after it.
TEST_F(WorkersTest, SelectedDeviceIsAskedDuringAWalk) {
    workers.Walk({"10.0.0.1"}, {1, 3}, 1);
    ASSERT_TRUE(Comes([&] { return engine.walks == 1; }));
    workers.Read({"10.0.0.2"}, false);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(0, engine.begun);
    workers.Read({"10.0.0.3"}, true);
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
        workers.Walk({"10.0.0.1"}, {1, 3}, walk);
        walk == 1 ? workers.StopWalk() : workers.Stop();
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

TEST(ResultQueues, RunSoManyAndAskForTheRest) {
    int filled = 0, run = 0;
    ResultQueue queue([&] { ++filled; });
    for (int index = 0; index < 3; ++index) queue.Post([&](Results&) { ++run; });
    Results results;
    queue.RunAll(results, 2);
    EXPECT_EQ(std::pair(2, 2), std::pair(run, filled));
}

class FleetWorkers : public WorkersTest {
  protected:
    FleetWorkers() {
        engine.device.Add(
            "hrDeviceType.1 o .1.3.6.1.2.1.25.3.1.5; hrPrinterStatus.1 i 3; hrDeviceStatus.1 i 2");
    }
    void ReadAll(int count) {
        std::vector<AskTarget> targets;
        for (int index = 1; index <= count; ++index)
            targets.push_back({"10.0.0." + std::to_string(index)});
        workers.ReadAll(targets);
    }
    // Runs the results until the reading is over; those it lists are of the last round of a device.
    void Finish() {
        ASSERT_TRUE(Comes([&] {
            queue.RunAll(results);
            return results.isOver;
        }));
    }
    struct : Results {
        void OnRead(Read one) override {
            last[one.target.address] = one;
            firstRounds += one.isStateOnly;
            order += one.target.address.substr(7) + " ";
        }
        void OnReadAll(const Progress::Read& count) override {
            isOver = true;
            read = count.done;
            unread = count.unread;
        }
        std::map<std::string, Read> last;
        std::string order;
        size_t read = 0, unread = 0, firstRounds = 0;
        bool isOver = false;
    } results;
};

TEST_F(FleetWorkers, SlowDeviceDoesNotHoldTheOthers) {
    engine.readers = 2;
    engine.slowMs = 150;
    ReadAll(8);
    EXPECT_TRUE(workers.IsSending());
    EXPECT_TRUE(Comes([&] {
        const Progress::Work now = workers.Now();
        return now.read.done == 7 && now.address == "10.0.0.1";
    }));
    Finish();
    EXPECT_EQ(8u, results.last.size());
    EXPECT_EQ("1 ", results.order.substr(results.order.size() - 2));
    EXPECT_EQ(0, engine.here);
    EXPECT_EQ(8u, results.read);
    EXPECT_TRUE(Comes([&] { return !workers.IsSending(); }));
}

TEST_F(FleetWorkers, SelectedDeviceIsReadMeanwhile) {
    engine.slowMs = 1000;
    ReadAll(1);
    ASSERT_TRUE(Comes([&] { return engine.here == 1; }));
    workers.Read({"10.0.0.9"}, true);
    EXPECT_TRUE(Comes([&] { return engine.begun == 1; }));
    workers.Stop();
    Finish();
    EXPECT_EQ(0u, results.read);
}

TEST_F(FleetWorkers, WhatDeadReadersLeaveIsReadHere) {
    engine.readers = 2;
    engine.areAlive = false;
    ReadAll(4);
    Finish();
    EXPECT_EQ(0, engine.aside);
    EXPECT_EQ(4u, results.read);
    EXPECT_EQ(4u, results.firstRounds);
    EXPECT_EQ(Status::kAnswered, results.last["10.0.0.4"].answers.lastStatus);
}

TEST_F(FleetWorkers, OtherCommunitiesAreTriedOfASilentDevice) {
    engine.device.failure = [&](const Oid&) {
        return engine.here < 3 ? Status::kNoAnswer : Status::kAnswered;
    };
    AskTarget target = {"10.0.0.2"};
    target.otherCommunities = {"public"};
    workers.ReadAll({target});
    Finish();
    EXPECT_EQ("public", results.last["10.0.0.2"].target.login.community);
    EXPECT_FALSE(results.last["10.0.0.2"].answers.values.empty());
    EXPECT_EQ(std::pair(size_t{1}, size_t{0}), std::pair(results.read, results.unread));
}

TEST(FleetReaders, JobOfAFailedThreadIsLeftToOthers) {
    Fleet fleet;
    for (const char* address : {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"})
        fleet.Add(address, 0, {});
    std::mutex mutex;
    FleetReaders::Work work;
    work.makeReader = [] { return std::make_unique<OwnReader>(std::vector<Login>()); };
    work.read = [](const FleetDevice& job, Reader* reader, const FleetReaders::MayGoOn&) {
        if (reader) throw std::bad_alloc();
        return job;
    };
    FleetReaders readers(fleet, mutex, std::move(work));
    EXPECT_TRUE(readers.Start(2));
    readers.Join();
    for (int tries = 0; tries < 20 && readers.ReadNext(nullptr, [] { return true; }); ++tries)
        continue;
    EXPECT_TRUE(fleet.IsOver());
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
