#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <map>

namespace tqx
{

/// A set of times. Regular series are stored as first, last and period, so that a long log takes
/// little memory.
class TQX_LOG_API EpochSet
{
public:
    /// `sharedRoom` is the number of series that the sets sharing it may still add; it must outlive
    /// them.
    explicit EpochSet(size_t& sharedRoom) : m_room(sharedRoom) {}

    /// Adds a time. Returns false when it was there already. Times for which there is no room are
    /// not stored.
    bool add(GnssMillis time);

private:
    struct Series {
        GnssMillis last;
        uint64_t period; ///< 0 for a single time
    };
    using Map = std::map<GnssMillis, Series>; ///< by first time; they do not overlap

    void insert(GnssMillis first, const Series& series);
    void split(Map::iterator found, GnssMillis time);

    size_t& m_room;
    Map m_all;
    Map::iterator m_current = m_all.end(); ///< that was extended last
};

} // namespace tqx
