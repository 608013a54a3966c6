// One localised key against one plain hash of 1 MiB, by authentication code, in CPU time, since
// each takes milliseconds, during which a busy machine would interrupt it.
#include <benchmark/benchmark.h>

#include <vector>

#include "cpu_clock.h"
#include "samples.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/protocol_codes.h"

namespace vndiscover {
namespace {

constexpr size_t kMebibyte = size_t{1024} * 1024;
constexpr uint8_t kEngine[] = {0x80, 0, 0x1F, 0x88, 4, 'e', 'n', 'g', 'i', 'n', 'e'};
constexpr uint8_t kPassword[] = {'a', 'u', 't', 'h', 'p', 'a', 's', 's', '1'};

constexpr int kBatch = 4;

template <class Work>
double CpuOf(const CpuClock& clock, Work&& work) {
    const CpuTimes began = clock.Now();
    for (int i = 0; i < kBatch; ++i) work();
    return (clock.Now() - began).program / kBatch;
}

ByteBuffer BufferOf(const uint8_t* bytes, size_t length) {
    ByteBuffer buffer;
    buffer.Assign(bytes, static_cast<int32_t>(length));
    return buffer;
}

// range(0): authentication code of the key; range(1): of the plain hash.
void LocalisedKey(benchmark::State& state) {
    const auto keyCode = static_cast<uint32_t>(state.range(0));
    const auto hashCode = static_cast<uint32_t>(state.range(1));
    const ByteBuffer engine = BufferOf(kEngine, sizeof kEngine);
    const ByteBuffer password = BufferOf(kPassword, sizeof kPassword);
    const std::vector<uint8_t> zeros(kMebibyte, 'x');
    const ByteBuffer mebibyte = BufferOf(zeros.data(), zeros.size());
    const CpuClock clock;
    // Shared and already opened: opening takes long enough to hide a difference.
    CryptoSession crypto;
    ByteBuffer digest;
    crypto.Hash(hashCode, engine, digest);
    Pair pair;
    for (auto _ : state) {
        pair.Turn([&](auto& work) { return CpuOf(clock, work); },
                  [&] {
                      benchmark::DoNotOptimize(
                          PasswordKeys().LocalisedKey(crypto, keyCode, password, engine));
                  },
                  [&] { benchmark::DoNotOptimize(crypto.Hash(hashCode, mebibyte, digest)); });
        state.SetIterationTime(pair.ours.back() / 1e6);
    }
    state.counters["ours_us"] = Median(pair.ours);
    state.counters["bare_us"] = Median(pair.bare);
}
BENCHMARK(LocalisedKey)
    ->ArgNames({"auth", "hash"})
    ->Args({kAuthMd5, kAuthMd5})
    ->Args({kAuthSha1, kAuthSha1})
    ->Args({kAuthSha224, kAuthSha224})
    ->Args({kAuthSha224, kAuthSha256})  // the platform's SHA-256 runs the same rounds
    ->Args({kAuthSha256, kAuthSha256})
    ->Args({kAuthSha384, kAuthSha384})
    ->Args({kAuthSha512, kAuthSha512})
    ->UseManualTime()
    ->Iterations(15)
    ->Repetitions(3);

}  // namespace
}  // namespace vndiscover
