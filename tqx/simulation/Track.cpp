#include "tqx/simulation/Track.h"

#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double radius = 200;

} // namespace

Track::Track(const TrackSettings& wanted)
    : m_settings(wanted), m_speed(wanted.kind == TrackSettings::Kind::Static ? 0 : wanted.speed),
      m_start(toEarthFixed(wanted.start)), m_frame(wanted.start)
{
    if (m_settings.kind == TrackSettings::Kind::Circle)
        m_turnRate = m_speed / radius;
    if (m_settings.kind == TrackSettings::Kind::Line)
        m_longitudeRate = m_speed / std::hypot(m_start.x, m_start.y);
}

Motion Track::at(double elapsed) const
{
    switch (m_settings.kind) {
    case TrackSettings::Kind::Static:
        break;
    case TrackSettings::Kind::Circle: {
        const double angle = std::fmod(m_turnRate * elapsed, 2 * pi);
        const double sine = std::sin(angle);
        const double cosine = std::cos(angle);
        return {m_start + m_frame.toEarthFixed({radius * sine, radius * (1 - cosine), 0}),
                m_frame.toEarthFixed({m_speed * cosine, m_speed * sine, 0})};
    }
    case TrackSettings::Kind::Line: {
        const double angle = std::fmod(m_longitudeRate * elapsed, 2 * pi);
        const Vector position = {m_start.x * std::cos(angle) - m_start.y * std::sin(angle),
                                 m_start.y * std::cos(angle) + m_start.x * std::sin(angle),
                                 m_start.z};
        return {position, {-position.y * m_longitudeRate, position.x * m_longitudeRate, 0}};
    }
    }
    return {m_start, {0, 0, 0}};
}

Motion Track::aheadAt(double elapsed, double distance) const
{
    const double angle = std::fmod(m_turnRate * elapsed, 2 * pi);
    const double sine = distance * std::sin(angle);
    const double cosine = distance * std::cos(angle);
    return {{cosine, sine, 0}, Vector{-sine, cosine, 0} * m_turnRate};
}

} // namespace tqx::simulation
