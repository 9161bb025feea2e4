#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace korcg
{

/// The generator polynomial x^16 + x^12 + x^5 + 1 without its highest term.
constexpr unsigned crcPolynomial = 0x1021;

/// x^`exponent` modulo the polynomial.
constexpr uint16_t crcPower(unsigned exponent)
{
    unsigned power = 1;
    for (; exponent > 0; --exponent) {
        power = (power << 1 ^ (power >> 15 & 1) * crcPolynomial) & 0xffff;
    }
    return static_cast<uint16_t>(power);
}

/// Row r, column b: the checksum of byte b followed by r zero bytes, which is b x^(8 r + 16).
using CrcTables = std::array<std::array<uint16_t, 256>, 16>;

extern const CrcTables crcTables;

} // namespace korcg
