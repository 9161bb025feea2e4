#pragma once

#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx_gnss_export.h"

#include <vector>

namespace tqx
{

/// Chooses one of the position sources in a log.
class TQX_GNSS_API SourceChoice
{
public:
    SourceChoice();

    /// Counts a position, unless it has Fix::None.
    void take(const Position& position);

    /// The first source in the order of positionSources() that covers at least nine tenths of the
    /// time that the best one covers; null without positions.
    const PositionSource* best() const;

    /// Those with positions.
    std::vector<const PositionSource*> found() const;

private:
    struct Extent {
        uint64_t count = 0;
        GnssMillis first = 0;
        GnssMillis last = 0;
    };

    std::vector<Extent> m_extents; ///< in the order of positionSources()
};

} // namespace tqx
