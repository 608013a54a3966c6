// Measures two pieces of work in turn, so that other load on the machine affects both alike.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace vndiscover {

// Sorts the samples. 0 if there are none.
inline double Median(std::vector<double>& samples) {
    if (samples.empty()) return 0;
    std::sort(samples.begin(), samples.end());
    const size_t middle = samples.size() / 2;
    return samples.size() % 2 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
}

// Closer to the result of an idle machine than the median. The samples must be sorted, as after
// Median.
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

    // measure(work) returns a sample. The two alternate in going first.
    template <class Measure, class Ours, class Bare>
    void Turn(Measure&& measure, Ours&& doOurs, Bare&& doBare) {
        const bool oursFirst = ours.size() % 2 == 0;
        if (!oursFirst) bare.push_back(measure(doBare));
        ours.push_back(measure(doOurs));
        if (oursFirst) bare.push_back(measure(doBare));
    }
};

}  // namespace vndiscover
