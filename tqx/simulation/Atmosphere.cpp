#include "tqx/simulation/Atmosphere.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

// In the steps of the navigation message.
const KlobucharParameters klobuchar = {{0x17p-30, 0x2p-27, -0x2p-24, -0x2p-24},
                                       {0x33p11, 0x4p14, -0x1p16, -0x5p16}};

double ionosphericDelay(const Geodetic& place, const Direction& direction, double tow)
{
    const double elevation = std::asin(direction.sinElevation) / pi;
    const double angle = 0.0137 / (elevation + 0.11) - 0.022;
    const double latitude =
        std::clamp(place.latitude / pi + angle * direction.north, -0.416, 0.416);
    const double longitude =
        place.longitude / pi + angle * direction.east / std::cos(latitude * pi);
    const double magnetic = latitude + 0.064 * std::cos((longitude - 1.617) * pi);
    const auto polynomial = [magnetic](const double(&c)[4]) {
        return c[0] + magnetic * (c[1] + magnetic * (c[2] + magnetic * c[3]));
    };
    const double amplitude = std::max(polynomial(klobuchar.amplitude), 0.0);
    const double period = std::max(polynomial(klobuchar.period), 72000.0);
    const double local = std::fmod(43200 * longitude + tow + 86400, 86400);
    const double lowness = 0.53 - elevation;
    const double slant = 1 + 16 * lowness * lowness * lowness;
    const double phase = 2 * pi * (local - 50400) / period;
    // The series that receivers compute ends with a step of 2 % of the amplitude; nature has no
    // such step, and in phases it would be a slip.
    const double day = std::fabs(phase) < pi / 2 ? amplitude * std::cos(phase) : 0.0;
    return speedOfLight * slant * (5e-9 + day);
}

double zenithTroposphere(const Geodetic& place)
{
    const double height = std::clamp(place.height, -500.0, 10000.0);
    const double pressure = 1013.25 * std::pow(1 - 2.2557e-5 * height, 5.2568);
    const double gravity = 1 - 0.00266 * std::cos(2 * place.latitude) - 2.8e-7 * height;
    return 0.0022768 * pressure / gravity + 0.1 * std::exp(-height / 2000);
}

double troposphericMapping(double sinElevation)
{
    return 1.001 / std::sqrt(0.002001 + sinElevation * sinElevation);
}

} // namespace tqx::simulation
