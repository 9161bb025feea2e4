#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// Where a number is in a record or block, and how to extract it from its word.
struct NumberPlace {
    uint32_t offset = 0;  ///< of the word in bytes
    uint8_t wordSize = 1; ///< in bytes
    uint8_t shift = 0;    ///< lowest bit within the word
    uint8_t width = 8;    ///< in bits
    bool isSigned = false;
};

/// Copies the number from `count` places, `stride` bytes apart, into an array. `from` is the first
/// word; `out` has elements of the size that the function was chosen for.
using Gather = void (*)(const uint8_t* from, size_t stride, size_t count, const NumberPlace& place,
                        void* out);

/// The function for a place and elements of `outSize` bytes, which must have room for the number.
/// Words are in the byte order of the machine.
TQX_LOG_API Gather gatherFor(const NumberPlace& place, uint32_t outSize);

} // namespace tqx
