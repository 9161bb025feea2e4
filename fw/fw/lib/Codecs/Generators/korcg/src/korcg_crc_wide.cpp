#define KORCG_TARGET __attribute__((target("pclmul,ssse3,avx2,avx512f,avx512bw,vpclmulqdq")))

#include "korcg_crc_fold.h"

#if KORCG_HAVE_LONG_VECTORS

#include "korcg_crc.h"

namespace korcg
{

namespace
{

constexpr size_t leastBytes = 48; // fewer are faster done by table

constexpr Lane final[2][4] = {
    {makeFinalShift(7), makeFinalShift(6), makeFinalShift(5), makeFinalShift(4)},
    {makeFinalShift(3), makeFinalShift(2), makeFinalShift(1), makeFinalShift(0)}};

/// The operations on vectors of 64 bytes. (Some are the masked ones with all bits set, because gcc
/// 12 warns about its own header for the plain ones.)
struct LaneQuads {
    using Vector = __m512i;

    KORCG_INLINE static Vector zero() { return _mm512_setzero_si512(); }
    KORCG_INLINE static Vector load(const void* bytes) { return _mm512_loadu_si512(bytes); }
    KORCG_INLINE static Vector add(Vector a, Vector b) { return _mm512_xor_si512(a, b); }
    KORCG_INLINE static Vector half(Vector a, Vector b)
    {
        return _mm512_maskz_alignr_epi64(0xff, b, a, 4);
    }
    KORCG_INLINE static Vector quarter(Vector a, Vector b)
    {
        return _mm512_maskz_alignr_epi64(0xff, b, a, 2);
    }

    /// Accesses `count` bytes, though the address that it calculates may lie before them.
    KORCG_INLINE static Vector loadFirst(const uint8_t* bytes, size_t count)
    {
        const __mmask64 present = count == 0 ? 0 : ~uint64_t{0} << (64 - count);
        const uintptr_t address = reinterpret_cast<uintptr_t>(bytes) + count - 64;
        return _mm512_maskz_loadu_epi8(present, reinterpret_cast<const void*>(address));
    }
};

KORCG_INLINE __m512i reverseBytes(__m512i lanes)
{
    const __m128i order = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm512_shuffle_epi8(lanes, _mm512_maskz_broadcast_i32x4(0xffff, order));
}

/// Four lanes, each times the power of x for its place.
KORCG_INLINE __m512i multiplied(__m512i lanes, const Lane* factors)
{
    const __m512i reversed = reverseBytes(lanes);
    const __m512i f = LaneQuads::load(factors);
    return LaneQuads::add(_mm512_clmulepi64_epi128(reversed, f, 0x00),
                          _mm512_clmulepi64_epi128(reversed, f, 0x11));
}

/// The sum of the four lanes.
KORCG_INLINE __m128i addLanes(__m512i lanes)
{
    const __m256i pairs = _mm256_xor_si256(_mm512_maskz_extracti64x4_epi64(0xff, lanes, 0),
                                           _mm512_maskz_extracti64x4_epi64(0xff, lanes, 1));
    return _mm_xor_si128(_mm256_castsi256_si128(pairs), _mm256_extracti128_si256(pairs, 1));
}

/// The last `Words` of 64 bits of `a` and the first of `b`.
template<int Words>
KORCG_INLINE __m512i behind(__m512i a, __m512i b)
{
    return _mm512_maskz_alignr_epi64(0xff, b, a, 8 - Words);
}

/// Drops the first two of four vectors into the others: 0.5, 1.375 and 2 vectors after.
KORCG_INLINE void dropFirstTwo(__m512i* v)
{
    const __m512i zero = LaneQuads::zero();
    const __m512i both = LaneQuads::add(v[0], v[1]);
    const __m512i a = LaneQuads::add(v[0], behind<4>(zero, v[0]));
    const __m512i b =
        LaneQuads::add(LaneQuads::add(both, behind<4>(v[0], both)), behind<3>(zero, v[0]));
    v[2] = LaneQuads::add(LaneQuads::add(v[2], a),
                          LaneQuads::add(behind<4>(b, zero), behind<3>(a, b)));
    v[3] = LaneQuads::add(LaneQuads::add(v[3], b), behind<3>(b, zero));
}

KORCG_TARGET uint16_t fold(const uint8_t* data, size_t size)
{
    __m512i v[8];
    shorten<LaneQuads>(data, size, v);
    dropFirstTwo(v + 4);
    const __m512i sum = LaneQuads::add(multiplied(v[6], final[0]), multiplied(v[7], final[1]));
    return reduce(addLanes(sum));
}

} // namespace

bool crcWideClmulRuns()
{
    return crcAvx2Runs() && __builtin_cpu_supports("avx512f") &&
           __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("vpclmulqdq");
}

uint16_t crcWideClmul(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < leastBytes) {
        return crcSlicing(data, size, start);
    }
    return start == 0 ? fold(data, size) : korcg_crc16_combine(start, fold(data, size), size);
}

} // namespace korcg

#endif
