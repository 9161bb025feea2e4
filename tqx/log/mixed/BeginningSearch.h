#pragma once

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// With which byte a frame of RTCM 3 begins.
constexpr uint8_t framePreamble = 0xd3;

/// The bits of a frame's second byte that are reserved and zero; the others are of its length.
constexpr uint8_t frameReserved = 0xfc;

/// Index of the first byte in `size` bytes with which a frame or a sentence may begin by this byte
/// and the next one: the preamble before reserved bits that are zero, '$' or '!' before a capital.
/// When the next one is missing, the last byte may. `size` when there is none.
size_t findBeginning(const uint8_t* bytes, size_t size);

} // namespace tqx
