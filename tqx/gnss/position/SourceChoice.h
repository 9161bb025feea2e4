#pragma once

#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx_gnss_export.h"

#include <vector>

namespace tqx
{

/// Chooses one source out of those that a log has positions from.
class TQX_GNSS_API SourceChoice
{
public:
    SourceChoice();

    /// Takes account of a position; those with Fix::None do not count.
    void take(const Position& position);

    /// The first source in the order of positionSources() that covers nine tenths of the time that
    /// any one covers, null without positions.
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
