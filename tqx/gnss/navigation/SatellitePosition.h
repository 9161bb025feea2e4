#pragma once

#include "tqx/gnss/navigation/Ephemeris.h"
#include "tqx/gnss/orbit/Geodesy.h"

#include <optional>

namespace tqx
{

/// Where the satellite of an ephemeris is at a time of GPS, earth-fixed. Within the hours for which
/// an ephemeris is meant it is good to metres; a day later (six hours of GLONASS and SBAS) to some
/// kilometres, which is still a small part of a degree in the sky. Nothing beyond that, and where
/// the ephemeris is not complete.
std::optional<Vector> satellitePosition(const Ephemeris& ephemeris, GnssMillis time);

} // namespace tqx
