#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

/// Several pieces of work timed in turns, so that other load affects them alike and their ratios
/// are valid even if their times are not.

/// Work whose calls are timed together; `run` makes that many of them.
struct TimedWork {
    int callsPerTurn;
    std::function<void(int calls)> run;
};

/// A turn that the system interrupted says nothing about the code.
inline double median(std::vector<double>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs a turn of each work per iteration; the benchmark's time is the first one's (UseManualTime).
/// Returns the median nanoseconds a call of each.
inline std::vector<double> runInTurns(benchmark::State& state, const std::vector<TimedWork>& works)
{
    using Clock = std::chrono::steady_clock;
    std::vector<std::vector<double>> times(works.size());
    for (auto _ : state) {
        for (size_t i = 0; i < works.size(); ++i) {
            const auto start = Clock::now();
            works[i].run(works[i].callsPerTurn);
            const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
            times[i].push_back(taken.count() / works[i].callsPerTurn);
        }
        state.SetIterationTime(times[0].back() * 1e-9);
    }
    std::vector<double> medians;
    for (std::vector<double>& column : times)
        medians.push_back(median(column));
    return medians;
}
