#pragma once

#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/orbit/System.h"

namespace tqx
{

/// A Kepler orbit on the rotating earth with the corrections that navigation messages carry, at a
/// reference time. Angles are in semicircles, except for the corrections, which are in radians and
/// metres.
struct KeplerElements {
    double sqrtA;
    double eccentricity;
    double inclination;
    double ascendingNode; ///< longitude on the earth at the reference time
    double perigee;
    double meanAnomaly;
    double motionCorrection; ///< to the mean motion that follows from the axis
    double nodeRate;         ///< of the right ascension, semicircles per second
    double inclinationRate;
    double cuc, cus; ///< argument of latitude
    double crc, crs; ///< radius
    double cic, cis; ///< inclination
};

/// Constants from the interface document of a system for computing with its orbits.
struct EarthModel {
    double gravitation; ///< cubic metres per second squared
    double rotation;    ///< radians per second
    double relativity;  ///< of the clock, seconds per square root of metre
};

/// IS-GPS-200, also for QZSS, NavIC and SBAS; Galileo OS SIS ICD; BDS-SIS-ICD-B1I and B3I. Not of
/// GLONASS, which sends no Kepler elements.
const EarthModel& earthModel(System system);

/// Position and the effect of the changing speed on the clock.
struct KeplerPoint {
    Vector position;   ///< earth-fixed
    double relativity; ///< seconds by which it advances the clock
};

KeplerPoint pointAt(const KeplerElements& elements, const EarthModel& model, double elapsed);

/// The same orbit for another reference time.
KeplerElements advanced(const KeplerElements& elements, const EarthModel& model, double elapsed);

/// Between -1 and 1 semicircles.
double wrapped(double semicircles);

} // namespace tqx
