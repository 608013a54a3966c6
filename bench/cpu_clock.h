// CPU time and memory of this process.
#pragma once

#include <cstdint>
#include <string>

namespace vndiscover {

struct CpuTimes {
    double program = 0;  // microseconds of this process's main thread
    double server = 0;   // of Wine's server, which handles part of each socket call; 0 on Windows
    double Both() const { return program + server; }
};
inline CpuTimes operator-(const CpuTimes& a, const CpuTimes& b) {
    return {a.program - b.program, a.server - b.server};
}

// Windows counts a process's CPU time in ticks of 10 or 16 ms. Under Wine the counters of the
// system below can be read as files and are exact to the microsecond. Reading them takes about 100
// us, so measure batches.
class CpuClock {
  public:
    CpuClock();
    CpuTimes Now() const;
    bool IsExact() const { return !program_.empty(); }

  private:
    std::string program_;  // files with the counters
    std::string server_;
};

uint64_t ResidentBytes();

}  // namespace vndiscover
