#pragma once

#include <cmath>

namespace tqx
{

constexpr double pi = 3.14159265358979323846;
constexpr double speedOfLight = 299792458.0; ///< metres per second

/// Earth-centred, earth-fixed, metres.
struct Vector {
    double x;
    double y;
    double z;
};

constexpr Vector operator+(const Vector& a, const Vector& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr Vector operator-(const Vector& a, const Vector& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

constexpr Vector operator*(const Vector& a, double factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

constexpr double dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline double length(const Vector& a)
{
    return std::sqrt(dot(a, a));
}

/// On the ellipsoid WGS84: radians and metres.
struct Geodetic {
    double latitude;
    double longitude;
    double height;
};

Vector toEarthFixed(const Geodetic& position);

/// The reverse, to a tenth of a micrometre near the ground.
Geodetic toGeodetic(const Vector& position);

/// East, north and up at a place.
class LocalFrame
{
public:
    explicit LocalFrame(const Geodetic& place);

    /// Components east, north and up of a difference of earth-fixed positions.
    Vector toLocal(const Vector& difference) const;

    /// The reverse of toLocal().
    Vector toEarthFixed(const Vector& local) const;

    /// Directions of length 1, earth-fixed.
    const Vector& getEast() const { return m_east; }
    const Vector& getNorth() const { return m_north; }
    const Vector& getUp() const { return m_up; }

private:
    Vector m_east;
    Vector m_north;
    Vector m_up;
};

/// A place `local` metres east, north and up of another.
Geodetic moved(const Geodetic& place, const Vector& local);

} // namespace tqx
