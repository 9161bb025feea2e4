#pragma once

#include "korcg_crc_methods.h"

#if KORCG_HAVE_CLMUL

#include "korcg_crc_tables.h"

#include <immintrin.h>

#include <utility>

// What the vector methods share. The checksum of a message, taken as a polynomial over GF(2)
// whose first byte holds the highest powers, is message * x^16 modulo the generator polynomial G.
//
// The message is shortened to four vectors by XOR alone: squaring G n times gives
// x^(16 * 2^n) + x^(12 * 2^n) + x^(5 * 2^n) + 1, which G divides. Where N vectors have 16 * 2^n
// bits, a vector may therefore be dropped when it is added in at N/4, 11N/16 and N vectors after
// its place. With vectors of 16, 32 or 64 bytes this holds for N = 8 (2, 5.5 and 8 vectors) and
// for N = 4 (1, 2.75 and 4). Zeros before a message do not change its checksum (the start value is
// 0), so it is the first vector that need not be full.
//
// Then each 64 bits of what remains are multiplied by the power of x of their place,
// x^16 included. As these factors have 16 bits the sum has 80, which one Barrett step reduces.
//
// A file that includes this defines KORCG_TARGET, the attribute of its functions. It offers the
// operations on its vectors as static functions of a class: `Vector`, zero(), load(bytes),
// loadFirst(bytes, count): less than a vector of bytes after zeros, add(a, b), half(a, b): the
// last half of a and the first of b, quarter(a, b): the last three quarters of a and the first
// quarter of b.

#define KORCG_INLINE KORCG_TARGET __attribute__((always_inline)) inline

namespace korcg
{

/// A vector of 128 bits in memory.
struct alignas(16) Lane {
    uint64_t low;
    uint64_t high;
};

/// The powers of x for the two halves of a lane that `behind` lanes follow.
constexpr Lane makeFinalShift(unsigned behind)
{
    return {crcPower(128 * behind + 16), crcPower(128 * behind + 80)};
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
            remainder ^= 0x10000 | crcPolynomial;
            quotient |= 1;
        }
    }
    return quotient;
}

// Compiled for the target of each file that includes this.
namespace
{

KORCG_INLINE __m128i loadLane(const void* bytes)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

/// The operations on vectors of 16 bytes.
struct Lanes {
    using Vector = __m128i;

    KORCG_INLINE static Vector zero() { return _mm_setzero_si128(); }
    KORCG_INLINE static Vector load(const uint8_t* bytes) { return loadLane(bytes); }
    KORCG_INLINE static Vector add(Vector a, Vector b) { return _mm_xor_si128(a, b); }
    KORCG_INLINE static Vector half(Vector a, Vector b) { return _mm_alignr_epi8(b, a, 8); }
    KORCG_INLINE static Vector quarter(Vector a, Vector b) { return _mm_alignr_epi8(b, a, 4); }

