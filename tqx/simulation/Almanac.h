#pragma once

#include "tqx/simulation/Systems.h"

#include <vector>

namespace tqx::simulation
{

/// The nominal place of a satellite at the start of GPS week `almanacWeek`. Angles are in degrees.
struct NominalSatellite {
    System system;
    uint8_t number;       ///< PRN, or slot of GLONASS
    int8_t channel;       ///< frequency number of GLONASS, 0 for all others
    double semiMajorAxis; ///< metres
    double inclination;
    double ascendingNode;    ///< longitude on the rotating earth
    double latitudeArgument; ///< angle from the node along the orbit
};

constexpr unsigned almanacWeek = 2400;

/// The bits of GPS, GLONASS, Galileo and BeiDou.
constexpr unsigned globalSystems = 15;

/// The nominal constellations of systems, selected by the bit with the system's number: GPS with 31
/// satellites, GLONASS with 24, Galileo with 24, BeiDou with 24 in medium orbits and 3 in inclined
/// geosynchronous ones, QZSS with 3 of those and a geostationary one, NavIC with 4 and 3, and SBAS
/// with 10 geostationary ones.
std::vector<NominalSatellite> nominalSatellites(unsigned systems);

} // namespace tqx::simulation
