#pragma once

#include "korcg_crc_methods.h"

#if KORCG_HAVE_CLMUL

#include "korcg_crc_tables.h"

#include <immintrin.h>

// What the two vector methods share. The checksum of a message, taken as a polynomial over GF(2)
// whose first byte holds the highest powers, is message * x^16 modulo the generator polynomial G.
//
// The message is cut into windows of eight vectors. Zeros before a message do not change its
// checksum (the start value is 0), so it is the first window that need not be full. Two ways of
// moving bits of the message down to lower powers shorten it to four vectors:
//
// - Within a window, by XOR alone: squaring G n times gives
//   x^(16 * 2^n) + x^(12 * 2^n) + x^(5 * 2^n) + 1, which G divides. With vectors of 4 * 2^n bits
//   (n = 5 for 16 bytes, n = 7 for 64) a vector may therefore be dropped when it is added in at
//   1, 2.75 and 4 vectors behind its place. So the first half of a window goes into the second.
// - From window to window, by multiplication: each 64 bits times x^distance modulo G.
//
// At the end each 64 bits are multiplied by the power of x that their place stands for, x^16
// included. As these factors have 16 bits the sum has 80, which one Barrett step reduces.

#define KORCG_TARGET_CLMUL __attribute__((target("pclmul,ssse3")))

namespace korcg
{

/// A vector of 128 bits in memory.
struct alignas(16) Lane {
    uint64_t low;
    uint64_t high;
};

/// Factors that move the two halves of a lane up by `distance` bits.
constexpr Lane makeShift(unsigned distance)
{
    return {crcPower(distance), crcPower(distance + 64)};
}

/// Factors for one of the last lanes of a message, of which `behind` lanes follow it.
constexpr Lane makeFinalShift(unsigned behind)
{
    return makeShift(128 * behind + 16);
}

/// floor(x^80 / G) without its highest term, x^64.
constexpr uint64_t makeReciprocal()
{
    uint64_t quotient = 0;
    uint32_t remainder = 0;
    for (int exponent = 80; exponent >= 0; --exponent) {
        remainder = remainder << 1 | (exponent == 80 ? 1 : 0);
        quotient <<= 1;
        if ((remainder & 0x10000) != 0) {
            remainder ^= 0x10000 | kCrcPolynomial;
            quotient |= 1;
        }
    }
    return quotient;
}

KORCG_TARGET_CLMUL inline __m128i loadLane(const void* bytes)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

/// The bytes of a lane in reversed order: the first byte of the message becomes the highest one.
KORCG_TARGET_CLMUL inline __m128i reverseBytes(__m128i lane)
{
    return _mm_shuffle_epi8(lane,
                            _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

/// Checksum from the final sum of 80 bits.
KORCG_TARGET_CLMUL inline uint16_t reduce(__m128i sum)
{
    static constexpr Lane kConstants = {makeReciprocal(), kCrcPolynomial};
    const __m128i constants = loadLane(&kConstants);
    const __m128i upper = _mm_srli_si128(sum, 2);
    const __m128i quotient =
        _mm_xor_si128(_mm_srli_si128(_mm_clmulepi64_si128(upper, constants, 0x00), 8), upper);
    const __m128i remainder = _mm_xor_si128(_mm_clmulepi64_si128(quotient, constants, 0x10), sum);
    return static_cast<uint16_t>(_mm_cvtsi128_si32(remainder));
}

} // namespace korcg

#endif
