#pragma once

#include "tqx/gnss/observation/SatelliteId.h"

#include <cstdint>
#include <vector>

namespace tqx::view
{

/// Where a satellite is seen, in degrees.
struct Direction {
    SatelliteId satellite;
    float azimuth; ///< clockwise from north
    float elevation;
};

/// Whether blocks of this number hold directions.
bool holdsDirections(uint16_t blockNumber);

/// The directions in the record of such a block; those that are not available are left out.
std::vector<Direction> directionsIn(const void* record);

} // namespace tqx::view
