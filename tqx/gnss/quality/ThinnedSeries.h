#pragma once

#include "tqx/gnss/quality/Quality.h"

namespace tqx::quality
{

/// Keeps the least, largest and mean value of stretches of time of equal width. When there are too
/// many, they become twice as wide: memory is bounded, and no extreme is lost.
class ThinnedSeries
{
public:
    /// Times do not go back; what is earlier counts in the last stretch. NaN is left out.
    void add(GnssMillis time, double value);

    bool isEmpty() const { return m_stretches.empty(); }
    Series get(const std::string& name) const;

private:
    static constexpr size_t most = 1024;

    struct Stretch {
        uint64_t place; ///< in widths since the beginning of time
        double least;
        double most;
        double sum;
        uint64_t count;
    };

    void widen();

    uint64_t m_width = 1000;
    std::vector<Stretch> m_stretches;
};

} // namespace tqx::quality
