#include "FixedNumber.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace tool
{

namespace
{

// All of them exact.
constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int mostDecimals = static_cast<int>(std::size(powers)) - 1;

struct Pair {
    char digits[2];
};

constexpr std::array<Pair, 100> pairs = [] {
    std::array<Pair, 100> table = {};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = {{static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)}};
    return table;
}();

/// Writes `count` digits of a number from its last one on; returns where they begin.
char* writeLast(char* end, uint64_t& number, int count)
{
    for (; count >= 2; count -= 2, number /= 100)
        std::memcpy(end -= 2, pairs[number % 100].digits, 2);
    if (count != 0) {
        *--end = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return end;
}

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

    constexpr size_t longest = 32; // a sign, 22 decimals or 16 digits, a zero and the point
    char text[2 * longest] = {};
    char* const end = text + longest;
    char* begin = end;
    if (decimals != 0) {
        begin = writeLast(begin, number, decimals);
        *--begin = '.';
    }
    do
        begin = writeLast(begin, number, number < 10 ? 1 : 2);
    while (number != 0);
    if (value < 0)
        *--begin = '-';
    // A length that is known takes no call.
    std::memcpy(out.reserve(longest), begin, longest);
    out.advance(static_cast<size_t>(end - begin));
    return true;
}

} // namespace tool
