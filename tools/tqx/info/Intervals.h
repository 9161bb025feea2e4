#pragma once

#include "GnssTime.h"

#include <cstdint>
#include <map>
#include <optional>

namespace tool
{

/// Finds out at which interval the blocks of a type come and how often some are missing. Blocks
/// of one time count once, steps back not at all. Memory is bounded: of intervals beyond the
/// first hundred different ones only the number is kept.
class Intervals
{
public:
    void add(GnssMillis time);

    /// The most frequent interval in milliseconds, if it makes up more than half of them.
    std::optional<uint64_t> getUsual() const;

    /// How many intervals are at least one and a half times the usual one; 0 without a usual one.
    uint64_t getGaps() const;

private:
    std::optional<GnssMillis> last;
    std::map<uint64_t, uint64_t> counts; ///< by interval
    uint64_t total = 0;
};

} // namespace tool
