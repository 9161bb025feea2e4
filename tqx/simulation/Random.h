#pragma once

#include <cmath>
#include <cstdint>
#include <random>

namespace tqx::simulation
{

/// Random numbers that depend on the seed alone: the generator is fixed by the language standard,
/// and the mapping to distributions is our own.
class Random
{
public:
    explicit Random(uint64_t seed) : m_generator(seed) {}

    /// From 0 to 1, exclusive.
    double uniform() { return static_cast<double>(m_generator() >> 11U) * 0x1p-53; }

    double uniform(double low, double high) { return low + (high - low) * uniform(); }

    /// Below `limit`, which is above 0.
    uint64_t below(uint64_t limit) { return m_generator() % limit; }

    /// True with the given probability.
    bool chance(double probability) { return uniform() < probability; }

    /// Close to a normal distribution around 0, and never beyond 3.5 sigma: the sum of four
    /// uniform numbers, which costs no logarithm.
    double normal(double sigma);

private:
    std::mt19937_64 m_generator;
};

/// `value` in whole steps. What is logged is a multiple of a step that is far larger than the
/// differences between mathematical libraries.
inline double rounded(double value, double step)
{
    const double perUnit = 1 / step; // an integer for decimal steps, unlike the step itself
    return std::round(value * perUnit) / perUnit;
}

/// The number of steps in `value`, for fields that hold scaled integers.
inline int64_t steps(double value, double step)
{
    return std::llround(value / step);
}

} // namespace tqx::simulation
