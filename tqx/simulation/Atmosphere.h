#pragma once

#include "tqx/gnss/orbit/Geodesy.h"

namespace tqx::simulation
{

/// Parameters of the Klobuchar model, as GPS and BeiDou send them.
struct KlobucharParameters {
    double amplitude[4];
    double period[4];
};

extern const KlobucharParameters klobuchar;

/// Where a signal comes from, seen from the antenna.
struct Direction {
    double sinElevation;
    double north; ///< horizontal part of the direction, of length 1
    double east;
};

/// Metres by which the ionosphere delays the code of a 1575.42 MHz signal: the broadcast model of
/// IS-GPS-200 with the parameters above. `tow` is GPS time.
double ionosphericDelay(const Geodetic& place, const Direction& direction, double tow);

/// Metres by which the troposphere delays a signal in the zenith: Saastamoinen's hydrostatic delay
/// in a standard atmosphere, and 0.1 m of wet delay at sea level.
double zenithTroposphere(const Geodetic& place);

/// The length of a path relative to that from the zenith (Black and Eisner, as in RTCA DO-229).
double troposphericMapping(double sinElevation);

} // namespace tqx::simulation
