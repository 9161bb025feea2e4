#pragma once

#include "tqx/log/time/GnssTime.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace tqx
{

/// Finds out at which interval the blocks of a type come and when some are missing. Blocks of one
/// time count once, steps back not at all. Memory is bounded: of intervals beyond the first hundred
/// different ones only the number is kept.
class Intervals
{
public:
    /// Intervals of one length that are too long.
    struct Gap {
        uint64_t millis;  ///< from one block to the next
        uint64_t times;   ///< how often
        GnssMillis after; ///< time of the block before the first of them
        uint64_t missing; ///< blocks that would fit into one
    };

    void add(GnssMillis time);

    /// The most frequent interval in milliseconds, if it makes up more than half of them.
    std::optional<uint64_t> getUsual() const;

    /// The intervals of at least one and a half times the usual one, shortest first; none without
    /// a usual one.
    std::vector<Gap> getGaps() const;

private:
    struct Seen {
        uint64_t times = 0;
        GnssMillis after = 0;
    };

    std::optional<GnssMillis> last;
    std::map<uint64_t, Seen> intervals;
    uint64_t total = 0;
};

} // namespace tqx
