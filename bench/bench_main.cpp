// vndiscover_bench.exe: needs the lab of lab.sh; scripts/bench.sh runs it there.
#include <benchmark/benchmark.h>

#include "support/win.h"

int main(int argc, char** argv) {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return 1;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    WSACleanup();
    return 0;
}
