#pragma once

#include "tqx/simulation/Satellite.h"

namespace tqx::simulation
{

/// Orbit and clock of a GPS, Galileo or BeiDou satellite as in its navigation message: in the steps
/// of the message and in the time of the system.
struct KeplerEphemeris {
    KeplerElements elements;
    double ascendingNode; ///< longitude at the start of the week, semicircles
    uint16_t week;        ///< of the reference time, counted as the system does
    uint32_t toe;         ///< reference time of orbit and clock, seconds of the week
    unsigned issue;       ///< counter of ephemerides
    double clockBias;     ///< seconds
    double clockDrift;    ///< seconds per second
};

/// Motion and clock of a GLONASS satellite as in its navigation message.
struct GlonassEphemeris {
    Motion motion;
    Vector acceleration;
    uint8_t fourYears;   ///< interval of four years, 1 from 1996
    uint16_t day;        ///< of the interval, from 1
    uint32_t moscowTime; ///< reference time, seconds of the day
    uint16_t week;       ///< of GPS, of the reference time
    uint32_t toe;        ///< reference time, GPS seconds of the week
    double clockBias;    ///< GLONASS time minus satellite time, seconds
    double clockDrift;   ///< relative deviation of the carrier frequency
};

/// Number of the ephemeris that a system sends at a time (seconds since the start of the almanac
/// week): GPS changes it every two hours, BeiDou and Galileo every hour, GLONASS every half hour.
int64_t ephemerisIndex(System system, double time);

KeplerEphemeris keplerEphemeris(const Satellite& satellite, double time);
GlonassEphemeris glonassEphemeris(const Satellite& satellite, double time);

/// Week and second of the week of a system's own time.
struct SystemTime {
    SystemTime(System system, double time);
    uint16_t week;
    double second;
};

/// Reference time of the message of an SBAS satellite at a time, both seconds since the start of
/// the almanac week.
double sbasReference(double time);

/// Reference time of the ephemeris that a system sends at a time. Of GLONASS it is GPS time.
SystemTime referenceOf(System system, double time);

/// Time of GLONASS, which follows UTC three hours ahead.
struct MoscowTime {
    explicit MoscowTime(double time);
    uint8_t fourYears;
    uint16_t day;
    uint32_t second; ///< of the day
};

} // namespace tqx::simulation
