#pragma once

#include "tqx/log/time/GnssTime.h"

#include <optional>
#include <vector>

namespace tqx::quality
{

/// Where the antenna really was: at one place, or at a place for each of many times.
struct Reference {
    /// Degrees north and east, metres above the ellipsoid of WGS84.
    struct Place {
        double latitude = 0;
        double longitude = 0;
        double height = 0;
    };
    struct TimedPlace {
        GnssMillis time = 0;
        Place place;
    };

    std::optional<Place> fixed;
    std::vector<TimedPlace> track; ///< in ascending order; used without a fixed place
};

} // namespace tqx::quality
