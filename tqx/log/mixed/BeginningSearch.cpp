#include "tqx/log/mixed/BeginningSearch.h"

#include "tqx/log/mixed/LineRules.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#else
#include "korcg_load.h"
#endif

namespace tqx
{

namespace
{

constexpr size_t step = 16;

bool mayBegin(uint8_t first, uint8_t next)
{
    return first == framePreamble ? (next & frameReserved) == 0
                                  : beginsSentence(first) && isCapital(next);
}

/// Whether something may begin at one of `step` positions; reads one byte more. Without a vector
/// unit the next bytes are not looked at.
bool mayBeginIn(const uint8_t* bytes)
{
#if defined(__SSE2__)
    const auto all = [](uint8_t byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 1));
    const __m128i delimiters =
        _mm_or_si128(_mm_cmpeq_epi8(first, all('$')), _mm_cmpeq_epi8(first, all('!')));
    const __m128i place = _mm_sub_epi8(next, all('A')); // in the alphabet, for capitals
    const __m128i capitals = _mm_cmpeq_epi8(_mm_min_epu8(place, all('Z' - 'A')), place);
    const __m128i lengths =
        _mm_cmpeq_epi8(_mm_and_si128(next, all(frameReserved)), _mm_setzero_si128());
    const __m128i frames = _mm_and_si128(_mm_cmpeq_epi8(first, all(framePreamble)), lengths);
    return _mm_movemask_epi8(_mm_or_si128(_mm_and_si128(delimiters, capitals), frames)) != 0;
#else
    constexpr uint64_t ones = 0x0101010101010101U;
    constexpr uint64_t highs = 0x8080808080808080U;
    const auto hasZero = [](uint64_t value) { return ((value - ones) & ~value & highs) != 0; };
    const auto isIn = [&](uint64_t eight) {
        return hasZero(eight ^ ones * '$') || hasZero(eight ^ ones * '!') ||
               hasZero(eight ^ ones * framePreamble);
    };
    return isIn(korcg_load_u64(bytes)) || isIn(korcg_load_u64(bytes + 8));
#endif
}

} // namespace

size_t findBeginning(const uint8_t* bytes, size_t size)
{
    size_t at = 0;
    while (at + 1 < size) {
        if (at + step < size && !mayBeginIn(bytes + at)) {
            at += step;
            continue;
        }
        for (const size_t end = at + step; at < end && at + 1 < size; ++at) {
            if (mayBegin(bytes[at], bytes[at + 1]))
                return at;
        }
    }
    const bool mayFollow = at < size && (beginsSentence(bytes[at]) || bytes[at] == framePreamble);
    return mayFollow ? at : size;
}

} // namespace tqx
