#include "tqx/gnss/navigation/SatellitePosition.h"

#include "tqx/gnss/navigation/Weeks.h"
#include "tqx/gnss/orbit/GlonassOrbit.h"
#include "tqx/gnss/orbit/Kepler.h"
#include "tqx/log/time/LeapSeconds.h"

#include <cmath>

namespace tqx
{

namespace
{

constexpr double longestKepler = 86400;   ///< seconds
constexpr double longestDynamics = 21600; ///< seconds
constexpr double beiDouBehind = 14;       ///< seconds, of GPS time

double secondsOf(GnssMillis time)
{
    return static_cast<double>(time) * 1e-3;
}

EarthModel modelOf(char system)
{
    return earthModel(system == 'E'   ? System::Galileo
                      : system == 'C' ? System::BeiDou
                                      : System::Gps);
}

/// The geostationary satellites of BeiDou: their elements refer to a plane inclined by 5 degrees
/// (BDS-SIS-ICD, 5.2.4.12).
bool isGeostationary(const Ephemeris& e)
{
    return e.satellite.system == 'C' &&
           (e.message == NavigationMessage::D2 || e.satellite.number <= 5 ||
            e.satellite.number >= 59) &&
           e.message != NavigationMessage::Cnv1 && e.message != NavigationMessage::Cnv2;
}

Vector keplerPosition(const Ephemeris& e, double elapsed)
{
    KeplerElements elements = {};
    elements.sqrtA = e.sqrtA;
    elements.eccentricity = e.e;
    elements.inclination = e.i0 / pi;
    elements.perigee = e.omega / pi;
    elements.meanAnomaly = e.m0 / pi;
    elements.motionCorrection = e.deltaN / pi;
    elements.nodeRate = e.omegaDot / pi;
    elements.inclinationRate = std::isnan(e.iDot) ? 0 : e.iDot / pi;
    elements.cuc = e.cuc;
    elements.cus = e.cus;
    elements.crc = e.crc;
    elements.crs = e.crs;
    elements.cic = e.cic;
    elements.cis = e.cis;
    EarthModel model = modelOf(e.satellite.system);
    elements.ascendingNode = (e.omega0 - model.rotation * e.toe) / pi;
    if (!isGeostationary(e))
        return pointAt(elements, model, elapsed).position;
    const double turn = model.rotation * elapsed;
    model.rotation = 0;
    const Vector inPlane = pointAt(elements, model, elapsed).position;
    constexpr double tilt = -5 * pi / 180;
    const Vector level = {inPlane.x, std::cos(tilt) * inPlane.y + std::sin(tilt) * inPlane.z,
                          -std::sin(tilt) * inPlane.y + std::cos(tilt) * inPlane.z};
    return {std::cos(turn) * level.x + std::sin(turn) * level.y,
            -std::sin(turn) * level.x + std::cos(turn) * level.y, level.z};
}

Motion motionOf(const Ephemeris& e)
{
    return {{e.x, e.y, e.z}, {e.vx, e.vy, e.vz}};
}

} // namespace

std::optional<Vector> satellitePosition(const Ephemeris& ephemeris, GnssMillis time)
{
    const char system = ephemeris.satellite.system;
    if (system != 'R' && system != 'S') {
        const double weekOffset = system == 'C' ? navigation::beiDouWeekZero : 0;
        const double behind = system == 'C' ? beiDouBehind : 0;
        const double elapsed =
            secondsOf(time) - behind -
            ((ephemeris.week + weekOffset) * navigation::secondsPerWeek + ephemeris.toe);
        if (!(std::fabs(elapsed) <= longestKepler))
            return std::nullopt;
        const Vector position = keplerPosition(ephemeris, elapsed);
        return std::isnan(length(position)) ? std::nullopt : std::optional(position);
    }
    const double reference = secondsOf(ephemeris.reference);
    const double now = secondsOf(system == 'R' ? utcMillis(time) : time);
    const double elapsed = now - reference;
    const Motion motion = motionOf(ephemeris);
    if (!(std::fabs(elapsed) <= longestDynamics) || !(length(motion.position) > 6e6))
        return std::nullopt;
    if (system == 'S')
        return motion.position + motion.velocity * elapsed;
    constexpr double origin = 2400 * navigation::secondsPerWeek;
    const double start = secondsOf(time) - elapsed - origin;
    return integrated(motion, start, start + elapsed).position;
}

} // namespace tqx
