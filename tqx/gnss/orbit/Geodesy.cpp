#include "tqx/gnss/orbit/Geodesy.h"

namespace tqx
{

namespace
{

constexpr double semiMajorAxis = 6378137.0;
constexpr double flattening = 1 / 298.257223563;
constexpr double eccentricitySquared = flattening * (2 - flattening);

/// Radius of curvature across the meridian.
double primeVertical(double latitude)
{
    const double sine = std::sin(latitude);
    return semiMajorAxis / std::sqrt(1 - eccentricitySquared * sine * sine);
}

} // namespace

Vector toEarthFixed(const Geodetic& position)
{
    const double radius = primeVertical(position.latitude);
    const double inPlane = (radius + position.height) * std::cos(position.latitude);
    return {inPlane * std::cos(position.longitude), inPlane * std::sin(position.longitude),
            (radius * (1 - eccentricitySquared) + position.height) * std::sin(position.latitude)};
}

Geodetic toGeodetic(const Vector& position)
{
    // Bowring's latitude, exact enough near the ground without iteration.
    constexpr double semiMinorAxis = semiMajorAxis * (1 - flattening);
    const double inPlane = std::hypot(position.x, position.y);
    const double angle = std::atan2(position.z * semiMajorAxis, inPlane * semiMinorAxis);
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    const double latitude =
        std::atan2(position.z + eccentricitySquared / (1 - eccentricitySquared) * semiMinorAxis *
                                    sine * sine * sine,
                   inPlane - eccentricitySquared * semiMajorAxis * cosine * cosine * cosine);
    const double sinLat = std::sin(latitude);
    const double height = inPlane * std::cos(latitude) + position.z * sinLat -
                          semiMajorAxis * semiMajorAxis / primeVertical(latitude);
    return {latitude, std::atan2(position.y, position.x), height};
}

LocalFrame::LocalFrame(const Geodetic& place)
{
    const double sinLat = std::sin(place.latitude);
    const double cosLat = std::cos(place.latitude);
    const double sinLon = std::sin(place.longitude);
    const double cosLon = std::cos(place.longitude);
    m_east = {-sinLon, cosLon, 0};
    m_north = {-sinLat * cosLon, -sinLat * sinLon, cosLat};
    m_up = {cosLat * cosLon, cosLat * sinLon, sinLat};
}

Vector LocalFrame::toLocal(const Vector& difference) const
{
    return {dot(difference, m_east), dot(difference, m_north), dot(difference, m_up)};
}

Vector LocalFrame::toEarthFixed(const Vector& local) const
{
    return m_east * local.x + m_north * local.y + m_up * local.z;
}

Geodetic moved(const Geodetic& place, const Vector& local)
{
    const double sine = std::sin(place.latitude);
    const double across = primeVertical(place.latitude);
    const double along =
        across * (1 - eccentricitySquared) / (1 - eccentricitySquared * sine * sine);
    return {place.latitude + local.y / (along + place.height),
            place.longitude + local.x / ((across + place.height) * std::cos(place.latitude)),
            place.height + local.z};
}

} // namespace tqx