    /// Accesses 16 bytes.
    KORCG_INLINE static Vector loadFirst(const uint8_t* bytes, size_t count)
    {
        // Byte i of the result is byte i + count - 16 of the message; a negative index gives 0.
        const Vector index = _mm_add_epi8(
            _mm_set1_epi8(static_cast<char>(count)),
            _mm_set_epi8(-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11, -12, -13, -14, -15, -16));
        return _mm_shuffle_epi8(loadLane(bytes), index);
    }
};

template<class Ops, size_t N, size_t I>
KORCG_INLINE typename Ops::Vector elementOrZero(const typename Ops::Vector* v)
{
    if constexpr (I < N) {
        return v[I];
    } else {
        return Ops::zero();
    }
}

/// `vector` and what reaches place `To` when the first N of `v` are dropped one after the other.
template<class Ops, size_t N, size_t To>
KORCG_INLINE typename Ops::Vector addDropped(const typename Ops::Vector* v,
                                             typename Ops::Vector vector)
{
    constexpr size_t middle = 11 * N / 16;
    if constexpr (To >= N) {
        vector = Ops::add(vector, v[To - N]);
    }
    if constexpr (To >= middle && To - middle <= N) {
        const auto before = elementOrZero<Ops, N, To - middle - 1>(v);
        const auto after = elementOrZero<Ops, N, To - middle>(v);
        vector = Ops::add(vector, N == 8 ? Ops::half(before, after) : Ops::quarter(before, after));
    }
    if constexpr (To >= N / 4 && To - N / 4 < N) {
        vector = Ops::add(vector, v[To - N / 4]);
    }
    return vector;
}

/// Drops the first N of `v` into the N after them.
template<class Ops, size_t N, size_t... I>
KORCG_INLINE void drop(typename Ops::Vector* v, std::index_sequence<I...>)
{
    ((v[I] = addDropped<Ops, N, I>(v, v[I])), ...);
    ((v[N + I] = addDropped<Ops, N, N + I>(v, v[N + I])), ...);
}

/// Drops `v` into the next eight vectors of the message, which take its place.
template<class Ops, size_t... I>
KORCG_INLINE void dropIntoNext(typename Ops::Vector* v, const uint8_t* bytes,
                               std::index_sequence<I...>)
{
    constexpr size_t size = sizeof(typename Ops::Vector);
    ((v[I] = addDropped<Ops, 8, I>(v, v[I])), ...);
    ((v[I] = addDropped<Ops, 8, 8 + I>(v, Ops::load(bytes + I * size))), ...);
}

/// Shortens a message to the last four of the eight vectors of `v`.
template<class Ops>
KORCG_INLINE void shorten(const uint8_t* data, size_t size, typename Ops::Vector* v)
{
    constexpr size_t step = sizeof(typename Ops::Vector);
    v[0] = v[1] = v[2] = v[3] = v[4] = v[5] = v[6] = Ops::zero();
    v[7] = Ops::loadFirst(data, size % step);
    data += size % step;
    const size_t vectors = size / step;
    for (size_t i = vectors % 4; i != 0; --i, data += step) {
        v[4] = v[5];
        v[5] = v[6];
        v[6] = v[7];
        v[7] = Ops::load(data);
    }
    if ((vectors & 4) != 0) {
        v[0] = v[4];
        v[1] = v[5];
        v[2] = v[6];
        v[3] = v[7];
        v[4] = Ops::load(data);
        v[5] = Ops::load(data + step);
        v[6] = Ops::load(data + 2 * step);
        v[7] = Ops::load(data + 3 * step);
        data += 4 * step;
    }
    for (size_t i = vectors / 8; i != 0; --i, data += 8 * step) {
        dropIntoNext<Ops>(v, data, std::make_index_sequence<8>());
    }
    drop<Ops, 4>(v, std::make_index_sequence<4>());
}

/// The bytes of a lane in reversed order: the first byte of the message becomes the highest one.
KORCG_INLINE __m128i reverseBytes(__m128i lane)
{
    return _mm_shuffle_epi8(lane,
                            _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

/// Checksum from the final sum of 80 bits.
KORCG_INLINE uint16_t reduce(__m128i sum)
{
    static constexpr Lane foldConstants = {makeReciprocal(), crcPolynomial};
    const __m128i constants = loadLane(&foldConstants);
    const __m128i upper = _mm_srli_si128(sum, 2);
    const __m128i quotient =
        _mm_xor_si128(_mm_srli_si128(_mm_clmulepi64_si128(upper, constants, 0x00), 8), upper);
    const __m128i remainder = _mm_xor_si128(_mm_clmulepi64_si128(quotient, constants, 0x10), sum);
    return static_cast<uint16_t>(_mm_cvtsi128_si32(remainder));
}

/// A lane times the power of x for its place, `Behind` lanes from the end of the message.
template<unsigned Behind>
KORCG_INLINE __m128i multiplied(__m128i lane)
{
    static constexpr Lane foldFactors = makeFinalShift(Behind);
    const __m128i reversed = reverseBytes(lane);
    const __m128i factors = loadLane(&foldFactors);
    return _mm_xor_si128(_mm_clmulepi64_si128(reversed, factors, 0x00),
                         _mm_clmulepi64_si128(reversed, factors, 0x11));
}

/// Checksum of a message of four lanes.
KORCG_INLINE uint16_t crcOfLanes(const __m128i* lanes)
{
    return reduce(_mm_xor_si128(_mm_xor_si128(multiplied<3>(lanes[0]), multiplied<2>(lanes[1])),
                                _mm_xor_si128(multiplied<1>(lanes[2]), multiplied<0>(lanes[3]))));
}

} // namespace

} // namespace korcg

#endif
