#include "korcg_crc_fold.h"

#if KORCG_HAVE_WIDE_CLMUL

#include "korcg_crc.h"

#define KORCG_TARGET_WIDE __attribute__((target("pclmul,ssse3,avx2,avx512f,avx512bw,vpclmulqdq")))

namespace korcg
{

namespace
{

constexpr size_t kLeastBytes = 48; // fewer are faster done by table
constexpr size_t kVectorBytes = 64;
constexpr size_t kHalfBytes = 4 * kVectorBytes;
constexpr size_t kWindowBytes = 2 * kHalfBytes;

constexpr Lane kStep = makeShift(kWindowBytes * 8);
constexpr Lane kFinal[4][4] = {
    {makeFinalShift(15), makeFinalShift(14), makeFinalShift(13), makeFinalShift(12)},
    {makeFinalShift(11), makeFinalShift(10), makeFinalShift(9), makeFinalShift(8)},
    {makeFinalShift(7), makeFinalShift(6), makeFinalShift(5), makeFinalShift(4)},
    {makeFinalShift(3), makeFinalShift(2), makeFinalShift(1), makeFinalShift(0)}};

/// Four times the same lane. (The plain broadcast makes gcc 12 warn about its own header.)
KORCG_TARGET_WIDE inline __m512i repeat(__m128i lane)
{
    return _mm512_maskz_broadcast_i32x4(0xffff, lane);
}

KORCG_TARGET_WIDE inline __m512i reverseBytes(__m512i lanes)
{
    return _mm512_shuffle_epi8(
        lanes, repeat(_mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)));
}

KORCG_TARGET_WIDE inline __m512i add(__m512i a, __m512i b)
{
    return _mm512_xor_si512(a, b);
}

KORCG_TARGET_WIDE inline __m512i add(__m512i a, __m512i b, __m512i c)
{
    constexpr int kXorOfThree = 0x96;
    return _mm512_ternarylogic_epi64(a, b, c, kXorOfThree);
}

/// lanes * factors + other
KORCG_TARGET_WIDE inline __m512i shiftAdd(__m512i lanes, __m512i factors, __m512i other)
{
    return add(_mm512_clmulepi64_epi128(lanes, factors, 0x00),
               _mm512_clmulepi64_epi128(lanes, factors, 0x11), other);
}

/// What lands 2.75 vectors behind: the last 48 bytes of a vector and the first 16 of the next one.
KORCG_TARGET_WIDE inline __m512i quarter(__m512i vector, __m512i next)
{
    return _mm512_maskz_alignr_epi64(0xff, next, vector, 2);
}

/// Half a window, in the order of the message.
struct Half {
    __m512i a;
    __m512i b;
    __m512i c;
    __m512i d;
};

KORCG_TARGET_WIDE inline Half loadHalf(const uint8_t* bytes)
{
    return {_mm512_loadu_si512(bytes), _mm512_loadu_si512(bytes + kVectorBytes),
            _mm512_loadu_si512(bytes + 2 * kVectorBytes),
            _mm512_loadu_si512(bytes + 3 * kVectorBytes)};
}

/// A vector with zeros in place of its first `missing` bytes (all when more than 64, none when
/// negative), which are not accessed.
KORCG_TARGET_WIDE inline __m512i loadLast(uintptr_t address, ptrdiff_t missing)
{
    const uint64_t all = ~uint64_t{0};
    const __mmask64 present = missing > 63 ? 0 : all << (missing < 0 ? 0 : missing);
    return _mm512_maskz_loadu_epi8(present, reinterpret_cast<const void*>(address));
}

/// Half a window that ends at `end` and has zeros in place of its first `missing` bytes.
KORCG_TARGET_WIDE inline Half loadLastOfHalf(const uint8_t* end, size_t missing)
{
    // Where bytes are missing the address may lie before the message.
    const uintptr_t address = reinterpret_cast<uintptr_t>(end) - kHalfBytes;
    const auto bytes = static_cast<ptrdiff_t>(missing);
    return {loadLast(address, bytes), loadLast(address + 64, bytes - 64),
            loadLast(address + 128, bytes - 128), loadLast(address + 192, bytes - 192)};
}

KORCG_TARGET_WIDE inline Half reverseBytes(const Half& half)
{
    return {reverseBytes(half.a), reverseBytes(half.b), reverseBytes(half.c), reverseBytes(half.d)};
}

/// The second half of a window after it has taken up the first.
KORCG_TARGET_WIDE inline Half addHalves(const Half& first, const Half& second)
{
    const __m512i zero = _mm512_setzero_si512();
    const __m512i a = first.a;
    const __m512i b = add(first.b, a);
    const __m512i c = add(first.c, b, quarter(zero, a));
    const __m512i d = add(first.d, c, quarter(a, b));
    return {add(add(second.a, a), d, quarter(b, c)), add(second.b, b, quarter(c, d)),
            add(second.c, c, quarter(d, zero)), add(second.d, d)};
}

/// The sum of the four lanes.
KORCG_TARGET_WIDE inline __m128i addLanes(__m512i lanes)
{
    Lane parts[4];
    _mm512_storeu_si512(parts, lanes);
    return _mm_xor_si128(_mm_xor_si128(loadLane(parts), loadLane(parts + 1)),
                         _mm_xor_si128(loadLane(parts + 2), loadLane(parts + 3)));
}

KORCG_TARGET_WIDE uint16_t fold(const uint8_t* data, size_t size)
{
    const size_t first = size % kWindowBytes;
    data += first;
    Half sum;
    if (first > kHalfBytes) {
        sum = reverseBytes(addHalves(loadLastOfHalf(data - kHalfBytes, kWindowBytes - first),
                                     loadHalf(data - kHalfBytes)));
    } else {
        sum = reverseBytes(loadLastOfHalf(data, kHalfBytes - first));
    }
    const __m512i step = repeat(loadLane(&kStep));
    for (size_t windows = size / kWindowBytes; windows != 0; --windows, data += kWindowBytes) {
        const Half half = reverseBytes(addHalves(loadHalf(data), loadHalf(data + kHalfBytes)));
        sum = {shiftAdd(sum.a, step, half.a), shiftAdd(sum.b, step, half.b),
               shiftAdd(sum.c, step, half.c), shiftAdd(sum.d, step, half.d)};
    }
    __m512i total = _mm512_setzero_si512();
    total = shiftAdd(sum.a, _mm512_loadu_si512(kFinal[0]), total);
    total = shiftAdd(sum.b, _mm512_loadu_si512(kFinal[1]), total);
    total = shiftAdd(sum.c, _mm512_loadu_si512(kFinal[2]), total);
    total = shiftAdd(sum.d, _mm512_loadu_si512(kFinal[3]), total);
    return reduce(addLanes(total));
}

} // namespace

bool crcWideClmulRuns()
{
    return crcClmulRuns() && __builtin_cpu_supports("avx512f") &&
           __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("vpclmulqdq");
}

uint16_t crcWideClmul(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < kLeastBytes) {
        return crcSlicing(data, size, start);
    }
    const uint16_t crc = fold(data, size);
    return start == 0 ? crc : korcg_crc16_combine(start, crc, size);
}

} // namespace korcg

#endif
