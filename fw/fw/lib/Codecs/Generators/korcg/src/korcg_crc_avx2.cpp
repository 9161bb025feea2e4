#define KORCG_TARGET __attribute__((target("pclmul,avx2")))

#include "korcg_crc_fold.h"

#if KORCG_HAVE_LONG_VECTORS

#include "korcg_crc.h"

namespace korcg
{

namespace
{

constexpr size_t leastBytes = 48; // fewer are faster done by table

/// The operations on vectors of 32 bytes.
struct LanePairs {
    using Vector = __m256i;

    KORCG_INLINE static Vector zero() { return _mm256_setzero_si256(); }
    KORCG_INLINE static Vector load(const uint8_t* bytes)
    {
        return _mm256_loadu_si256(reinterpret_cast<const Vector*>(bytes));
    }
    KORCG_INLINE static Vector add(Vector a, Vector b) { return _mm256_xor_si256(a, b); }
    KORCG_INLINE static Vector half(Vector a, Vector b)
    {
        return _mm256_permute2x128_si256(a, b, 0x21);
    }
    KORCG_INLINE static Vector quarter(Vector a, Vector b)
    {
        return _mm256_alignr_epi8(half(a, b), a, 8);
    }

    /// Accesses 16 bytes or `count`.
    KORCG_INLINE static Vector loadFirst(const uint8_t* bytes, size_t count)
    {
        if (count < 16) {
            return _mm256_inserti128_si256(zero(), Lanes::loadFirst(bytes, count), 1);
        }
        const __m128i first = Lanes::loadFirst(bytes, count - 16);
        return _mm256_inserti128_si256(_mm256_castsi128_si256(first), loadLane(bytes + count - 16),
                                       1);
    }
};

KORCG_TARGET uint16_t fold(const uint8_t* data, size_t size)
{
    __m256i v[8];
    shorten<LanePairs>(data, size, v);
    __m128i lanes[8];
    for (size_t i = 0; i < 4; ++i) {
        lanes[2 * i] = _mm256_castsi256_si128(v[4 + i]);
        lanes[2 * i + 1] = _mm256_extracti128_si256(v[4 + i], 1);
    }
    drop<Lanes, 4>(lanes, std::make_index_sequence<4>());
    return crcOfLanes(lanes + 4);
}

} // namespace

bool crcAvx2Runs()
{
    return crcClmulRuns() && __builtin_cpu_supports("avx2");
}

uint16_t crcAvx2(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < leastBytes) {
        return crcSlicing(data, size, start);
    }
    return start == 0 ? fold(data, size) : korcg_crc16_combine(start, fold(data, size), size);
}

} // namespace korcg

#endif
