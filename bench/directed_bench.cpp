// A directed request against the bare loop on the same agent: time, and CPU time in batches.
#include <benchmark/benchmark.h>

#include "bare_loop.h"
#include "cpu_clock.h"
#include "lab.h"
#include "samples.h"
#include "vndiscover.h"

namespace vndiscover {
namespace {

constexpr int kTurns = 1500;
constexpr int kBatches = 12;
constexpr int kBatch = 200;

int DirectedGet() {
    uint8_t value[VN_REQUEST_VALUE_SIZE];
    uint32_t type = 0;
    return GetSnmpRequestRaw(kAgent, kSysName, value, sizeof value, &type, 0, 0, nullptr, nullptr);
}

int BareGet() {
    char answer[2048];
    return BareExchange(kAgent, kAskSysName, answer, sizeof answer);
}

void DirectedTime(benchmark::State& state) {
    Pair pair;
    for (auto _ : state) {
        bool answered = true;
        pair.Turn([](auto& work) { return MicrosecondsOf(work); },
                  [&] { answered = DirectedGet() > 0 && answered; },
                  [&] { answered = BareGet() > 0 && answered; });
        if (!answered) state.SkipWithError("the agent does not answer");
        state.SetIterationTime(pair.ours.back() / 1e6);
    }
    state.counters["ours_us"] = Median(pair.ours);
    state.counters["bare_us"] = Median(pair.bare);
    state.counters["ours_quartile_us"] = LowerQuartile(pair.ours);
    state.counters["bare_quartile_us"] = LowerQuartile(pair.bare);
}
BENCHMARK(DirectedTime)->UseManualTime()->Iterations(kTurns)->Repetitions(5);

template <class Work>
double CpuOfBatch(const CpuClock& clock, bool withServer, Work&& work) {
    const CpuTimes began = clock.Now();
    for (int i = 0; i < kBatch; ++i) work();
    const CpuTimes spent = clock.Now() - began;
    return (withServer ? spent.Both() : spent.program) / kBatch;
}

// range(0): 1 counts the CPU time of Wine's server too.
void DirectedCpu(benchmark::State& state) {
    const CpuClock clock;
    if (!clock.IsExact()) state.SkipWithError("no exact CPU clock here");
    const bool withServer = state.range(0) != 0;
    Pair pair;
    for (auto _ : state) {
        pair.Turn([&](auto& work) { return CpuOfBatch(clock, withServer, work); }, DirectedGet,
                  BareGet);
        state.SetIterationTime(pair.ours.back() / 1e6);
    }
    state.counters["ours_us"] = Median(pair.ours);
    state.counters["bare_us"] = Median(pair.bare);
}
BENCHMARK(DirectedCpu)->ArgName("server")->Arg(0)->Arg(1)->UseManualTime()->Iterations(kBatches);

}  // namespace
}  // namespace vndiscover
