#include "Random.h"

#include <cmath>

namespace tool
{

double Random::normal(double sigma)
{
    // The polar method without keeping the second value: one call, one result.
    for (;;) {
        const double u = uniform(-1, 1);
        const double v = uniform(-1, 1);
        const double s = u * u + v * v;
        if (s > 0 && s < 1)
            return sigma * u * std::sqrt(-2 * std::log(s) / s);
    }
}

double rounded(double value, double step)
{
    return std::round(value / step) * step;
}

int64_t steps(double value, double step)
{
    return std::llround(value / step);
}

} // namespace tool
