#pragma once

#include "tqx/gnss/quality/Quality.h"

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

/// Mean and spread in one pass, by the updating formulas of Welford (1962).
class Moments
{
public:
    void add(double value)
    {
        if (std::isnan(value))
            return;
        ++m_count;
        const double deviation = value - m_mean;
        m_mean += deviation / static_cast<double>(m_count);
        m_squares += deviation * (value - m_mean);
        m_least = m_count == 1 ? value : std::min(m_least, value);
        m_most = m_count == 1 ? value : std::max(m_most, value);
    }

    uint64_t getCount() const { return m_count; }
    double getMean() const { return m_count == 0 ? none : m_mean; }
    /// Sum of the squares of deviations from the mean.
    double getSquares() const { return m_squares; }

    Spread get() const
    {
        if (m_count == 0)
            return {};
        return {m_count, m_mean, std::sqrt(m_squares / static_cast<double>(m_count)), m_least,
                m_most};
    }

private:
    uint64_t m_count = 0;
    double m_mean = 0;
    double m_squares = 0;
    double m_least = 0;
    double m_most = 0;
};

/// Quantiles of values above 0 to one percent, from counts of logarithmic classes between a tenth
/// of a millimetre and a thousand kilometres.
class Quantiles
{
public:
    void add(double value)
    {
        if (std::isnan(value))
            return;
        const double place = std::log(std::max(value, least) / least) * perUnit;
        ++m_counts[std::min(static_cast<size_t>(place), classes - 1)];
        ++m_total;
    }

    /// The value that `share` of all do not exceed, NaN without values.
    double get(double share) const
    {
        if (m_total == 0)
            return none;
        const auto wanted = static_cast<uint64_t>(std::ceil(share * static_cast<double>(m_total)));
        uint64_t sum = 0;
        for (size_t i = 0; i < classes; ++i) {
            sum += m_counts[i];
            if (sum >= wanted)
                return least * std::exp((static_cast<double>(i) + 0.5) / perUnit);
        }
        return none;
    }

private:
    static constexpr double least = 1e-4;
    static constexpr double perUnit = 50; ///< classes for a factor of e
    static constexpr size_t classes = 1152;

    std::vector<uint32_t> m_counts = std::vector<uint32_t>(classes);
    uint64_t m_total = 0;
};

} // namespace tqx::quality
