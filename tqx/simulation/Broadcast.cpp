#include "tqx/simulation/Broadcast.h"

#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double almanacStart = double{almanacWeek} * secondsPerWeek;

/// Seconds by which the time of a system is behind that of GPS.
double behind(System system)
{
    return system == System::BeiDou    ? double{beiDouDelay}
           : system == System::Glonass ? double{leapSeconds}
                                       : 0.0;
}

uint32_t updateInterval(System system)
{
    constexpr uint32_t intervals[systemCount] = {7200, 1800, 3600, 3600, 3600, 7200, 240};
    return intervals[indexOf(system)];
}

/// Reference time of an ephemeris, seconds since the start of the almanac week. GPS sends what
/// comes next, GLONASS what is in the middle of its interval.
double referenceTime(System system, double time)
{
    constexpr double offsets[systemCount] = {1, 0.5, 0, 0, 0, 0, 0.5};
    const double index = static_cast<double>(ephemerisIndex(system, time));
    return (index + offsets[indexOf(system)]) * updateInterval(system) - almanacStart +
           behind(system);
}

Vector rounded(const Vector& v, double step)
{
    return {simulation::rounded(v.x, step), simulation::rounded(v.y, step),
            simulation::rounded(v.z, step)};
}

} // namespace

int64_t ephemerisIndex(System system, double time)
{
    const double systemTime = time + almanacStart - behind(system);
    return static_cast<int64_t>(std::floor(systemTime / updateInterval(system)));
}

SystemTime::SystemTime(System system, double time)
{
    constexpr unsigned zeros[systemCount] = {
        0, 0, galileoWeekZero, beiDouWeekZero, 0, navIcWeekZero, 0};
    const double total = time + almanacStart - (system == System::BeiDou ? beiDouDelay : 0);
    const double weeks = std::floor(total / secondsPerWeek);
    week = static_cast<uint16_t>(weeks - zeros[indexOf(system)]);
    second = total - weeks * secondsPerWeek;
}

double sbasReference(double time)
{
    return referenceTime(System::Sbas, time);
}

SystemTime referenceOf(System system, double time)
{
    return {system, referenceTime(system, time)};
}

MoscowTime::MoscowTime(double time)
{
    constexpr double from1980To1996 = 5839; // days between the first day of GPS and 1996-01-01
    const double total = time + almanacStart - leapSeconds + moscowAhead;
    const double days = std::floor(total / secondsPerDay);
    const auto since = static_cast<unsigned>(days - from1980To1996);
    fourYears = static_cast<uint8_t>(since / 1461 + 1);
    day = static_cast<uint16_t>(since % 1461 + 1);
    second = static_cast<uint32_t>(total - days * secondsPerDay);
}

KeplerEphemeris keplerEphemeris(const Satellite& satellite, double time)
{
    constexpr double angleStep = 0x1p-31; // semicircles
    const System system = satellite.getSystem();
    const double reference = referenceTime(system, time);
    const SystemTime named(system, reference);
    KeplerEphemeris ephemeris = {};
    ephemeris.elements = satellite.elementsAt(reference);
    ephemeris.elements.meanAnomaly = simulation::rounded(ephemeris.elements.meanAnomaly, angleStep);
    ephemeris.elements.inclination = simulation::rounded(ephemeris.elements.inclination, angleStep);
    ephemeris.week = named.week;
    ephemeris.toe = static_cast<uint32_t>(std::llround(named.second));
    ephemeris.ascendingNode =
        simulation::rounded(wrapped(ephemeris.elements.ascendingNode +
                                    earthModel(system).rotation / pi * ephemeris.toe),
                            angleStep);
    ephemeris.issue = static_cast<unsigned>(ephemerisIndex(system, time) % 240);
    ephemeris.clockBias = simulation::rounded(satellite.clockAt(reference),
                                              system == System::Gps ? 0x1p-31 : 0x1p-33);
    ephemeris.clockDrift = satellite.getClockDrift();
    return ephemeris;
}

GlonassEphemeris glonassEphemeris(const Satellite& satellite, double time)
{
    const double reference = referenceTime(System::Glonass, time);
    const SystemTime named(System::Gps, reference);
    const MoscowTime moscow(reference);
    const Motion motion = satellite.motionAt(reference);
    return {{rounded(motion.position, 1000 * 0x1p-11), rounded(motion.velocity, 1000 * 0x1p-20)},
            rounded(lunisolarAcceleration(motion.position, reference), 1000 * 0x1p-30),
            moscow.fourYears,
            moscow.day,
            moscow.second,
            named.week,
            static_cast<uint32_t>(std::llround(named.second)),
            simulation::rounded(-satellite.clockAt(reference), 0x1p-30),
            simulation::rounded(satellite.getClockDrift(), 0x1p-40)};
}

} // namespace tqx::simulation
