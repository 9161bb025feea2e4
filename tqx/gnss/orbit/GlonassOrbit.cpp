#include "tqx/gnss/orbit/GlonassOrbit.h"

#include <cmath>

namespace tqx
{

namespace
{

constexpr double degree = pi / 180;
constexpr double rotation = 7.292115e-5;
constexpr double firstDay = 9499.5; ///< start of GPS week 2400, days since J2000

/// Sun or moon on a circle in the ecliptic.
struct Body {
    double gravitation;
    double distance;
    double longitude; ///< degrees at J2000
    double motion;    ///< degrees per day
};

constexpr Body sun = {1.32712440e20, 1.495978707e11, 280.460, 0.9856474};
constexpr Body moon = {4.9028e12, 3.844e8, 218.316, 13.176396};

Vector pull(const Body& body, const Vector& position, double day)
{
    constexpr double obliquity = 23.4393 * degree;
    const double longitude = (body.longitude + body.motion * day) * degree;
    const double greenwich = std::fmod(280.46061837 + 360.98564736629 * day, 360) * degree;
    const double x = std::cos(longitude);
    const double y = std::sin(longitude) * std::cos(obliquity);
    const Vector direction = {x * std::cos(greenwich) + y * std::sin(greenwich),
                              y * std::cos(greenwich) - x * std::sin(greenwich),
                              std::sin(longitude) * std::sin(obliquity)};
    const double factor = body.gravitation / (body.distance * body.distance * body.distance);
    return direction * (3 * factor * dot(direction, position)) - position * factor;
}

/// Constants of PZ-90.11.
Motion derivative(const Motion& motion, const Vector& acceleration)
{
    constexpr double gravitation = 3.986004418e14;
    constexpr double radius = 6378136;
    constexpr double oblateness = 1.08262575e-3;
    const Vector& p = motion.position;
    const Vector& v = motion.velocity;
    const double squared = dot(p, p);
    const double central = gravitation / (squared * std::sqrt(squared));
    const double flattened = 1.5 * oblateness * central * radius * radius / squared;
    const double ratio = 5 * p.z * p.z / squared;
    const double inPlane = -central - flattened * (1 - ratio) + rotation * rotation;
    return {v,
            {inPlane * p.x + 2 * rotation * v.y + acceleration.x,
             inPlane * p.y - 2 * rotation * v.x + acceleration.y,
             (-central - flattened * (3 - ratio)) * p.z + acceleration.z}};
}

Motion moved(const Motion& motion, const Motion& rate, double step)
{
    return {motion.position + rate.position * step, motion.velocity + rate.velocity * step};
}

} // namespace

Vector lunisolarAcceleration(const Vector& position, double time)
{
    const double day = firstDay + time / 86400;
    return pull(sun, position, day) + pull(moon, position, day);
}

Motion stepped(const Motion& motion, const Vector& acceleration, double step)
{
    const Motion a = derivative(motion, acceleration);
    const Motion b = derivative(moved(motion, a, step / 2), acceleration);
    const Motion c = derivative(moved(motion, b, step / 2), acceleration);
    const Motion d = derivative(moved(motion, c, step), acceleration);
    const Motion sum = moved(moved(moved(a, b, 2), c, 2), d, 1);
    return moved(motion, sum, step / 6);
}

Motion integrated(Motion motion, double time, double target)
{
    const double count = std::ceil(std::fabs(target - time) / 60);
    const double step = count > 0 ? (target - time) / count : 0;
    for (int i = 0; i < static_cast<int>(count); ++i)
        motion = stepped(motion, lunisolarAcceleration(motion.position, time + i * step), step);
    return motion;
}

} // namespace tqx
