#include "korcg_crc_methods.h"
#include "korcg_crc_tables.h"

#if KORCG_HAVE_CLMUL
#include <immintrin.h>
#define KORCG_TARGET_CLMUL __attribute__((target("pclmul")))
#endif

// Appending n bytes multiplies a checksum by x^(8 n). The polynomial is x + 1 times a primitive
// polynomial of degree 15, so the powers of x repeat after 2^15 - 1: two small tables hold the
// factors of all of them.

namespace
{

constexpr size_t period = 0x7fff;

/// Product without reduction, of degree 30 at most. Free of branches and of waiting for each
/// other's steps.
constexpr uint32_t multiplyWide(uint16_t a, uint16_t b)
{
    uint32_t product = 0;
    for (unsigned bit = 0; bit < 16; ++bit) {
        product ^= (uint32_t{a} << bit) & (0u - (uint32_t{b} >> bit & 1u));
    }
    return product;
}

uint16_t multiply(uint16_t a, uint16_t b)
{
    const uint32_t product = multiplyWide(a, b);
    return static_cast<uint16_t>((product & 0xffff) ^ korcg::crcTables[1][product >> 24] ^
                                 korcg::crcTables[0][product >> 16 & 0xff]);
}

/// Element i is the i-th power of `factor`.
template<size_t Size>
constexpr std::array<uint16_t, Size> makePowers(uint16_t factor)
{
    std::array<uint16_t, Size> powers{};
    uint32_t power = 1;
    for (uint16_t& element : powers) {
        element = static_cast<uint16_t>(power);
        power = multiplyWide(element, factor);
        for (unsigned bit = 30; bit >= 16; --bit) {
            power ^= (power >> bit & 1) * (0x10000 | korcg::crcPolynomial) << (bit - 16);
        }
    }
    return powers;
}

constexpr auto finePowers = makePowers<256>(korcg::crcPower(8));
constexpr auto coarsePowers = makePowers<128>(korcg::crcPower(8 * 256));

#if KORCG_HAVE_CLMUL
KORCG_TARGET_CLMUL __m128i asLane(uint16_t factor)
{
    return _mm_cvtsi32_si128(factor);
}
#endif

} // namespace

namespace korcg
{

uint16_t combineByShifts(uint16_t crcA, uint16_t crcB, size_t lengthB)
{
    const size_t length = lengthB % period;
    const uint16_t shift = multiply(coarsePowers[length >> 8], finePowers[length & 0xff]);
    return static_cast<uint16_t>(multiply(shift, crcA) ^ crcB);
}

#if KORCG_HAVE_CLMUL

// All three factors are multiplied before anything is reduced: the product has 46 bits at most.
KORCG_TARGET_CLMUL uint16_t combineByClmul(uint16_t crcA, uint16_t crcB, size_t lengthB)
{
    const size_t length = lengthB % period;
    const __m128i shift = _mm_clmulepi64_si128(asLane(coarsePowers[length >> 8]),
                                               asLane(finePowers[length & 0xff]), 0);
    const auto product =
        static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_clmulepi64_si128(shift, asLane(crcA), 0)));
    return static_cast<uint16_t>(crcB ^ (product & 0xffff) ^ crcTables[0][product >> 16 & 0xff] ^
                                 crcTables[1][product >> 24 & 0xff] ^
                                 crcTables[2][product >> 32 & 0xff] ^
                                 crcTables[3][product >> 40 & 0xff]);
}
#endif

} // namespace korcg
