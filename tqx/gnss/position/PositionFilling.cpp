#include "tqx/gnss/position/PositionFilling.h"

#include "tqx/gnss/orbit/Geodesy.h"

#include <cmath>
#include <iterator>

namespace tqx::filling
{

namespace
{

constexpr double degree = pi / 180;

} // namespace

double known(double value)
{
    return value <= -2e10 || !std::isfinite(value) ? notKnown : value;
}

double known(uint16_t value, double scale)
{
    return value == 65535 ? notKnown : value * scale;
}

Fix fixOfMode(unsigned mode)
{
    static constexpr Fix fixes[] = {Fix::None,         Fix::Standalone, Fix::Differential,
                                    Fix::Differential, Fix::RtkFixed,   Fix::RtkFloat,
                                    Fix::Estimated,    Fix::Manual,     Fix::Ppp,
                                    Fix::Ppp,          Fix::RtkFixed,   Fix::RtkFloat};
    return mode < std::size(fixes) ? fixes[mode] : Fix::Standalone;
}

Fix fixOfInertialMode(unsigned mode, unsigned gnssMode)
{
    constexpr unsigned withGnss = 3;
    if (mode == 0)
        return Fix::None;
    const Fix used = fixOfMode(gnssMode);
    return mode > withGnss ? Fix::Estimated : used == Fix::None ? Fix::Standalone : used;
}

namespace
{

double along(const Variances& v, const Vector& d)
{
    return d.x * d.x * v.xx + d.y * d.y * v.yy + d.z * d.z * v.zz +
           2 * (d.x * d.y * v.xy + d.x * d.z * v.xz + d.y * d.z * v.yz);
}

Geodetic placeOf(const Position& position)
{
    return {position.latitude * degree, position.longitude * degree, position.height};
}

} // namespace

bool setPlace(Position& position, double latitude, double longitude, double height)
{
    position.latitude = known(latitude) / degree;
    position.longitude = known(longitude) / degree;
    position.height = known(height);
    return std::isfinite(position.latitude) && std::isfinite(position.longitude);
}

bool setEarthFixed(Position& position, double x, double y, double z)
{
    const Vector point = {known(x), known(y), known(z)};
    if (!std::isfinite(length(point)) || length(point) < 1000) // zeros are not a place
        return false;
    const Geodetic place = toGeodetic(point);
    return setPlace(position, place.latitude, place.longitude, place.height);
}

void setVelocity(Position& position, double north, double east, double up)
{
    position.north = known(north);
    position.east = known(east);
    position.up = known(up);
}

void setEarthFixedVelocity(Position& position, double x, double y, double z)
{
    const Vector local = LocalFrame(placeOf(position)).toLocal({known(x), known(y), known(z)});
    setVelocity(position, local.y, local.x, local.z);
}

void setDeviations(Position& position, double north, double east, double up)
{
    position.level = AccuracyLevel::Sigma;
    position.horizontalAccuracy = std::hypot(north, east);
    position.verticalAccuracy = up;
}

void setVariances(Position& position, const Variances& variances)
{
    const LocalFrame frame(placeOf(position));
    setDeviations(position, std::sqrt(along(variances, frame.getNorth())),
                  std::sqrt(along(variances, frame.getEast())),
                  std::sqrt(along(variances, frame.getUp())));
}

void setBounds(Position& position, double horizontal, double vertical, double spatial)
{
    position.horizontalAccuracy = horizontal;
    position.verticalAccuracy = vertical;
    position.spatialAccuracy = spatial;
    if (std::isfinite(horizontal) || std::isfinite(vertical) || std::isfinite(spatial))
        position.level = AccuracyLevel::Percent95;
}

} // namespace tqx::filling
