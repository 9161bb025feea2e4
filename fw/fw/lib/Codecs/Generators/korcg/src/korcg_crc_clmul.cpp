#include "korcg_crc_fold.h"

#if KORCG_HAVE_CLMUL

#include "korcg_crc.h"

namespace korcg
{

namespace
{

constexpr size_t kLaneBytes = 16;
constexpr size_t kWindowLanes = 8;

constexpr Lane kStep = makeShift(kWindowLanes * 128);
constexpr Lane kFinal[4] = {makeFinalShift(3), makeFinalShift(2), makeFinalShift(1),
                            makeFinalShift(0)};

/// The first `count` (0 to 15) of 16 bytes, behind zeros.
KORCG_TARGET_CLMUL inline __m128i loadFirst(const uint8_t* bytes, size_t count)
{
    // Byte i of the result is byte i + count - 16 of the message; a negative index gives 0.
    const __m128i index = _mm_add_epi8(
        _mm_set1_epi8(static_cast<char>(count)),
        _mm_set_epi8(-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11, -12, -13, -14, -15, -16));
    return _mm_shuffle_epi8(loadLane(bytes), index);
}

KORCG_TARGET_CLMUL inline __m128i add(__m128i a, __m128i b)
{
    return _mm_xor_si128(a, b);
}

KORCG_TARGET_CLMUL inline __m128i shift(__m128i lane, const Lane& factors)
{
    const __m128i f = loadLane(&factors);
    return add(_mm_clmulepi64_si128(lane, f, 0x00), _mm_clmulepi64_si128(lane, f, 0x11));
}

/// What lands 2.75 lanes behind: the last 12 bytes of a lane and the first 4 of the next one.
KORCG_TARGET_CLMUL inline __m128i quarter(__m128i lane, __m128i next)
{
    return _mm_alignr_epi8(next, lane, 4);
}

/// Eight lanes of the message; the second half takes up the first.
struct Window {
    __m128i lane[kWindowLanes];
};

KORCG_TARGET_CLMUL inline void halve(Window& w)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i* v = w.lane;
    v[1] = add(v[1], v[0]);
    v[2] = add(v[2], add(v[1], quarter(zero, v[0])));
    v[3] = add(v[3], add(v[2], quarter(v[0], v[1])));
    v[4] = add(add(v[4], v[0]), add(v[3], quarter(v[1], v[2])));
    v[5] = add(v[5], add(v[1], quarter(v[2], v[3])));
    v[6] = add(v[6], add(v[2], quarter(v[3], zero)));
    v[7] = add(v[7], v[3]);
}

KORCG_TARGET_CLMUL uint16_t fold(const uint8_t* data, size_t size)
{
    Window w;
    for (__m128i& lane : w.lane) {
        lane = _mm_setzero_si128();
    }
    w.lane[7] = loadFirst(data, size % kLaneBytes);
    data += size % kLaneBytes;
    size_t lanes = size / kLaneBytes;
    for (; lanes % kWindowLanes != 0; --lanes, data += kLaneBytes) {
        for (size_t i = 1; i < kWindowLanes; ++i) {
            w.lane[i - 1] = w.lane[i];
        }
        w.lane[7] = loadLane(data);
    }
    halve(w);
    __m128i sum[4];
    for (size_t i = 0; i < 4; ++i) {
        sum[i] = reverseBytes(w.lane[4 + i]);
    }
    for (; lanes != 0; lanes -= kWindowLanes) {
        for (__m128i& lane : w.lane) {
            lane = loadLane(data);
            data += kLaneBytes;
        }
        halve(w);
        for (size_t i = 0; i < 4; ++i) {
            sum[i] = add(shift(sum[i], kStep), reverseBytes(w.lane[4 + i]));
        }
    }
    for (size_t i = 0; i < 4; ++i) {
        sum[i] = shift(sum[i], kFinal[i]);
    }
    return reduce(add(add(sum[0], sum[1]), add(sum[2], sum[3])));
}

} // namespace

bool crcClmulRuns()
{
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3");
}

uint16_t crcClmul(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < kLaneBytes) {
        return crcSlicing(data, size, start);
    }
    const uint16_t crc = fold(data, size);
    return start == 0 ? crc : korcg_crc16_combine(start, crc, size);
}

} // namespace korcg

#endif
