#pragma once

#include "korcg_load.h"

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tqx
{

/// The two characters with which a block begins.
constexpr uint8_t sync1 = '$';
constexpr uint8_t sync2 = '@';

/// Whether "$@" begins at one of the 8 positions from `bytes` on; reads 9 bytes.
inline bool hasSyncIn8(const uint8_t* bytes)
{
    constexpr uint64_t ones = 0x0101010101010101U;
    constexpr uint64_t highs = 0x8080808080808080U;
    // A byte is zero where both characters match. The subtraction borrows at the lowest such byte,
    // and at none if there is none.
    const uint64_t differs =
        (korcg_load_u64(bytes) ^ (ones * sync1)) | (korcg_load_u64(bytes + 1) ^ (ones * sync2));
    return ((differs - ones) & ~differs & highs) != 0;
}

/// Whether "$@" begins at one of the 128 positions from `bytes` on; reads 129 bytes.
inline bool hasSyncIn128(const uint8_t* bytes)
{
#if defined(__SSE2__)
    const __m128i first = _mm_set1_epi8(sync1);
    const __m128i second = _mm_set1_epi8(sync2);
    __m128i found = _mm_setzero_si128();
    for (size_t i = 0; i < 128; i += 16) {
        const auto* at = reinterpret_cast<const __m128i*>(bytes + i);
        const auto* next = reinterpret_cast<const __m128i*>(bytes + i + 1);
        const __m128i match = _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(at), first),
                                            _mm_cmpeq_epi8(_mm_loadu_si128(next), second));
        found = _mm_or_si128(found, match);
    }
    return _mm_movemask_epi8(found) != 0;
#else
    bool found = false;
    for (size_t i = 0; i < 128; i += 8) {
        found |= hasSyncIn8(bytes + i);
    }
    return found;
#endif
}

/// Index of the first "$@" in `size` bytes. When there is none: the index of a "$" that ends the
/// bytes and may become one, else `size`.
inline size_t findSync(const uint8_t* bytes, size_t size)
{
    // The next sync is near in hostile streams and far away in junk: small steps first.
    constexpr size_t nearBytes = 32;
    size_t i = 0;
    while (i + 9 <= size && !hasSyncIn8(bytes + i)) {
        i += 8;
        if (i == nearBytes) {
            while (i + 129 <= size && !hasSyncIn128(bytes + i)) {
                i += 128;
            }
        }
    }
    for (; i + 1 < size; ++i) {
        if (bytes[i] == sync1 && bytes[i + 1] == sync2) {
            return i;
        }
    }
    return i < size && bytes[i] == sync1 ? i : size;
}

} // namespace tqx
