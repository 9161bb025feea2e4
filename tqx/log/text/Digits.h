#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tqx
{

namespace digits
{

using Pair = std::array<char, 2>;

constexpr std::array<Pair, 100> pairs = [] {
    std::array<Pair, 100> table = {};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = {{static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)}};
    return table;
}();

} // namespace digits

/// Writes the last `count` digits of a number, up to `end`: for numbers with a fixed count of
/// decimals, which standard conversions do not format fast.
inline void writeDigits(char* end, uint64_t number, unsigned count)
{
    for (; count >= 2; count -= 2, number /= 100)
        std::memcpy(end -= 2, digits::pairs[number % 100].data(), 2);
    if (count != 0)
        *--end = static_cast<char>('0' + number % 10);
}

} // namespace tqx
