#include "tqx/log/text/FixedNumber.h"

#include "tqx/log/text/Digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace tqx
{

namespace
{

// All of them exact.
constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int mostDecimals = static_cast<int>(std::size(powers)) - 1;

} // namespace

bool appendFixed(Buffer& out, double value, int decimals, double limit)
{
    if (decimals < 0 || decimals > mostDecimals)
        return false;
    const double product = std::fabs(value) * powers[decimals];
    if (!(product < limit))
        return false;
    // Both the whole and the rest are exact; the product itself is off by half a unit of its last
    // place at most, a relative 2^-53.
    auto number = static_cast<uint64_t>(static_cast<int64_t>(product));
    const double rest = product - static_cast<double>(number);
    if (std::fabs(rest - 0.5) <= product * 0x1p-52)
        return false;
    number += rest > 0.5 ? 1 : 0;

    // With more decimals than this the number has none before the point, and needs no such power.
    constexpr int mostToSplit = 16;
    const auto unit = static_cast<uint64_t>(powers[std::min(decimals, mostToSplit)]);
    auto whole = static_cast<uint64_t>(static_cast<int64_t>(std::fabs(value)));
    uint64_t fraction = number - whole * unit;
    if (fraction >= unit) {
        fraction -= unit;
        ++whole;
    }

    constexpr size_t longest = 48; // a sign, 16 digits, the point and 22 decimals
    char* const begin = out.reserve(longest);
    char* end = begin;
    if (value < 0)
        *end++ = '-';
    end = std::to_chars(end, begin + longest, whole).ptr;
    if (decimals != 0) {
        *end++ = '.';
        end += decimals;
        writeDigits(end, fraction, static_cast<unsigned>(decimals));
    }
    out.advance(static_cast<size_t>(end - begin));
    return true;
}

} // namespace tqx
