#pragma once

#include "korcg_load.h"

#include <cstddef>
#include <cstdint>

/// The two characters that a block begins with.
constexpr uint8_t kSync1 = '$';
constexpr uint8_t kSync2 = '@';

/// Index of the first "$@" in `size` bytes. When there is none: the index of a "$" that ends the
/// bytes and may become one, else `size`.
inline size_t findSync(const uint8_t* bytes, size_t size)
{
    constexpr uint64_t kOnes = 0x0101010101010101U;
    constexpr uint64_t kHighs = 0x8080808080808080U;

    size_t i = 0;
    // Eight positions at a time: a byte of `differs` is zero where the two characters stand. The
    // subtraction finds whether any is; a borrow can only add marks above a true one.
    for (; i + 9 <= size; i += 8) {
        const uint64_t differs = (korcg_load_u64(bytes + i) ^ (kOnes * kSync1)) |
                                 (korcg_load_u64(bytes + i + 1) ^ (kOnes * kSync2));
        if (((differs - kOnes) & ~differs & kHighs) != 0) {
            break;
        }
    }
    for (; i + 1 < size; ++i) {
        if (bytes[i] == kSync1 && bytes[i + 1] == kSync2) {
            return i;
        }
    }
    return i < size && bytes[i] == kSync1 ? i : size;
}
