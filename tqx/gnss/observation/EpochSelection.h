#pragma once

#include "tqx/gnss/observation/Observation.h"
#include "tqx_gnss_export.h"

#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// Which epochs and observations are shown. The lock state is followed through all of them.
struct TQX_GNSS_API EpochSelection {
    std::optional<GnssMillis> from;
    std::optional<GnssMillis> to;        ///< the first time that is not shown
    GnssMillis interval = 1;             ///< only epochs at multiples of it
    std::vector<std::string> satellites; ///< patterns such as "G*" or "E11"; none for all
    std::vector<std::string> signals;    ///< patterns such as "1C" or "G5*"; none for all

    /// Whether the time is within the limits.
    bool isInTime(GnssMillis time) const { return (!from || time >= *from) && (!to || time < *to); }

    /// Whether the time is a multiple of the interval.
    bool isOnInterval(GnssMillis time) const { return time % interval == 0; }

    /// Whether a satellite is shown.
    bool accepts(const SatelliteId& satellite) const;

    /// Leaves out the observations that are not shown.
    void reduce(ObservationEpoch& epoch) const;
};

} // namespace tqx
