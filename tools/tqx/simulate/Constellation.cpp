#include "Constellation.h"

#include <cmath>

namespace tool
{

namespace
{

constexpr uint32_t fitInterval = 7200;
constexpr uint32_t secondsPerWeek = 604800;
constexpr double angleStep = 0x1p-31; // semicircles
constexpr double rateStep = 0x1p-43;

/// Between -1 and 1 semicircles.
double wrapped(double semicircles)
{
    return semicircles - 2 * std::round(semicircles / 2);
}

Ephemeris makeOrbit(Random& random, size_t plane, size_t slot, double planeOrigin)
{
    const double inPlane = 72.0 * static_cast<double>(slot) + 12.0 * static_cast<double>(plane) +
                           random.uniform(-6, 6);
    const double perigee = random.uniform(-180, 180);
    Ephemeris orbit = {};
    orbit.sqrtA = rounded(std::sqrt(26559800.0 + random.uniform(-5000, 5000)), 0x1p-19);
    orbit.eccentricity = rounded(random.uniform(0.0005, 0.018), 0x1p-33);
    orbit.inclination = rounded((55 + random.uniform(-1, 1)) / 180, angleStep);
    orbit.ascendingNode = rounded(
        wrapped((planeOrigin + 60.0 * static_cast<double>(plane) + random.uniform(-2, 2)) / 180),
        angleStep);
    orbit.perigee = rounded(perigee / 180, angleStep);
    orbit.meanAnomaly = rounded(wrapped((inPlane - perigee) / 180), angleStep);
    orbit.nodeRate = rounded(random.uniform(-2.75e-9, -2.45e-9), rateStep);
    orbit.clockBias = rounded(random.uniform(-4e-4, 4e-4), angleStep);
    orbit.clockDrift = rounded(random.uniform(-1e-11, 1e-11), rateStep);
    orbit.groupDelay = rounded(random.uniform(-1.2e-8, 5e-9), angleStep);
    return orbit;
}

} // namespace

Constellation::Constellation(Random& random, uint16_t week, double tow)
{
    constexpr size_t planes = 6;
    constexpr size_t slots = 5;
    const double planeOrigin = random.uniform(0, 60);
    for (size_t plane = 0; plane < planes; ++plane) {
        for (size_t slot = 0; slot < slots; ++slot) {
            Ephemeris orbit = makeOrbit(random, plane, slot, planeOrigin);
            orbit.week = week;
            orbit.toe = static_cast<uint32_t>(tow) / fitInterval * fitInterval;
            base.push_back(orbit);
        }
    }
}

Ephemeris Constellation::ephemerisAt(size_t index, uint16_t week, double tow) const
{
    const Ephemeris& orbit = base[index];
    Ephemeris current = orbit;
    // A satellite sends the ephemeris whose reference time comes next.
    uint32_t toe = (static_cast<uint32_t>(tow) / fitInterval + 1) * fitInterval;
    current.week = static_cast<uint16_t>(week + toe / secondsPerWeek);
    current.toe = toe % secondsPerWeek;
    const double elapsed = sinceReference(orbit, current.week, current.toe);
    current.issue = static_cast<uint16_t>((index * 8 + current.toe / fitInterval) & 0xffU);
    current.meanAnomaly =
        rounded(wrapped(orbit.meanAnomaly + meanMotion(orbit) * elapsed), angleStep);
    // The longitude of the node is told for the start of the week, which moves from week to week.
    const double weeks = current.week - orbit.week;
    current.ascendingNode = rounded(wrapped(orbit.ascendingNode + orbit.nodeRate * elapsed -
                                            earthRotation / pi * weeks * secondsPerWeek),
                                    angleStep);
    current.clockBias = rounded(orbit.clockBias + orbit.clockDrift * elapsed, angleStep);
    return current;
}

} // namespace tool
