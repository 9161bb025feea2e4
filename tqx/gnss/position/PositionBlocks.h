#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx_gnss_export.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tqx
{

/// A kind of block that holds positions.
struct PositionSource {
    const char* name;     ///< of the block
    uint16_t number;      ///< of the block
    uint32_t recordType;  ///< of its records
    bool isInertial;      ///< from the filter that integrates inertial sensors
    bool isEarthCentred;  ///< in Cartesian coordinates, which are converted on WGS84
    const char* describe; ///< in words, such as "GNSS, geodetic"
};

/// All sources, preferred ones first: integrated with inertial sensors before GNSS only, newer
/// blocks before older ones, geodetic coordinates before Cartesian ones, and last those that few
/// users want (authenticated satellites, a local datum).
TQX_GNSS_API const std::vector<PositionSource>& positionSources();

/// The source with this block number, null for other blocks.
TQX_GNSS_API const PositionSource* positionSource(uint16_t blockNumber);

/// The source of that name, case ignored, or of that block number; null for others.
TQX_GNSS_API const PositionSource* positionSource(std::string_view name);

/// Reads the record of a main block. False, with nothing done, when it is not from a position
/// source or has no time in its header; else `position` is overwritten. A block without a solution
/// gives a position with Fix::None.
TQX_GNSS_API bool readPosition(const void* record, Position& position);

} // namespace tqx
