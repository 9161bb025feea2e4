#pragma once

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// The first byte of an RTCM 3 frame.
constexpr uint8_t framePreamble = 0xd3;

/// The reserved bits of a frame's second byte, which are zero; the others belong to its length.
constexpr uint8_t frameReserved = 0xfc;

/// Index of the first of `size` bytes at which a frame or a sentence may begin, judging by this
/// byte and the next one: the preamble before reserved bits that are zero, or '$' or '!' before a
/// capital. The last byte is judged alone. `size` when there is none.
size_t findBeginning(const uint8_t* bytes, size_t size);

} // namespace tqx
