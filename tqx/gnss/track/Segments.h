#pragma once

#include "tqx/gnss/position/Position.h"

#include <optional>

namespace tqx
{

/// Finds where one line of a track ends and the next begins: where there is no position, where time
/// runs back, and at gaps longer than both 5 seconds and 3 of the preceding intervals.
class Segments
{
public:
    /// Whether a position continues the line of the one before.
    bool goesOn(const Position& position)
    {
        const std::optional<GnssMillis> before = m_last;
        if (position.fix == Fix::None) {
            m_last.reset();
            return false;
        }
        m_last = position.time;
        if (!before || position.time < *before)
            return false;
        const GnssMillis step = position.time - *before;
        // The first step sets the interval: a log with one position per minute has no gaps.
        const bool isGap = m_interval != 0 && step > 5000 && step > 3 * m_interval;
        if (!isGap)
            m_interval = step;
        return !isGap;
    }

private:
    std::optional<GnssMillis> m_last;
    GnssMillis m_interval = 0;
};

} // namespace tqx
