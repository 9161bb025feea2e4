#pragma once

#include "Geodesy.h"

#include <cstdint>

namespace tool
{

/// A satellite's orbit and clock as its navigation message tells them, in the units of the
/// message: seconds, metres, semicircles.
struct Ephemeris {
    uint16_t week;  ///< of the reference time
    uint32_t toe;   ///< reference time, seconds of the week
    uint16_t issue; ///< number that changes with each new ephemeris
    double sqrtA;
    double eccentricity;
    double inclination;
    double ascendingNode; ///< longitude at the start of the week
    double perigee;
    double meanAnomaly; ///< at the reference time
    double nodeRate;
    double clockBias;  ///< seconds at the reference time
    double clockDrift; ///< seconds per second
    double groupDelay; ///< seconds, between L1 and L2
};

/// Semicircles per second by which the mean anomaly grows.
double meanMotion(const Ephemeris& ephemeris);

/// Earth-fixed position at a time of the week in seconds.
Vector positionAt(const Ephemeris& ephemeris, uint16_t week, double tow);

/// How far the satellite's clock is ahead, seconds, the effect of its changing speed included.
double clockAt(const Ephemeris& ephemeris, uint16_t week, double tow);

/// Seconds by which a time is behind the reference time.
double sinceReference(const Ephemeris& ephemeris, uint16_t week, double tow);

constexpr double earthRotation = 7.2921151467e-5; ///< radians per second

} // namespace tool
