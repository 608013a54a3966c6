// Two pieces of work measured in turn, so that whatever else the machine does meets both alike.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace vndiscover {

// Sorts samples. 0 without any.
inline double Median(std::vector<double>& samples) {
    if (samples.empty()) return 0;
    std::sort(samples.begin(), samples.end());
    const size_t middle = samples.size() / 2;
    return samples.size() % 2 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
}

// Nearer to what a quiet machine gives than the median. samples: sorted, as Median leaves them.
inline double LowerQuartile(const std::vector<double>& samples) {
    return samples.empty() ? 0 : samples[samples.size() / 4];
}

template <class Work>
double MicrosecondsOf(Work&& work) {
    const auto began = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - began)
        .count();
}

struct Pair {
    std::vector<double> ours;
    std::vector<double> bare;

    // measure(work) gives the sample. Each goes first in every other turn.
    template <class Measure, class Ours, class Bare>
    void Turn(Measure&& measure, Ours&& doOurs, Bare&& doBare) {
        const bool oursFirst = ours.size() % 2 == 0;
        if (!oursFirst) bare.push_back(measure(doBare));
        ours.push_back(measure(doOurs));
        if (oursFirst) bare.push_back(measure(doBare));
    }
};

}  // namespace vndiscover
