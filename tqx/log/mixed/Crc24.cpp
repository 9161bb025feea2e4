#include "tqx/log/mixed/Crc24.h"

#include <array>

namespace tqx
{

namespace
{

constexpr uint32_t polynomial = 0x1864cfb;
constexpr uint32_t highest = 0x1000000; // the coefficient that the polynomial takes away

constexpr uint32_t timesX(uint32_t value)
{
    const uint32_t shifted = value << 1U;
    return (shifted & highest) != 0 ? shifted ^ polynomial : shifted;
}

constexpr uint32_t afterZeroByte(uint32_t value)
{
    for (int bit = 0; bit < 8; ++bit)
        value = timesX(value);
    return value;
}

constexpr std::array<uint32_t, 256> makeByteTable()
{
    std::array<uint32_t, 256> table = {};
    for (uint32_t byte = 0; byte < table.size(); ++byte)
        table[byte] = afterZeroByte(byte << 16U);
    return table;
}

/// The factor by which as many zero bytes as the index multiply a checksum.
constexpr std::array<uint32_t, Crc24::longest + 1> makePowers()
{
    std::array<uint32_t, Crc24::longest + 1> powers = {};
    uint32_t power = 1;
    for (uint32_t& value : powers) {
        value = power;
        power = afterZeroByte(power);
    }
    return powers;
}

constexpr std::array<uint32_t, 256> byteTable = makeByteTable();
constexpr std::array<uint32_t, Crc24::longest + 1> powers = makePowers();

/// The effect on the 24 bits of a checksum of the four bits above them.
constexpr std::array<uint32_t, 16> makeNibbleTable()
{
    std::array<uint32_t, 16> table = {};
    for (uint32_t nibble = 0; nibble < table.size(); ++nibble) {
        table[nibble] = nibble << 20U;
        for (int bit = 0; bit < 4; ++bit)
            table[nibble] = timesX(table[nibble]);
    }
    return table;
}

constexpr std::array<uint32_t, 16> nibbleTable = makeNibbleTable();

uint32_t product(uint32_t a, uint32_t b)
{
    uint32_t multiples[16] = {0, a};
    for (size_t i = 2; i < 16; i += 2) {
        multiples[i] = timesX(multiples[i / 2]);
        multiples[i + 1] = multiples[i] ^ a;
    }
    uint32_t result = 0;
    for (unsigned shift = 24; shift != 0;) {
        shift -= 4;
        result = (result << 4U & (highest - 1)) ^ nibbleTable[result >> 20U] ^
                 multiples[b >> shift & 15U];
    }
    return result;
}

} // namespace

// The checksum of a stretch is that of all bytes to its end without what the bytes before it
// contribute, which is their checksum followed by as many zero bytes as the stretch has.
bool Crc24::holds(uint64_t offset, const uint8_t* frame, size_t size)
{
    constexpr size_t mostSums = 1 << 14;
    if (m_sums.empty() || offset < m_start || offset >= m_start + m_sums.size() ||
        m_sums.size() > mostSums) {
        m_start = offset;
        m_sums.assign(1, 0);
    }
    const auto first = static_cast<size_t>(offset - m_start);
    for (size_t at = m_sums.size() - 1 - first; at < size; ++at) {
        const uint32_t sum = m_sums.back();
        m_sums.push_back((sum << 8U & (highest - 1)) ^ byteTable[sum >> 16U ^ frame[at]]);
    }
    return m_sums[first + size] == product(m_sums[first], powers[size]);
}

} // namespace tqx
