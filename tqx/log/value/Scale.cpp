#include "tqx/log/value/Scale.h"

#include "tqx/log/text/NumberText.h"

#include <cmath>

namespace tqx
{

Scale::Scale(double factor) : m_multiplier(factor)
{
    // Powers of ten up to here, and products with integers up to 2^32, are exact.
    constexpr int largestPower = 22;
    constexpr double largestMultiplier = 1 << 21;
    constexpr uint64_t mostDigits = 1000000000000000;
    if (!(std::fabs(factor) < 1 || factor != std::floor(factor)))
        return;
    double power = 10;
    for (int digits = 1; digits <= largestPower; ++digits, power *= 10) {
        const double whole = std::round(factor * power);
        if (whole != 0 && std::fabs(whole) <= largestMultiplier && whole / power == factor) {
            m_multiplier = whole;
            m_divisor = power;
            if (whole > 0) {
                m_wholeMultiplier = static_cast<uint32_t>(whole);
                m_endOfWhole = mostDigits / m_wholeMultiplier;
                m_decimals = static_cast<unsigned>(digits);
            }
            return;
        }
    }
    // Not a short decimal number, but a fraction such as 1/3600.
    const double parts = std::round(1 / factor);
    if (parts != 0 && 1 / parts == factor) {
        m_multiplier = 1;
        m_divisor = parts;
    }
}

// With up to fifteen digits, the decimal number is the shortest text of the nearest double.
void Scale::append(Buffer& out, bool isNegative, uint64_t magnitude) const
{
    if (magnitude < m_endOfWhole &&
        number::appendDecimal(out, isNegative, magnitude * m_wholeMultiplier, m_decimals))
        return;
    const auto value = static_cast<double>(magnitude);
    number::appendDouble(out, apply(isNegative ? -value : value));
}

} // namespace tqx
