// A sweep's collection against a bare receive loop: a burst as large as the device table, the
// highest rate of answers that each keeps without loss, and the CPU time of an answer.
#include <benchmark/benchmark.h>

#include <cmath>

#include "bare_loop.h"
#include "cpu_clock.h"
#include "lab.h"
#include "samples.h"
#include "vndiscover.h"

namespace vndiscover {
namespace {

constexpr int kTableEntries = 8192;
constexpr int kSlowAnswers = 10000;  // per second
constexpr UINT kMessage = WM_APP + 161;

int g_delivered = 0;

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM address, LPARAM value) {
    if (message != kMessage) return DefWindowProcA(window, message, address, value);
    if (address) ++g_delivered;
    return 0;
}

HWND Window() {
    static const HWND window = [] {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = OnMessage;
        windowClass.hInstance = GetModuleHandleA(nullptr);
        windowClass.lpszClassName = "VnDiscoverBench";
        RegisterClassA(&windowClass);
        return CreateWindowExA(0, windowClass.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE,
                               nullptr, windowClass.hInstance, nullptr);
    }();
    return window;
}

int Sweep() {
    g_delivered = 0;
    DiscoverDevices(Window(), kMessage, 0, 0, nullptr, nullptr, nullptr);
    return g_delivered;
}
int SweepUnseen() { return DiscoverDevices(nullptr, 0, 0, 0, nullptr, nullptr, nullptr); }
int Raised() { return BareCollect(true, kTableEntries); }
int Unraised() { return BareCollect(false, kTableEntries); }

// How many of as many answers as the table holds `collect` keeps.
template <class Collect>
double Kept(const AnswerPlan& plan, Collect&& collect) {
    PlanAnswers(plan);
    return collect();
}

void Burst(benchmark::State& state) {
    const AnswerPlan burst = {kTableEntries, 0, kPlainAnswer};
    std::vector<double> sweep, raised, unraised;
    double fastest = 0;
    for (auto _ : state) {
        sweep.push_back(Kept(burst, Sweep));
        raised.push_back(Kept(burst, Raised));
        unraised.push_back(Kept(burst, Unraised));
        fastest = 1e6 * kTableEntries / static_cast<double>(AnsweringTimeUs());
    }
    state.counters["ours"] = Median(sweep);
    state.counters["bare"] = Median(raised);
    state.counters["bare_unraised"] = Median(unraised);
    state.counters["sent_per_s"] = fastest;
}
BENCHMARK(Burst)->Iterations(5)->Unit(benchmark::kMillisecond);

// Searches for the highest rate without loss: doubles it (or halves it, if the first is too fast)
// until one rate succeeds and one fails, then narrows the gap.
class RateSearch {
  public:
    bool IsOver() const { return held_ != 0 && tooFast_ != 0 && tooFast_ / held_ < 1.06; }
    double Held() const { return held_; }
    double Next() const {
        if (held_ == 0) return tooFast_ == 0 ? kFirstRate : tooFast_ / 2;
        return tooFast_ == 0 ? held_ * 2 : std::sqrt(held_ * tooFast_);
    }
    void Tell(double rate, bool holds) { (holds ? held_ : tooFast_) = rate; }

  private:
    static constexpr double kFirstRate = 8000;
    double held_ = 0;
    double tooFast_ = 0;
};

// Succeeds if two of three tries lose nothing. The datagrams are padded to `size` so that the
// socket's buffer cannot hold all of them: otherwise it would take the whole burst at any rate.
template <class Collect>
bool Holds(double rate, int size, Collect&& collect) {
    int without = 0, with = 0;
    const AnswerPlan plan = {kTableEntries, static_cast<int>(rate), size};
    while (without < 2 && with < 2) ++(Kept(plan, collect) == kTableEntries ? without : with);
    return without == 2;
}

void SteadyRate(benchmark::State& state) {
    const int size = static_cast<int>(state.range(0));
    RateSearch sweep, bare;
    for (auto _ : state) {
        while (!sweep.IsOver() || !bare.IsOver()) {
            const double sweepRate = sweep.Next(), bareRate = bare.Next();
            if (!sweep.IsOver()) sweep.Tell(sweepRate, Holds(sweepRate, size, Sweep));
            if (!bare.IsOver()) bare.Tell(bareRate, Holds(bareRate, size, Raised));
        }
    }
    state.counters["ours"] = sweep.Held();
    state.counters["bare"] = bare.Held();
}
BENCHMARK(SteadyRate)
    ->ArgName("bytes")
    ->Arg(1472)
    ->Iterations(1)
    ->Repetitions(3)
    ->Unit(benchmark::kSecond);

// CPU time per answer: of a sweep with a full table, less one without answers, with and without a
// window.
void CollectionCost(benchmark::State& state) {
    const CpuClock clock;
    const AnswerPlan none = {0, 0, kPlainAnswer};
    const AnswerPlan full = {kTableEntries, kSlowAnswers, kPlainAnswer};
    const auto cpuOf = [&](const AnswerPlan& plan, auto&& collect) {
        PlanAnswers(plan);
        const CpuTimes began = clock.Now();
        collect();
        return clock.Now() - began;
    };
    std::vector<double> ours, oursBoth, bare, bareBoth, delivery;
    for (auto _ : state) {
        const CpuTimes idleSweep = cpuOf(none, SweepUnseen), idleBare = cpuOf(none, Raised);
        const CpuTimes unseen = cpuOf(full, SweepUnseen) - idleSweep;
        const CpuTimes raised = cpuOf(full, Raised) - idleBare;
        const CpuTimes seen = cpuOf(full, Sweep) - idleSweep;
        ours.push_back(unseen.program / kTableEntries);
        oursBoth.push_back(unseen.Both() / kTableEntries);
        bare.push_back(raised.program / kTableEntries);
        bareBoth.push_back(raised.Both() / kTableEntries);
        delivery.push_back((seen.program - unseen.program) / kTableEntries);
    }
    state.counters["ours_us"] = Median(ours);
    state.counters["ours_with_server_us"] = Median(oursBoth);
    state.counters["bare_us"] = Median(bare);
    state.counters["bare_with_server_us"] = Median(bareBoth);
    state.counters["delivery_us"] = Median(delivery);
}
BENCHMARK(CollectionCost)->Iterations(5)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace vndiscover
