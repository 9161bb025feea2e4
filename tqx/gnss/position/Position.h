#pragma once

#include "tqx/log/time/GnssTime.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

namespace tqx
{

struct PositionSource;

/// A real value that the block of a position does not have.
constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

/// How a position was computed, in terms common to all blocks.
enum class Fix : uint8_t {
    None,
    Standalone,   ///< code ranges without corrections
    Differential, ///< code ranges with corrections, those of SBAS included
    RtkFloat,
    RtkFixed,
    Ppp,       ///< converging or converged
    Estimated, ///< dead reckoning, or the inertial sensors alone
    Manual,    ///< a fixed position that was entered
};

/// What an accuracy means.
enum class AccuracyLevel : uint8_t {
    None,
    Sigma,     ///< standard deviations; the horizontal one is the root of the sum of both variances
    Percent95, ///< not exceeded by 95 % of the errors, as the receiver estimates it
};

/// A position at one instant, from whatever block. Texts live as long as the library.
struct Position {
    const PositionSource* source = nullptr; ///< the kind of block
    GnssMillis time = 0;
    Fix fix = Fix::None;          ///< None: there is no position at that time, and nothing below
    std::string_view mode;        ///< the block's name for how it was computed
    double latitude = notKnown;   ///< degrees, northern ones positive
    double longitude = notKnown;  ///< degrees, eastern ones positive, -180 to 180
    double height = notKnown;     ///< metres above the ellipsoid of the datum
    double undulation = notKnown; ///< metres from the ellipsoid up to the geoid
    std::string_view datum;       ///< its name; empty when the block does not say
    AccuracyLevel level = AccuracyLevel::None;
    double horizontalAccuracy = notKnown; ///< metres
    double verticalAccuracy = notKnown;   ///< metres
    double spatialAccuracy = notKnown;    ///< metres, of blocks that only have that
    int satellites = -1;                  ///< satellites used, -1 when not known
    double correctionAge = notKnown;      ///< mean age of the corrections, seconds
    int reference = -1;      ///< identifier of the base station or correction service, -1 for none
    double north = notKnown; ///< velocity, metres per second
    double east = notKnown;
    double up = notKnown;
    double heading = notKnown; ///< degrees clockwise from north, of the forward axis
    double pitch = notKnown;   ///< degrees, nose up positive
    double roll = notKnown;    ///< degrees, right side down positive
    double pdop = notKnown;    ///< dilutions of precision, see addDilution()
    double hdop = notKnown;
    double vdop = notKnown;

    /// Metres above the geoid; not known without the undulation.
    double aboveGeoid() const { return height - undulation; }
    /// Metres per second over ground; not known without the velocity.
    double groundSpeed() const { return std::hypot(north, east); }
};

} // namespace tqx
