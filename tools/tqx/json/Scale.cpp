#include "Scale.h"

#include <cmath>

namespace tool
{

Scale::Scale(double factor) : multiplier(factor)
{
    // Powers of ten up to here, and products with integers up to 2^32, are exact.
    constexpr int largestPower = 22;
    constexpr double largestMultiplier = 1 << 21;
    if (!(std::fabs(factor) < 1 || factor != std::floor(factor)))
        return;
    double power = 10;
    for (int digits = 1; digits <= largestPower; ++digits, power *= 10) {
        const double whole = std::round(factor * power);
        if (whole != 0 && std::fabs(whole) <= largestMultiplier && whole / power == factor) {
            multiplier = whole;
            divisor = power;
            return;
        }
    }
    // No short decimal number, but one part of an integer, such as 1/3600.
    const double parts = std::round(1 / factor);
    if (parts != 0 && 1 / parts == factor) {
        multiplier = 1;
        divisor = parts;
    }
}

} // namespace tool
