#include "tqx/simulation/Track.h"

#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double radius = 200;

} // namespace

Track::Track(const TrackSettings& wanted)
    : settings(wanted), speed(wanted.kind == TrackSettings::Kind::Static ? 0 : wanted.speed),
      start(toEarthFixed(wanted.start)), frame(wanted.start)
{
    if (settings.kind == TrackSettings::Kind::Circle)
        turnRate = speed / radius;
    if (settings.kind == TrackSettings::Kind::Line)
        longitudeRate = speed / std::hypot(start.x, start.y);
}

Motion Track::at(double elapsed) const
{
    switch (settings.kind) {
    case TrackSettings::Kind::Static:
        break;
    case TrackSettings::Kind::Circle: {
        const double angle = std::fmod(turnRate * elapsed, 2 * pi);
        const double sine = std::sin(angle);
        const double cosine = std::cos(angle);
        return {start + frame.toEarthFixed({radius * sine, radius * (1 - cosine), 0}),
                frame.toEarthFixed({speed * cosine, speed * sine, 0})};
    }
    case TrackSettings::Kind::Line: {
        const double angle = std::fmod(longitudeRate * elapsed, 2 * pi);
        const Vector position = {start.x * std::cos(angle) - start.y * std::sin(angle),
                                 start.y * std::cos(angle) + start.x * std::sin(angle), start.z};
        return {position, {-position.y * longitudeRate, position.x * longitudeRate, 0}};
    }
    }
    return {start, {0, 0, 0}};
}

} // namespace tqx::simulation
