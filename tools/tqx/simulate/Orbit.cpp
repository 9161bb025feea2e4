#include "Orbit.h"

#include <cmath>

namespace tool
{

namespace
{

constexpr double gravitation = 3.986005e14; ///< of the earth, cubic metres per second squared
constexpr double secondsPerWeek = 604800;

double eccentricAnomaly(const Ephemeris& ephemeris, double elapsed)
{
    const double mean = (ephemeris.meanAnomaly + meanMotion(ephemeris) * elapsed) * pi;
    double anomaly = mean;
    for (int i = 0; i < 10; ++i)
        anomaly = mean + ephemeris.eccentricity * std::sin(anomaly);
    return anomaly;
}

} // namespace

double meanMotion(const Ephemeris& ephemeris)
{
    const double axis = ephemeris.sqrtA * ephemeris.sqrtA;
    return std::sqrt(gravitation / (axis * axis * axis)) / pi;
}

double sinceReference(const Ephemeris& ephemeris, uint16_t week, double tow)
{
    return (week - ephemeris.week) * secondsPerWeek + tow - ephemeris.toe;
}

Vector positionAt(const Ephemeris& ephemeris, uint16_t week, double tow)
{
    const double elapsed = sinceReference(ephemeris, week, tow);
    const double anomaly = eccentricAnomaly(ephemeris, elapsed);
    const double e = ephemeris.eccentricity;
    const double axis = ephemeris.sqrtA * ephemeris.sqrtA;
    const double trueAnomaly =
        std::atan2(std::sqrt(1 - e * e) * std::sin(anomaly), std::cos(anomaly) - e);
    const double latitude = trueAnomaly + ephemeris.perigee * pi;
    const double radius = axis * (1 - e * std::cos(anomaly));
    const double x = radius * std::cos(latitude);
    const double y = radius * std::sin(latitude);
    const double node = ephemeris.ascendingNode * pi +
                        (ephemeris.nodeRate * pi - earthRotation) * elapsed -
                        earthRotation * ephemeris.toe;
    const double inclination = ephemeris.inclination * pi;
    return {x * std::cos(node) - y * std::cos(inclination) * std::sin(node),
            x * std::sin(node) + y * std::cos(inclination) * std::cos(node),
            y * std::sin(inclination)};
}

double clockAt(const Ephemeris& ephemeris, uint16_t week, double tow)
{
    constexpr double relativity = -4.442807633e-10; // seconds per square root of metre
    const double elapsed = sinceReference(ephemeris, week, tow);
    return ephemeris.clockBias + ephemeris.clockDrift * elapsed +
           relativity * ephemeris.eccentricity * ephemeris.sqrtA *
               std::sin(eccentricAnomaly(ephemeris, elapsed));
}

} // namespace tool
