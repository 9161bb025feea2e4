#pragma once

#include "tqx/gnss/orbit/GlonassOrbit.h"

#include <string>

namespace tqx::simulation
{

/// How the antenna moves.
struct TrackSettings {
    enum class Kind { Static, Circle, Line };

    Kind kind = Kind::Static;
    Geodetic start = {47.07 * pi / 180, 15.45 * pi / 180, 412.3};
    double speed = 15; ///< metres per second
};

/// The path of the antenna: it stays, drives round a circle of 200 m radius, level at its start and
/// to the north of it, or travels eastwards along its parallel.
class Track
{
public:
    explicit Track(const TrackSettings& settings);

    /// Motion on the rotating earth.
    Motion at(double elapsed) const;

    /// Where a point of the vehicle is that many metres ahead of the antenna, and how it moves, as
    /// seen from the antenna: east, north and up. The vehicle heads east at first.
    Motion aheadAt(double elapsed, double distance) const;

    /// Radians per second by which it turns to the left.
    double getTurnRate() const { return m_turnRate; }
    /// Metres per second.
    double getSpeed() const { return m_speed; }

private:
    TrackSettings m_settings;
    double m_speed;
    double m_turnRate = 0;      ///< in the circle
    double m_longitudeRate = 0; ///< on the line, radians per second
    Vector m_start;
    LocalFrame m_frame;
};

} // namespace tqx::simulation
