#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace tqx
{

/// Finds the usual interval between times, and where some are missing. Equal times count once; a
/// step back begins anew. Memory is bounded: intervals for which there is no room left are only
/// counted. Objects that share room are used by one thread at a time.
class TQX_LOG_API Intervals
{
public:
    /// An interval that is too long.
    struct Gap {
        uint64_t millis;  ///< from one time to the next
        GnssMillis after; ///< the time before it
        uint64_t missing; ///< number of times that would fit into it
    };

    /// `sharedRoom` is the number of runs of equal intervals that the objects sharing it may still
    /// add; it must outlive them.
    explicit Intervals(size_t& sharedRoom) : m_room(sharedRoom) {}

    /// Adds the next time of the stream. Throws std::bad_alloc; the time may or may not have been
    /// counted.
    void add(GnssMillis time);

    /// The most frequent interval in milliseconds, if more than half of all intervals equal it.
    std::optional<uint64_t> getUsual() const;

    /// The first intervals of at least one and a half times `usual` milliseconds (above 0), at most
    /// `most` of them, in the order in which they came.
    std::vector<Gap> getGaps(uint64_t usual, size_t most) const;

    /// Number of gaps. Those for which there was no room are counted by the interval that was usual
    /// when they occurred.
    uint64_t getGapCount(uint64_t usual) const;

    /// All gaps of one length.
    struct GapGroup {
        Gap first;
        uint64_t times;
    };

    /// The gaps by length, shortest first, without those for which there was no room.
    std::vector<GapGroup> getGapsByLength(uint64_t usual) const;

private:
    /// Equal intervals that follow each other.
    struct Run {
        GnssMillis after; ///< the time before the first of them
        uint64_t millis;
        uint64_t times;
    };

    /// How often an interval was seen: at least `times` less `excess`.
    struct Seen {
        uint64_t times = 0;
        uint64_t excess = 0;
    };

    void count(uint64_t interval);
    void keep(GnssMillis after, uint64_t interval);
    bool makeRoom();

    size_t& m_room;
    std::optional<GnssMillis> m_last;
    std::map<uint64_t, Seen> m_frequent;
    uint64_t m_total = 0;
    std::vector<Run> m_runs;
    size_t m_leastToSift = 0; ///< number of runs from which looking for room pays again
    uint64_t m_unlisted = 0;
};

} // namespace tqx
